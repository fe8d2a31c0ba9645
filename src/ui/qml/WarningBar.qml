import QtQuick
import QtQuick.Layouts

// What is to be mended by hand before it stops the rig: one line, what to do behind it.
Rectangle {
    id: bar
    objectName: "warningBar"
    readonly property color tone: warnings.critical ? theme.bad : theme.warning
    color: theme.panel
    border.color: tone
    border.width: warnings.critical ? 3 : 2
    implicitHeight: row.implicitHeight + 12
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 6
        spacing: 12
        Text {
            text: warnings.text
            color: bar.tone
            font.pixelSize: theme.large
            font.bold: true
            elide: Text.ElideRight
            Layout.fillWidth: true
            Layout.maximumWidth: implicitWidth + 1
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text + ". " + warnings.hint
        }
        ZLabel { Layout.fillWidth: true; text: warnings.hint; maximumLineCount: 2; elide: Text.ElideRight }
        ZButton {
            objectName: "warningSeen"
            text: "Seen"
            danger: warnings.critical
            onClicked: warnings.acknowledge()
            Accessible.name: "Acknowledge: " + warnings.text
        }
    }
}
