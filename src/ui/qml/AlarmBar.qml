import QtQuick
import QtQuick.Window
import QtQuick.Layouts

// Who is gone and what to do, to be read from a step away. It covers neither countdown nor transport.
Rectangle {
    id: bar
    objectName: "alarmBar"
    color: theme.panel
    border.color: theme.bad
    border.width: 4
    implicitHeight: row.implicitHeight + 16
    // Enter is to acknowledge it, unless one is typing.
    onVisibleChanged: {
        const item = Window.activeFocusItem
        if (visible && app.sheet === "" && !(item && typeof item.selectAll === "function"))
            seen.forceActiveFocus()
    }
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 8
        spacing: 12
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: "■ " + cameras.alarmText
                textFormat: Text.PlainText
                color: theme.bad
                font.pixelSize: theme.large * 1.4
                font.bold: true
                elide: Text.ElideRight
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel { Layout.fillWidth: true; text: cameras.alarmHint; maximumLineCount: 2; elide: Text.ElideRight }
        }
        ZButton {
            id: seen
            objectName: "alarmAcknowledge"
            text: "Seen (Enter)"
            danger: true
            onClicked: cameras.acknowledgeAlarm()
            Accessible.name: "Acknowledge: " + cameras.alarmText
        }
    }
}
