import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The wizard's script, to read before it is applied.
SheetFrame {
    id: sheet
    title: "The wizard's script"
    grow: true
    readonly property string keysHere: "Up, down, page up, page down: read on. Escape: back to the form."
    Component.onCompleted: wizard.open()
    Component.onDestruction: wizard.close()

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: theme.page
            border.width: page.activeFocus ? 2 : 1
            border.color: page.activeFocus ? theme.accent : theme.line
            TextScroller {
                id: scroller
                anchors.fill: parent
                anchors.margins: 2
                focus: true
                TextArea {
                    id: page
                    objectName: "wizardText"
                    focus: true
                    readOnly: true
                    textFormat: TextEdit.PlainText
                    text: wizard.script
                    color: theme.text
                    font.family: theme.digits
                    font.pixelSize: theme.normal
                    font.weight: theme.weight
                    selectionColor: theme.accent
                    selectedTextColor: theme.page
                    selectByMouse: true
                    background: null
                    Accessible.name: "Text of the wizard's script"
                    Keys.priority: Keys.BeforeItem
                    Keys.onPressed: (event) => sheet.scrollByKey(scroller.contentItem, event)
                    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                }
            }
        }
        RowLayout {
            spacing: 8
            ZButton { text: "Copy text"; onClicked: app.copy(wizard.script) }
            ZLabel { Layout.fillWidth: true; text: wizard.summary; color: theme.quiet }
        }
    }
}
