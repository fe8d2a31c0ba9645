import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The script that the chat with the assistant is about, what is wrong with it, and the way into the editor. A
// script that runs commands on this computer shows them, and asks, before it gets there.
ColumnLayout {
    id: root
    required property var frame // the sheet, which scrolls by key
    readonly property bool asking: assistant.commandsToConfirm !== ""
    spacing: 6
    onAskingChanged: if (asking) Qt.callLater(refuseButton.forceActiveFocus)

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZLabel {
            objectName: "assistantScriptState"
            Layout.fillWidth: true
            text: root.asking ? "This script runs commands on your computer" : assistant.scriptState
            color: root.asking ? theme.warning : theme.text
            font.bold: true
        }
        ZCheck {
            objectName: "assistantReadable"
            visible: !root.asking
            text: "In plain words"
            checked: assistant.readable
            onToggled: assistant.readable = checked
        }
    }
    ZLabel {
        id: ask
        objectName: "assistantAsk"
        Layout.fillWidth: true
        // Measured beforehand: the layout would give it the height of one line as it appears.
        Layout.preferredHeight: measure.contentHeight
        visible: text !== ""
        text: root.asking ? "Whoever writes such a line can do with this computer what you can. Load the script only if you know what each of them does." : ""
        color: theme.warning
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
        ZLabel { id: measure; visible: false; width: root.width; text: ask.text }
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.minimumHeight: 40
        color: theme.page
        border.width: page.activeFocus ? 2 : 1
        border.color: page.activeFocus ? theme.accent : theme.line
        TextScroller {
            id: scroller
            anchors { fill: parent; margins: 2 }
            TextArea {
                id: page
                objectName: "assistantScript"
                readOnly: true
                textFormat: TextEdit.PlainText
                text: root.asking ? assistant.commandsToConfirm : assistant.workingScript
                wrapMode: TextEdit.Wrap
                color: theme.text
                font.family: assistant.readable && !root.asking ? Qt.application.font.family : theme.digits
                font.pixelSize: theme.normal
                font.weight: theme.weight
                selectionColor: theme.accent
                selectedTextColor: theme.page
                selectByMouse: true
                background: null
                Accessible.name: root.asking ? "Commands that the script runs" : assistant.scriptState
                Keys.priority: Keys.BeforeItem
                Keys.onPressed: (event) => root.frame.scrollByKey(scroller.contentItem, event)
                Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
            }
        }
    }
    ZLabel {
        objectName: "assistantVerdict"
        Layout.fillWidth: true
        visible: text !== "" && !root.asking
        text: assistant.verdict
        color: assistant.errors > 0 ? theme.warning : theme.text
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    ListView {
        id: findings
        objectName: "assistantFindings"
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(count * (theme.small + 12), root.frame.height * 0.2)
        visible: count > 0 && !root.asking
        clip: true
        activeFocusOnTab: visible
        boundsBehavior: Flickable.StopAtBounds
        model: assistant.findings
        ScrollBar.vertical: ZScrollBar {}
        Keys.onPressed: (event) => root.frame.scrollByKey(findings, event)
        Accessible.role: Accessible.List
        Accessible.name: "Findings in the working script"
        delegate: Item {
            id: row
            required property int line
            required property string symbol
            required property string word
            required property string message
            required property bool isError
            width: findings.width - 14
            height: said.implicitHeight + 4
            Accessible.role: Accessible.ListItem
            Accessible.name: word + (line > 0 ? " in line " + line : "") + ": " + message
            ZLabel {
                x: 4
                text: row.symbol
                color: row.isError ? theme.bad : theme.warning
                font.family: theme.digits
                font.bold: true
            }
            ZLabel {
                id: said
                x: theme.normal * 1.6
                width: parent.width - x
                text: (row.line > 0 ? "line " + row.line + ": " : "") + row.message
                font.pixelSize: theme.small
            }
        }
        Rectangle {
            parent: findings
            anchors.fill: parent
            color: "transparent"
            border.width: 2
            border.color: theme.accent
            visible: findings.activeFocus
        }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZButton {
            id: refuseButton
            objectName: "assistantDecline"
            visible: root.asking
            text: "Do not load it"
            onClicked: {
                assistant.declineCommands()
                Qt.callLater(loadButton.forceActiveFocus)
            }
        }
        ZButton {
            objectName: "assistantConfirm"
            visible: root.asking
            danger: true
            text: "Load it with these commands"
            onClicked: assistant.confirmCommands()
        }
        ZButton {
            id: loadButton
            objectName: "assistantLoad"
            visible: !root.asking
            text: "Load into the editor"
            strong: true
            enabled: assistant.canLoad
            onClicked: assistant.load()
        }
        ZButton {
            visible: !root.asking
            text: "Copy script"
            onClicked: assistant.copyScript()
        }
        Item { Layout.fillWidth: true }
    }
}
