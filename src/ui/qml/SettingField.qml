import QtQuick
import QtQuick.Layouts

// A setting that is typed, with what it does below. It is taken as it is typed, so nothing can be lost.
ColumnLayout {
    id: root
    property string name
    property string value
    property string note
    signal decided(string text)
    Layout.fillWidth: true
    spacing: 2

    ZLabel { text: root.name; font.bold: true }
    ZField {
        Layout.fillWidth: true
        text: root.value
        onTextEdited: root.decided(text)
        Accessible.name: root.name
        Accessible.description: root.note
    }
    ZLabel { Layout.fillWidth: true; text: root.note; color: theme.quiet; font.pixelSize: theme.small }
}
