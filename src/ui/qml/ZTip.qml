import QtQuick
import QtQuick.Controls.Basic

// The full words of something that had to be shortened.
ToolTip {
    id: tip
    delay: 400
    padding: 8
    width: Math.min(implicitWidth, 560)
    contentItem: Text {
        text: tip.text
        textFormat: Text.PlainText
        color: theme.text
        font.pixelSize: theme.normal
        font.weight: theme.weight
        wrapMode: Text.Wrap
    }
    background: Rectangle { color: theme.panel; border.color: theme.accent; radius: 4 }
    enter: null
    exit: null
}
