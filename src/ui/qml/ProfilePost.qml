import QtQuick
import QtQuick.Layouts

// Sends what a body was found to offer to the service.
ColumnLayout {
    spacing: 4
    visible: profilePost.possible
    ZLabel {
        Layout.fillWidth: true
        text: "Help others with this body: model, serial number, lens and the lists below would go to " + service.host + ", with your email if you give one."
        color: theme.quiet
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        EmailField { objectName: "profileEmail"; Layout.fillWidth: true }
        ZField {
            id: lensField
            objectName: "profilePostLens"
            Layout.fillWidth: true
            placeholderText: "Lens, as 400 mm f/5.6 (optional)"
            text: profilePost.lens
            onTextEdited: profilePost.lens = text
            onActiveFocusChanged: app.setTyping(activeFocus)
            Accessible.name: "Lens that goes with the profile, optional"
        }
        ZButton {
            objectName: "sendProfile"
            text: "Send profile"
            enabled: !profilePost.sending
            onClicked: profilePost.send(service.email)
            Accessible.name: "Send profile to " + service.host
        }
    }
    ZLabel {
        objectName: "profilePostWords"
        Layout.fillWidth: true
        visible: text !== ""
        text: profilePost.words === "" ? "" : (profilePost.failed ? "✖ " : "") + profilePost.words
        color: profilePost.failed ? theme.bad : theme.text
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
}
