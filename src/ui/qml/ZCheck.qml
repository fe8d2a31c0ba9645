import QtQuick
import QtQuick.Controls.Basic

// A box to tick: told by its mark, not by colour.
CheckBox {
    id: box
    implicitHeight: Math.max(32, theme.normal + 18)
    leftPadding: 6
    rightPadding: 6
    font.pixelSize: theme.normal
    font.weight: theme.weight
    focusPolicy: Qt.StrongFocus
    // With Ctrl the key belongs to the sheet.
    Keys.onReturnPressed: (event) => {
        event.accepted = !(event.modifiers & Qt.ControlModifier)
        if (event.accepted) {
            toggle()
            toggled()
        }
    }
    Accessible.name: text
    indicator: null
    contentItem: Text {
        text: (box.checked ? "☑ " : "☐ ") + box.text
        textFormat: Text.PlainText
        font: box.font
        color: theme.text
        wrapMode: Text.Wrap
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: 4
        color: "transparent"
        border.width: box.activeFocus ? 2 : 0
        border.color: theme.accent
    }
}
