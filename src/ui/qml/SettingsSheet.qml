import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    title: "Settings"
    wantedHeight: form.contentHeight
    Component.onCompleted: voice.open()
    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            ZLabel { text: "Theme"; font.weight: Font.Bold }
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
            ZLabel { text: "Text size"; font.weight: Font.Bold }
            RowLayout {
                spacing: 8
                ZButton { text: "A −"; onClicked: theme.textScale = theme.textScale - 0.1; Accessible.name: "Smaller text" }
                ZLabel { text: Math.round(theme.textScale * 100) + " %" + (theme.scale < theme.textScale ? "  (a larger window has room for it)" : "") }
                ZButton { text: "A +"; onClicked: theme.textScale = theme.textScale + 0.1; Accessible.name: "Larger text" }
            }
            ZLabel { text: "Voice"; font.weight: Font.Bold }
            ZCheck {
                Layout.fillWidth: true
                text: "Speak the script's cues"
                checked: voice.cues
                onToggled: voice.cues = checked
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                PickList {
                    id: voices
                    objectName: "voices"
                    Layout.fillWidth: true
                    model: voice.voices
                    currentIndex: voice.voice
                    onActivated: (index) => voice.voice = index
                    Accessible.name: "Voice"
                }
                ZButton { objectName: "testVoice"; text: "Test voice"; onClicked: voice.test() }
            }
            ZCheck {
                Layout.fillWidth: true
                text: "Say when a camera's battery is low"
                checked: voice.lowBatteryAudio
                onToggled: voice.lowBatteryAudio = checked
            }
            ZCheck {
                Layout.fillWidth: true
                text: "Say when a camera's battery is about to run out"
                checked: voice.criticalBatteryAudio
                onToggled: voice.criticalBatteryAudio = checked
            }
            SettingField {
                name: "Low battery, percent"
                value: voice.lowBattery
                note: "A camera at or below it is told as low. 1 to 100."
                onDecided: (text) => voice.typeLowBattery(text)
            }
            SettingField {
                name: "Time server"
                value: time.server
                note: "The computer's clock is held against its date at start, before arming and on a click on the clock's chip. Empty: nobody is asked."
                onDecided: (text) => time.server = text
            }
            SettingField {
                name: "Elevation service"
                value: location.elevationHost
                note: "Is asked for the height of the ground at a point that you pick, and so learns of it. Empty: nobody is asked."
                onDecided: (text) => location.elevationHost = text
            }
            ZCheck {
                Layout.fillWidth: true
                text: "Terrain from the open tiles, which want no token"
                checked: horizon.openTiles
                onToggled: horizon.openTiles = checked
            }
            SettingField {
                name: "Token for terrain and buildings"
                value: horizon.token
                note: "Of an account at Mapbox. It is asked for tiles, and so learns roughly where you will be, when you look up the terrain in Location."
                onDecided: (text) => horizon.token = text
            }
            SettingField {
                name: "Address for updates"
                value: updates.address
                note: "Is asked when you choose Check for Updates… Empty: your system's package manager updates Zenka."
                onDecided: (text) => updates.address = text
            }
            SettingField {
                objectName: "serviceAddress"
                name: "Address of the service"
                value: service.address
                whenDone: true
                note: "https://…, where the reports go that you send, and the usage reports if you let them. Empty: nothing is sent."
                onDecided: (text) => service.address = text
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                ZCheck {
                    objectName: "usageAllowed"
                    Layout.fillWidth: true
                    text: service.host === "" ? "Send usage reports (no service is set)" : "Send usage reports to " + service.host
                    enabled: service.host !== "" || service.allowed
                    checked: service.allowed
                    onToggled: service.allowed = checked
                }
                ZButton { text: "What is sent…"; onClicked: app.openPage("UsageReports"); Accessible.name: "What usage reports send" }
            }
            ZLabel {
                Layout.fillWidth: true
                text: "Turned off, what waits to be sent is deleted too."
                color: theme.quiet
                font.pixelSize: theme.small
            }
        }
    }
}
