import QtQuick
import QtQuick.Layouts

// A setting that is typed, with what it does below. It is taken as it is typed, or
// when done where half an address would be asked, so nothing can be lost.
ColumnLayout {
    id: root
    property string name
    property string value
    property string note
    property bool whenDone: false // taken on Enter, with the keyboard elsewhere, and when the sheet closes
    signal decided(string text)
    Layout.fillWidth: true
    spacing: 2

    ZLabel { text: root.name; font.bold: true }
    ZField {
        id: field
        Layout.fillWidth: true
        text: root.value
        onTextEdited: if (!root.whenDone) root.decided(text)
        onEditingFinished: if (root.whenDone) root.decided(text)
        Accessible.name: root.name
        Accessible.description: root.note
    }
    Connections {
        target: app
        function onSheetClosing() { if (root.whenDone && field.activeFocus) root.decided(field.text) }
    }
    ZLabel { Layout.fillWidth: true; text: root.note; color: theme.quiet; font.pixelSize: theme.small }
}
