import QtQuick

// The user's address for an answer, the same wherever it is asked for.
ZField {
    placeholderText: "Email for an answer (optional)"
    Accessible.name: "Email for an answer, optional"
    Component.onCompleted: text = service.email
    onTextEdited: service.email = text
    onActiveFocusChanged: app.setTyping(activeFocus)
}
