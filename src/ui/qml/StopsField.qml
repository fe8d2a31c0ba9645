import QtQuick
import QtQuick.Layouts

// A number of stops between a minus and a plus.
FocusScope {
    id: root
    property string name
    property string value
    property string owner
    signal nudged(int by)
    implicitWidth: row.implicitWidth
    implicitHeight: row.implicitHeight
    Keys.onUpPressed: (event) => { event.accepted = event.modifiers === Qt.NoModifier; if (event.accepted) nudged(1) }
    Keys.onDownPressed: (event) => { event.accepted = event.modifiers === Qt.NoModifier; if (event.accepted) nudged(-1) }

    RowLayout {
        id: row
        spacing: 4
        ZLabel { text: root.name; color: theme.quiet; wrapMode: Text.NoWrap }
        ZButton {
            focus: true
            text: "−"
            implicitWidth: 32; leftPadding: 0; rightPadding: 0
            onClicked: root.nudged(-1)
            Accessible.name: root.owner + " " + root.name + " a stop darker"
        }
        ZLabel {
            text: root.value
            font.family: theme.digits
            font.weight: Font.Bold
            horizontalAlignment: Text.AlignHCenter
            Layout.minimumWidth: theme.normal * 1.8
            wrapMode: Text.NoWrap
        }
        ZButton {
            text: "+"
            implicitWidth: 32; leftPadding: 0; rightPadding: 0
            onClicked: root.nudged(1)
            Accessible.name: root.owner + " " + root.name + " a stop brighter"
        }
    }
}
