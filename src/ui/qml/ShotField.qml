import QtQuick
import QtQuick.Layouts

// A setting of a test shot under its name, with its fault below.
ColumnLayout {
    id: root
    property string name
    property string shown
    property string fault
    signal typed(string text)
    signal nudged(int steps)
    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop
    spacing: 2

    ZLabel { text: root.name; color: theme.quiet; wrapMode: Text.NoWrap }
    ZField {
        id: field
        Layout.fillWidth: true
        text: root.shown
        placeholderText: "body's own"
        font.family: theme.digits
        onTextEdited: root.typed(text)
        onEditingFinished: testShot.check()
        onActiveFocusChanged: { app.setTyping(activeFocus); if (activeFocus) selectAll() }
        // Held down, the key would fire again and again.
        Keys.onReturnPressed: (event) => { if (!event.isAutoRepeat) testShot.fire() }
        Keys.onEnterPressed: (event) => { if (!event.isAutoRepeat) testShot.fire() }
        Keys.onUpPressed: (event) => root.nudged(event.modifiers & Qt.ShiftModifier ? 3 : 1)
        Keys.onDownPressed: (event) => root.nudged(event.modifiers & Qt.ShiftModifier ? -3 : -1)
        Accessible.name: root.name
        Accessible.description: root.fault
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.fault === "" ? "" : "✖ " + root.fault
        color: theme.bad
        font.pixelSize: theme.small
    }
}
