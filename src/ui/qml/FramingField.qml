import QtQuick
import QtQuick.Layouts

// A number of a framing under its name, with its fault below.
ColumnLayout {
    id: root
    property string field // of the view
    property string name
    property string hint
    readonly property string shown: framing.texts[field] ?? ""
    readonly property string fault: framing.faults[field] ?? ""
    readonly property alias input: input
    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop
    spacing: 2

    ZLabel { text: root.name; color: theme.quiet; wrapMode: Text.NoWrap; elide: Text.ElideRight; Layout.fillWidth: true }
    ZField {
        id: input
        objectName: "framing_" + root.field
        Layout.fillWidth: true
        text: root.shown
        placeholderText: root.hint
        font.family: theme.digits
        onTextEdited: framing.type(root.field, text)
        onEditingFinished: framing.check()
        onActiveFocusChanged: { app.setTyping(activeFocus); if (activeFocus) selectAll() }
        Keys.onUpPressed: (event) => framing.nudge(root.field, event.modifiers & Qt.ShiftModifier ? 10 : 1)
        Keys.onDownPressed: (event) => framing.nudge(root.field, event.modifiers & Qt.ShiftModifier ? -10 : -1)
        Accessible.name: root.name
        Accessible.description: root.fault
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.fault === "" ? "" : "✖ " + root.fault
        color: theme.bad
        font.pixelSize: theme.small
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
