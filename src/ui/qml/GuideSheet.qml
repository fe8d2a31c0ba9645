import QtQuick
import QtQuick.Controls.Basic

SheetFrame {
    title: app.guidePage
    grow: true
    ScrollView {
        anchors.fill: parent
        clip: true
        TextArea {
            focus: true
            readOnly: true
            textFormat: TextEdit.MarkdownText
            text: app.guideText
            wrapMode: TextEdit.Wrap
            color: theme.text
            font.pixelSize: theme.normal
            selectionColor: theme.accent
            background: null
        }
    }
}
