import QtQuick

// One message of the chat with the assistant.
Rectangle {
    id: message
    required property var chatList
    required property int index
    required property string speaker
    required property string words
    required property string check
    readonly property bool current: chatList.activeFocus && ListView.isCurrentItem
    width: chatList.width - 14
    height: column.implicitHeight + 12
    color: speaker === "Assistant" ? theme.panel : "transparent"
    border.width: current ? 2 : 1
    border.color: current ? theme.accent : theme.line
    radius: 4
    Accessible.role: Accessible.ListItem
    Accessible.name: speaker + ": " + words + " " + check
    Column {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 6 }
        spacing: 2
        ZLabel { width: parent.width; text: message.speaker; color: theme.quiet; font.bold: true; font.pixelSize: theme.small }
        TextEdit {
            width: parent.width
            text: message.words
            textFormat: TextEdit.PlainText
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            wrapMode: TextEdit.Wrap
            color: theme.text
            font.pixelSize: theme.normal
            font.weight: theme.weight
            selectionColor: theme.accent
            selectedTextColor: theme.page
            Keys.priority: Keys.BeforeItem
            Keys.onPressed: (event) => {
                event.accepted = event.key === Qt.Key_F1
                if (event.accepted)
                    commands.trigger("showKeys")
            }
        }
        ZLabel {
            width: parent.width
            visible: text !== ""
            text: message.check
            color: message.check.indexOf(" 0 errors") >= 0 ? theme.good : theme.warning
            font.pixelSize: theme.small
            font.bold: true
        }
    }
}
