import QtQuick
import QtQuick.Controls.Basic

ScrollBar {
    id: bar
    policy: ScrollBar.AsNeeded
    minimumSize: 0.06
    contentItem: Rectangle {
        implicitWidth: 10
        implicitHeight: 10
        radius: 5
        color: bar.pressed ? theme.accent : theme.line
        visible: bar.size < 1
    }
}
