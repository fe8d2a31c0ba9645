import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    title: "Settings"
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel { text: "Theme"; font.bold: true }
        RowLayout {
            spacing: 8
            Repeater {
                model: ["Sunlight", "Dark", "Night"]
                delegate: ZButton {
                    required property string modelData
                    required property int index
                    focus: index === 0
                    text: (theme.name === modelData ? "● " : "○ ") + modelData
                    strong: theme.name === modelData
                    onClicked: theme.choose(modelData)
                }
            }
        }
        ZLabel { text: "Text size"; font.bold: true }
        RowLayout {
            spacing: 8
            ZButton { text: "A −"; onClicked: theme.textScale = theme.textScale - 0.1; Accessible.name: "Smaller text" }
            ZLabel { text: Math.round(theme.textScale * 100) + " %" }
            ZButton { text: "A +"; onClicked: theme.textScale = theme.textScale + 0.1; Accessible.name: "Larger text" }
        }
    }
}
