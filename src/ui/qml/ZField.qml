import QtQuick
import QtQuick.Controls.Basic

TextField {
    id: field
    implicitHeight: Math.max(32, theme.normal + 18)
    font.pixelSize: theme.normal
    color: theme.text
    placeholderTextColor: theme.quiet
    selectionColor: theme.accent
    selectedTextColor: theme.page
    selectByMouse: true
    background: Rectangle {
        radius: 4
        color: theme.page
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? theme.accent : theme.line
    }
}
