import QtQuick
import QtQuick.Layouts

// Which cameras the wizard plans for, and whether they share a plan.
ColumnLayout {
    id: root
    property ChoicePopup list
    spacing: 4

    function enter() { heading.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason) }

    ZLabel { id: heading; Layout.fillWidth: true; text: "Cameras"; font.bold: true; Accessible.role: Accessible.Heading; Accessible.name: text }
    Flow {
        Layout.fillWidth: true
        spacing: 8
        Repeater {
            model: wizard.names
            delegate: ZCheck {
                required property string modelData
                objectName: "body-" + modelData
                text: modelData + "  (" + wizard.factsOf(modelData) + ")"
                checked: wizard.chosen.indexOf(modelData) >= 0
                onToggled: { wizard.choose(modelData, checked); checked = Qt.binding(() => wizard.chosen.indexOf(modelData) >= 0) }
            }
        }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZField {
            id: nameField
            objectName: "wizardName"
            Layout.preferredWidth: theme.normal * 14
            placeholderText: "Another name"
            onAccepted: if (wizard.addName(text)) clear()
            onActiveFocusChanged: app.setTyping(activeFocus)
            Accessible.name: "Name of another camera"
            Accessible.description: wizard.nameFault
        }
        ZButton { text: "Add"; onClicked: if (wizard.addName(nameField.text)) nameField.clear(); Accessible.name: "Add the camera of this name" }
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: wizard.nameFault === "" ? "" : "▲ " + wizard.nameFault
        color: theme.warning
        font.pixelSize: theme.small
    }
    Flow {
        Layout.fillWidth: true
        spacing: 8
        ZButton {
            objectName: "onePlan"
            text: (wizard.perCamera ? "○ " : "● ") + "One plan for all"
            strong: !wizard.perCamera
            onClicked: wizard.perCamera = false
        }
        ZButton {
            objectName: "ownPlans"
            text: (wizard.perCamera ? "● " : "○ ") + "A plan for each"
            strong: wizard.perCamera
            onClicked: wizard.perCamera = true
        }
        ZButton { text: "Start afresh"; objectName: "startAfresh"; onClicked: wizard.startAfresh(); Accessible.name: "Start afresh: all answers as at the beginning" }
    }
    Flow {
        Layout.fillWidth: true
        visible: wizard.perCamera && wizard.chosen.length > 0
        spacing: 8
        ZLabel { text: "Plan of"; color: theme.quiet; height: Math.max(32, theme.normal + 18); verticalAlignment: Text.AlignVCenter }
        Repeater {
            model: wizard.perCamera ? wizard.names : []
            delegate: ZButton {
                required property string modelData
                objectName: "plan-" + modelData
                visible: wizard.chosen.indexOf(modelData) >= 0
                text: (wizard.current === modelData ? "● " : "○ ") + modelData
                strong: wizard.current === modelData
                onClicked: wizard.current = modelData
                Accessible.name: "Edit the plan of " + modelData
            }
        }
        ZButton {
            objectName: "copyToAll"
            visible: wizard.chosen.length > 1
            text: "Copy to all"
            onClicked: wizard.copyTo("")
            Accessible.name: "Copy the answers of " + wizard.current + " to all cameras"
        }
        ZButton {
            objectName: "copyTo"
            visible: wizard.chosen.length > 2
            text: "Copy to ▾"
            onClicked: root.list.openNames(this, wizard.chosen.filter((name) => name !== wizard.current))
            Accessible.name: "Copy the answers of " + wizard.current + " to another camera"
        }
    }
    RowLayout {
        Layout.fillWidth: true
        visible: wizard.undoText !== ""
        ZLabel { Layout.fillWidth: true; text: wizard.undoText; color: theme.quiet; Accessible.role: Accessible.AlertMessage; Accessible.name: text }
        ZButton {
            objectName: "wizardUndo"
            text: "Undo"
            Accessible.name: "Undo: " + wizard.undoText
            onClicked: { root.enter(); wizard.undo() }
        }
    }
}
