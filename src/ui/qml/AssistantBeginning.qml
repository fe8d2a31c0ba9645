import QtQuick
import QtQuick.Layouts

// What is sent where, and some sentences to begin a chat with the assistant with.
FormFlick {
    id: beginning
    signal begun()
    ColumnLayout {
        width: beginning.fieldsWidth
        spacing: 6
        ZLabel {
            objectName: "assistantNotice"
            Layout.fillWidth: true
            text: assistant.notice
            color: assistant.hasHost ? theme.text : theme.warning
        }
        ZLabel { Layout.fillWidth: true; text: "Begin with one of these, or write below:"; color: theme.quiet }
        Repeater {
            model: assistant.starters
            delegate: ZButton {
                id: starter
                required property string modelData
                required property int index
                objectName: "starter" + index
                Layout.fillWidth: true
                text: modelData
                enabled: assistant.hasHost && !assistant.busy
                implicitHeight: words.implicitHeight + 14
                onClicked: {
                    beginning.begun()
                    assistant.sendStarter(index)
                }
                contentItem: ZLabel {
                    id: words
                    text: starter.modelData
                    color: starter.enabled ? theme.text : theme.quiet
                    verticalAlignment: Text.AlignVCenter
                }
            }
        }
    }
}
