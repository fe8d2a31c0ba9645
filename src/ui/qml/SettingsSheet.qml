import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    title: "Settings"
    wantedHeight: form.contentHeight
    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
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
            ZCheck {
                Layout.fillWidth: true
                text: "Night by itself, from 10 min before totality to 10 min after it"
                checked: theme.nightByItself
                onToggled: theme.nightByItself = checked
            }
            ZLabel { text: "Text size"; font.bold: true }
            RowLayout {
                spacing: 8
                ZButton { text: "A −"; onClicked: theme.textScale = theme.textScale - 0.1; Accessible.name: "Smaller text" }
                ZLabel { text: Math.round(theme.textScale * 100) + " %" + (theme.scale < theme.textScale ? "  (a larger window has room for it)" : "") }
                ZButton { text: "A +"; onClicked: theme.textScale = theme.textScale + 0.1; Accessible.name: "Larger text" }
            }
            SettingField {
                name: "Elevation service"
                value: location.elevationHost
                note: "Is asked for the height of the ground at a point that you pick, and so learns of it. Empty: nobody is asked."
                onDecided: (text) => location.elevationHost = text
            }
            SettingField {
                name: "Address for updates"
                value: updates.address
                note: "Is asked when you choose Check for Updates… Empty: your system's package manager updates Zenka."
                onDecided: (text) => updates.address = text
            }
        }
    }
}
