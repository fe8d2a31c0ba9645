import QtQuick
import QtQuick.Layouts

// The script assistant: the chat on one side, the script that it is about on the other.
SheetFrame {
    id: sheet
    title: "AI Script Assistant"
    grow: true
    readonly property bool low: height < 560
    readonly property string keysHere: "Enter: send. Shift+Enter: a new line. In the chat, up and down: another message; Ctrl+C: copy it; page up, page down: read on. Escape: back; what you typed and the chat stay."
    Component.onCompleted: assistant.open()

    RowLayout {
        anchors.fill: parent
        spacing: 16
        AssistantChat {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 100
            frame: sheet
            focus: true
        }
        AssistantScript {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 100
            frame: sheet
        }
    }
}
