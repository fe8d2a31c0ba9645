import QtQuick
import QtQuick.Controls.Basic

SheetFrame {
    id: sheet
    title: app.guidePage
    grow: true
    ScrollView {
        id: scroller
        anchors.fill: parent
        anchors.margins: 2
        clip: true
        focus: true
        TextArea {
            id: page
            focus: true
            readOnly: true
            textFormat: TextEdit.MarkdownText
            text: app.guideText
            wrapMode: TextEdit.Wrap
            color: theme.text
            font.pixelSize: theme.normal
            selectionColor: theme.accent
            selectedTextColor: theme.page
            background: null
            Accessible.name: app.guidePage
            Keys.priority: Keys.BeforeItem
            Keys.onPressed: (event) => sheet.scrollByKey(scroller.contentItem, event)
        }
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: page.activeFocus ? 2 : 1
        border.color: page.activeFocus ? theme.accent : theme.line
    }
}
