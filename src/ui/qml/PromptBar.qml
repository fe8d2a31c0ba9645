import QtQuick
import QtQuick.Layouts

// A question across the window; it covers neither countdown nor transport.
Rectangle {
    color: theme.panel
    border.color: theme.accent
    border.width: 2
    implicitHeight: row.implicitHeight + 16
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 8
        spacing: 12
        ZLabel { text: app.promptText; Layout.fillWidth: true }
        ZButton {
            objectName: "promptAccept"
            strong: true
            text: app.prompt === "resume" ? "Resume" : "OK"
            onClicked: app.acceptPrompt()
        }
        ZButton {
            visible: app.prompt === "resume"
            text: "Not now, forget it"
            onClicked: app.declinePrompt()
        }
    }
}
