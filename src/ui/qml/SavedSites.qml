import QtQuick
import QtQuick.Layouts

// The sites that the user keeps: take, make one the default, delete, and save the one of the fields.
ColumnLayout {
    id: root
    spacing: 4

    ZLabel { text: "Saved sites"; font.bold: true }
    ZLabel {
        Layout.fillWidth: true
        visible: location.savedSites.length === 0
        text: "No site is saved yet. Give the one above a name and save it."
        color: theme.quiet
    }
    Repeater {
        model: location.savedSites
        delegate: RowLayout {
            id: row
            required property var modelData
            Layout.fillWidth: true
            spacing: 4
            ZButton {
                Layout.fillWidth: true
                text: row.modelData.name
                onClicked: location.takeSaved(row.modelData.siteId)
                Accessible.name: "Take " + row.modelData.name + ", " + row.modelData.position
            }
            ZButton {
                text: row.modelData.isDefault ? "★ Default" : "☆ Default"
                strong: row.modelData.isDefault
                onClicked: location.toggleDefault(row.modelData.siteId)
                Accessible.name: (row.modelData.isDefault ? "No longer the default: " : "Make the default: ") + row.modelData.name
            }
            ZButton {
                text: "Delete"
                onClicked: location.deleteSaved(row.modelData.siteId)
                Accessible.name: "Delete " + row.modelData.name
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true
        visible: location.undoText !== ""
        ZLabel { Layout.fillWidth: true; text: location.undoText }
        ZButton { text: "Undo"; onClicked: location.undoDelete(); Accessible.name: "Undo: " + location.undoText }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 4
        ZField {
            id: nameField
            Layout.fillWidth: true
            placeholderText: "Name for this site"
            Accessible.name: "Name to save this site under"
            onAccepted: root.save()
        }
        ZButton { text: "Save"; onClicked: root.save(); Accessible.name: "Save this site" }
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: location.saveFault === "" ? "" : "✖ " + location.saveFault
        color: theme.bad
        font.pixelSize: theme.small
    }
    function save() {
        if (location.saveAs(nameField.text))
            nameField.clear()
    }
}
