import QtQuick
import QtQuick.Layouts

// What can be done with the wizard's script.
ColumnLayout {
    id: root
    property bool low: false // the window has room for one line
    signal applyWanted()
    spacing: 4

    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: wizard.caution === "" ? "" : "▲ " + wizard.caution
        color: theme.warning
        font.pixelSize: theme.small
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZLabel {
            objectName: "wizardSummary"
            Layout.fillWidth: true
            visible: root.low
            text: wizard.summary + (wizard.tally === "" ? "" : " · " + wizard.tally)
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            wrapMode: Text.NoWrap
        }
        ZButton {
            objectName: "wizardApply"
            text: "Apply"
            strong: true
            enabled: wizard.chosen.length > 0
            onClicked: root.applyWanted()
            Accessible.name: "Apply: put the script into the editor"
        }
        ZButton { objectName: "wizardRead"; text: "Read the text"; onClicked: app.openPage("WizardText") }
        ZButton { text: "Copy text"; onClicked: app.copy(wizard.script); Accessible.name: "Copy the text of the script" }
        Item { Layout.fillWidth: true; visible: !root.low }
    }
}
