import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Window

// The script wizard: a form of answers, and beside it what the script would be. In a small window the picture
// stays below the form, and the rest follows its last field.
SheetFrame {
    id: sheet
    title: "Script Wizard" + (low ? "  " + wizard.siteText : "")
    grow: true
    readonly property bool low: height < 560 || width < 1100
    readonly property string keysHere: "Up, down: the next value, with Shift three steps. Alt+Down: the list of values. Enter: to the next field. Ctrl+page down, Ctrl+page up: the next section, the one before. Ctrl+Enter: apply. Escape: back; the answers are kept."
    Component.onCompleted: {
        wizard.open()
        bodies.enter()
    }
    Component.onDestruction: wizard.close()

    function apply() {
        if (wizard.chosen.length === 0)
            return
        wizard.apply()
        app.closeSheet()
    }
    // The section that has the keyboard, the cameras being the first.
    function jump(by) {
        const all = [bodies]
        for (let i = 0; i < parts.count; ++i)
            all.push(parts.itemAt(i))
        let now = 0
        for (let item = Window.activeFocusItem; item; item = item.parent)
            if (all.indexOf(item) >= 0)
                now = all.indexOf(item)
        all[Math.max(0, Math.min(all.length - 1, now + by))].enter()
    }
    Keys.onPressed: (event) => {
        const control = event.modifiers & Qt.ControlModifier
        const down = event.key === Qt.Key_PageDown
        if (control && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter))
            apply()
        else if (control && (down || event.key === Qt.Key_PageUp))
            jump(down ? 1 : -1)
        else if (down || event.key === Qt.Key_PageUp)
            scrollByKey(form, event)
        else
            return
        event.accepted = true
    }

    GridLayout {
        anchors.fill: parent
        columns: sheet.low ? 1 : 2
        columnSpacing: 16
        rowSpacing: 6

        FormFlick {
            id: form
            objectName: "wizardForm"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 100
            ColumnLayout {
                width: form.fieldsWidth
                spacing: 10
                WizardBodies { id: bodies; Layout.fillWidth: true; list: choices }
                Repeater {
                    id: parts
                    model: wizard.sections
                    delegate: WizardSection {
                        required property var modelData
                        required property int index
                        Layout.fillWidth: true
                        section: modelData
                        reason: wizard.reasons[index]
                        list: choices
                    }
                }
                Loader {
                    Layout.fillWidth: true
                    active: sheet.low
                    visible: active
                    source: "WizardDetails.qml"
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: !sheet.low
            Layout.preferredWidth: 100
            spacing: 8
            ZLabel {
                visible: !sheet.low
                Layout.fillWidth: true
                text: wizard.siteText
                font.bold: true
            }
            ZLabel {
                visible: !sheet.low
                objectName: "wizardCount"
                Layout.fillWidth: true
                text: wizard.summary + (wizard.tally === "" ? "" : " · " + wizard.tally)
            }
            WizardPictures { Layout.fillWidth: true; thin: sheet.low; room: sheet.height * (sheet.low ? 0.22 : 0.36) }
            FormFlick {
                id: details
                objectName: "wizardDetails"
                visible: !sheet.low
                Layout.fillWidth: true
                Layout.fillHeight: true
                activeFocusOnTab: true
                Keys.onPressed: (event) => { if (!(event.modifiers & Qt.ControlModifier)) sheet.scrollByKey(details, event); else event.accepted = false }
                Accessible.role: Accessible.List
                Accessible.name: "What the script comes to: " + wizard.summary
                Loader {
                    width: details.fieldsWidth
                    active: !sheet.low
                    source: "WizardDetails.qml"
                }
                Rectangle {
                    parent: details
                    anchors.fill: parent
                    color: "transparent"
                    border.width: 2
                    border.color: theme.accent
                    visible: details.activeFocus
                }
            }
            WizardActions { Layout.fillWidth: true; low: sheet.low; onApplyWanted: sheet.apply() }
        }
    }

    ChoicePopup {
        id: choices
        parent: sheet
        property string key // of the field, empty for names of cameras
        function openOn(item, field) {
            key = field
            openFor(item, wizard.options(field), wizard.optionNow(field))
        }
        function openNames(item, names) {
            key = ""
            openFor(item, names, 0)
        }
        onPicked: (index) => key === "" ? wizard.copyTo(values[index]) : wizard.takeOption(key, index)
    }
}
