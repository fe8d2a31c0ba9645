import QtQuick
import QtQuick.Layouts

// The bodies to pick one from, the picked one told by its mark.
ColumnLayout {
    id: picker
    property string picked
    signal chosen(string bodyId)
    spacing: 4

    ZLabel {
        Layout.fillWidth: true
        visible: rows.count === 0
        text: "No body is here. Detect one in the Cameras panel (Ctrl+D)."
        color: theme.quiet
    }
    Repeater {
        id: rows
        model: bodyList
        delegate: ZButton {
            id: row
            required property string bodyId
            required property string label
            required property string bodyModel
            required property string driver
            required property string fault
            readonly property bool isPicked: bodyId === picker.picked
            objectName: "body"
            Layout.fillWidth: true
            onClicked: picker.chosen(bodyId)
            text: label + ", " + bodyModel + ", " + driver + (fault === "" ? "" : ", " + fault)
            Accessible.role: Accessible.RadioButton
            Accessible.name: text
            Accessible.checked: isPicked
            contentItem: RowLayout {
                spacing: 10
                ZLabel {
                    text: (row.isPicked ? "● " : "○ ") + row.label
                    font.weight: row.isPicked ? Font.Bold : theme.weight
                    color: row.isPicked ? theme.accent : theme.text
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Layout.maximumWidth: implicitWidth + 1
                }
                ZLabel {
                    text: (row.bodyModel === row.label ? "" : row.bodyModel + " · ") + row.driver
                    color: theme.quiet
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                ZLabel {
                    visible: text !== ""
                    text: row.fault
                    color: theme.warning
                    wrapMode: Text.NoWrap
                }
            }
        }
    }
}
