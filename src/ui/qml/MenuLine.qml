import QtQuick
import QtQuick.Controls.Basic

MenuItem {
    id: line
    property string hint
    implicitHeight: Math.max(32, theme.normal + 16)
    font.pixelSize: theme.normal
    contentItem: Text {
        text: line.text + (line.hint ? "    " + line.hint : "")
        color: !line.enabled ? theme.quiet : line.highlighted ? theme.page : theme.text
        font: line.font
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    arrow: Text {
        visible: line.subMenu
        x: line.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        text: "▸"; color: line.highlighted ? theme.page : theme.text; font.pixelSize: theme.normal
    }
    background: Rectangle { color: line.highlighted ? theme.accent : "transparent" }
}
