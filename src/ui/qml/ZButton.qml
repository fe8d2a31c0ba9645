import QtQuick
import QtQuick.Controls.Basic

Button {
    id: control
    property bool strong: false
    property bool danger: false
    implicitHeight: Math.max(32, theme.normal + 18)
    leftPadding: 12
    rightPadding: 12
    font.pixelSize: theme.normal
    font.weight: strong ? Font.Bold : theme.weight
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    // A key that is held down acts once; with Ctrl it belongs to the sheet.
    function press(event) {
        event.accepted = !(event.modifiers & Qt.ControlModifier)
        if (event.accepted && enabled && !event.isAutoRepeat)
            clicked()
    }
    Keys.onReturnPressed: (event) => press(event)
    Keys.onEnterPressed: (event) => press(event)
    contentItem: Text {
        text: control.text
        textFormat: Text.PlainText
        font: control.font
        color: !control.enabled ? theme.quiet : control.danger ? theme.bad : control.strong ? theme.accent : theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        radius: 4
        color: control.down ? theme.line : theme.panel
        border.width: control.visualFocus || control.activeFocus ? 2 : 1
        border.color: control.visualFocus || control.activeFocus ? theme.accent : theme.line
        opacity: control.enabled ? 1 : 0.5
    }
}
