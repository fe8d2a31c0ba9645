import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The commands that came with a script, to be read before they may run on this computer.
SheetFrame {
    id: sheet
    title: "Commands of the script"
    grow: height < 600
    sheetWidth: 820 * theme.scale
    wantedHeight: 420 * theme.scale
    readonly property string keysHere: "Tab: to the answers. Arrow keys, page up, page down in the list: read on. Escape: do not run them, and back."

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        ZLabel {
            objectName: "consentQuestion"
            Layout.fillWidth: true
            text: consent.question
            color: consent.count > 0 ? theme.warning : theme.text
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        ScrollView {
            id: scroller
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 60
            visible: consent.commands !== ""
            clip: true
            background: Rectangle { color: theme.page; border.color: list.activeFocus ? theme.accent : theme.line; border.width: list.activeFocus ? 2 : 1 }
            TextArea {
                id: list
                objectName: "consentCommands"
                readOnly: true
                text: consent.commands
                wrapMode: TextEdit.Wrap
                textFormat: TextEdit.PlainText
                color: theme.text
                font.family: theme.digits
                font.pixelSize: theme.normal
                selectionColor: theme.accent
                selectedTextColor: theme.page
                selectByMouse: true
                background: null
                KeyNavigation.priority: KeyNavigation.BeforeItem
                KeyNavigation.tab: refuse
                Accessible.name: "Commands that wait for your leave"
                Keys.onPressed: (event) => sheet.scrollByKey(scroller.contentItem, event)
            }
        }
        Item { Layout.fillHeight: true; visible: !scroller.visible }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZButton {
                id: refuse
                objectName: "consentRefuse"
                focus: true
                text: "Do not run them"
                strong: true
                onClicked: app.closeSheet()
            }
            ZButton {
                objectName: "consentAllow"
                visible: consent.canAllow
                danger: true
                text: "Allow them"
                onClicked: consent.allow()
            }
            Item { Layout.fillWidth: true }
        }
    }
}
