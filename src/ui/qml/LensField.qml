import QtQuick

// The lens on a body, kept on Enter and when the keyboard goes elsewhere; Escape brings back what was kept.
ZField {
    id: field
    property string lens
    property string owner
    property bool passing: false // is there for this once: Escape puts it away
    signal decided(string text)
    signal ended()

    placeholderText: "Lens, as 400 mm f/5.6"
    Accessible.name: "Lens of " + owner
    function take() {
        if (text.trim() !== lens)
            decided(text)
    }
    onAccepted: { take(); ended() }
    onActiveFocusChanged: {
        app.setTyping(activeFocus)
        if (activeFocus) {
            selectAll()
        } else {
            take()
            text = lens
            ended()
        }
    }
    Keys.onEscapePressed: (event) => {
        event.accepted = text !== lens || passing
        text = lens
        selectAll()
        if (passing)
            ended()
    }
    onLensChanged: if (!activeFocus) text = lens
    Component.onCompleted: text = lens
    Connections {
        target: app
        function onSheetClosing() { if (field.activeFocus) field.take() }
    }
}
