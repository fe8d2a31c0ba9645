import QtQuick
import QtQuick.Layouts

// A named field of the Location sheet with its fault or a note below.
ColumnLayout {
    id: root
    property string name
    property string shown
    property string fault
    property string note
    signal typed(string text)
    signal nudged(int steps)
    Layout.fillWidth: true
    spacing: 2

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZLabel { text: root.name; color: theme.quiet; Layout.preferredWidth: theme.normal * 7.4; wrapMode: Text.NoWrap }
        ZField {
            Layout.fillWidth: true
            text: root.shown
            onTextEdited: root.typed(text)
            onEditingFinished: location.check()
            Keys.onUpPressed: (event) => root.nudged(event.modifiers & Qt.ShiftModifier ? 10 : 1)
            Keys.onDownPressed: (event) => root.nudged(event.modifiers & Qt.ShiftModifier ? -10 : -1)
            Accessible.name: root.name
            Accessible.description: root.fault !== "" ? root.fault : root.note
        }
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.fault !== "" ? "✖ " + root.fault : root.note
        color: root.fault !== "" ? theme.bad : theme.quiet
        font.pixelSize: theme.small
    }
}
