import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A message to the makers. What is typed stays until it has arrived.
SheetFrame {
    id: sheet
    title: "Report a bug, wish or question"
    grow: true
    readonly property string keysHere: "Tab: on to the next field. Page up, page down: read on. Escape: back; what you typed stays."
    Component.onCompleted: feedback.open()
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    component Reading: TextArea {
        color: theme.text
        font.pixelSize: theme.normal
        font.weight: theme.weight
        wrapMode: TextEdit.Wrap
        textFormat: TextEdit.PlainText
        selectByMouse: true
        selectionColor: theme.accent
        selectedTextColor: theme.page
        placeholderTextColor: theme.quiet
        background: null
        // Tab leads on.
        Keys.priority: Keys.BeforeItem
        Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
    }
    component TextFrame: Rectangle {
        property bool lit
        radius: 4
        color: theme.page
        border.width: lit ? 2 : 1
        border.color: lit ? theme.accent : theme.line
    }

    FormFlick {
        id: form
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: actions.top; bottomMargin: 10 }
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            RowLayout {
                spacing: 8
                Repeater {
                    model: feedback.kinds
                    delegate: ZButton {
                        required property string modelData
                        required property int index
                        objectName: "kind" + index
                        text: (feedback.kind === index ? "● " : "○ ") + modelData
                        strong: feedback.kind === index
                        onClicked: feedback.kind = index
                    }
                }
            }
            ScrollView {
                focus: true
                Layout.fillWidth: true
                Layout.preferredHeight: Math.round(Math.max(theme.normal * 5, form.height * 0.36))
                background: TextFrame { lit: messageArea.activeFocus }
                Reading {
                    id: messageArea
                    objectName: "feedbackMessage"
                    focus: true
                    placeholderText: feedback.kind === 0 ? "What you did, what happened, and what you expected instead" : "Your message"
                    Component.onCompleted: text = feedback.message
                    onTextChanged: feedback.message = text
                    onActiveFocusChanged: app.setTyping(activeFocus)
                    Accessible.name: "Message"
                    Connections {
                        target: feedback
                        function onCleared() { messageArea.text = "" }
                    }
                }
            }
            EmailField { objectName: "feedbackEmail"; Layout.fillWidth: true }
            ZCheck {
                objectName: "withFacts"
                Layout.fillWidth: true
                text: "Add the facts below. They may name your site and your files: read them first"
                checked: feedback.withFacts
                onToggled: feedback.withFacts = checked
            }
            ScrollView {
                id: factsScroller
                Layout.fillWidth: true
                Layout.preferredHeight: Math.round(Math.max(theme.small * 6, form.height * 0.36))
                clip: true
                background: TextFrame { lit: facts.activeFocus }
                Reading {
                    id: facts
                    objectName: "feedbackFacts"
                    readOnly: true
                    text: feedback.facts
                    color: feedback.withFacts ? theme.text : theme.quiet
                    font.family: theme.digits
                    font.pixelSize: theme.small
                    Accessible.name: "Facts for the report"
                    Keys.onPressed: (event) => sheet.scrollByKey(factsScroller.contentItem, event)
                }
            }
        }
    }
    ColumnLayout {
        id: actions
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        spacing: 6
        ZLabel {
            objectName: "feedbackWords"
            Layout.fillWidth: true
            text: feedback.words !== "" ? (feedback.failed ? "✖ " : "") + feedback.words
                : "Goes to " + service.host + ": kind, message, email, the program's version and, if ticked, the facts."
            color: feedback.words === "" ? theme.quiet : feedback.failed ? theme.bad : theme.text
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        RowLayout {
            spacing: 8
            ZButton {
                objectName: "sendFeedback"
                strong: true
                text: "Send"
                enabled: !feedback.sending
                onClicked: feedback.send(service.email)
                Accessible.name: "Send the message to " + service.host
            }
            ZButton { text: "Copy all"; onClicked: app.copy(feedback.message + "\n\n" + feedback.facts); Accessible.name: "Copy message and facts" }
        }
    }
}
