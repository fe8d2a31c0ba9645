import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The chat with the assistant, and the field to write in.
FocusScope {
    id: chat
    required property var frame // the sheet, which scrolls by key

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: theme.page
            border.width: list.activeFocus ? 2 : 1
            border.color: list.activeFocus ? theme.accent : theme.line

            AssistantBeginning {
                anchors { fill: parent; margins: 8 }
                visible: assistant.empty
                onBegun: field.forceActiveFocus() // the button goes with the first message
            }
            ListView {
                id: list
                objectName: "assistantMessages"
                anchors { fill: parent; margins: 8 }
                visible: !assistant.empty
                clip: true
                spacing: 10
                activeFocusOnTab: visible
                boundsBehavior: Flickable.StopAtBounds
                model: assistant.messages
                ScrollBar.vertical: ZScrollBar {}
                Accessible.role: Accessible.List
                Accessible.name: "Chat with the assistant"
                // Where the reading goes on: at what came last.
                onCountChanged: {
                    currentIndex = count - 1
                    Qt.callLater(positionViewAtEnd)
                }
                Keys.onPressed: (event) => {
                    if (event.matches(StandardKey.Copy)) {
                        assistant.messages.copy(currentIndex)
                        event.accepted = true
                    } else if (event.key === Qt.Key_Up || event.key === Qt.Key_Down) {
                        currentIndex = Math.max(0, Math.min(count - 1, currentIndex + (event.key === Qt.Key_Up ? -1 : 1)))
                        positionViewAtIndex(currentIndex, ListView.Contain)
                        event.accepted = true
                    } else {
                        chat.frame.scrollByKey(list, event)
                    }
                }
                delegate: AssistantMessage { chatList: list }
            }
        }
        ZLabel {
            Layout.fillWidth: true
            visible: text !== ""
            text: assistant.remark
            color: theme.warning
            font.pixelSize: theme.small
        }
        RowLayout {
            Layout.fillWidth: true
            visible: assistant.busy || assistant.error !== "" || assistant.canRepeat
            spacing: 8
            ZLabel {
                objectName: "assistantState"
                Layout.fillWidth: true
                text: assistant.busy ? assistant.progress : assistant.error === "" ? "" : "✖ " + assistant.error
                color: assistant.busy ? theme.quiet : theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZButton {
                objectName: "assistantStop"
                visible: assistant.busy
                text: "Stop"
                Accessible.name: "Stop: give the request up"
                onClicked: {
                    field.forceActiveFocus()
                    assistant.cancel()
                }
            }
            ZButton {
                objectName: "assistantRepeat"
                visible: assistant.canRepeat
                text: "Try again"
                onClicked: {
                    field.forceActiveFocus()
                    assistant.repeat()
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ScrollView {
                Layout.fillWidth: true
                Layout.preferredHeight: theme.normal * 1.4 * (chat.frame.low ? 2 : 3) + 16
                focus: true
                background: Rectangle {
                    color: theme.page
                    border.width: field.activeFocus ? 2 : 1
                    border.color: field.activeFocus ? theme.accent : theme.line
                    radius: 4
                }
                TextArea {
                    id: field
                    objectName: "assistantInput"
                    focus: true
                    textFormat: TextEdit.PlainText
                    wrapMode: TextEdit.Wrap
                    selectByMouse: true
                    placeholderText: "What should the script do?"
                    placeholderTextColor: theme.quiet
                    color: theme.text
                    font.pixelSize: theme.normal
                    font.weight: theme.weight
                    selectionColor: theme.accent
                    selectedTextColor: theme.page
                    background: null
                    Accessible.name: "Message to the assistant"
                    Component.onCompleted: {
                        text = assistant.input
                        cursorPosition = length
                    }
                    onTextChanged: assistant.input = text
                    onActiveFocusChanged: app.setTyping(activeFocus)
                    Keys.priority: Keys.BeforeItem
                    Keys.onPressed: (event) => {
                        const enter = event.key === Qt.Key_Return || event.key === Qt.Key_Enter
                        event.accepted = enter && !(event.modifiers & Qt.ShiftModifier)
                        if (event.accepted && !event.isAutoRepeat)
                            assistant.send()
                    }
                    // Tab leads on: the keyboard must get out again.
                    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                    Connections {
                        target: assistant
                        function onInputChanged() { if (field.text !== assistant.input) field.text = assistant.input }
                    }
                }
            }
            ZButton {
                objectName: "assistantSend"
                text: "Send"
                strong: true
                enabled: !assistant.busy && assistant.input.trim() !== ""
                onClicked: {
                    field.forceActiveFocus()
                    assistant.send()
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZCheck {
                objectName: "assistantGuided"
                Layout.fillWidth: true
                text: "Guided: it asks, one question at a time"
                checked: assistant.guided
                onToggled: assistant.guided = checked
            }
            ZButton {
                objectName: "assistantUndoNew"
                visible: assistant.canUndoNewChat
                text: "Undo"
                Accessible.name: "Undo: bring the chat before back"
                onClicked: {
                    field.forceActiveFocus()
                    assistant.undoNewChat()
                }
            }
            ZButton {
                objectName: "assistantNew"
                text: "New chat"
                enabled: !assistant.empty
                onClicked: {
                    field.forceActiveFocus()
                    assistant.newChat()
                }
            }
        }
    }
}
