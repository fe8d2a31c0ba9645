import QtQuick
import QtQuick.Layouts

// One section of the wizard's form.
ColumnLayout {
    id: root
    property var section
    property string reason
    property ChoicePopup list
    spacing: 2

    function enter() { heading.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason) }

    Rectangle { Layout.fillWidth: true; Layout.preferredHeight: 1; color: theme.line }
    ZLabel {
        id: heading
        Layout.fillWidth: true
        Layout.topMargin: 4
        text: root.section.title
        font.bold: true
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    ZLabel {
        Layout.fillWidth: true
        visible: text !== ""
        text: root.reason
        color: theme.quiet
    }
    Repeater {
        model: root.section.rows
        delegate: WizardRow {
            required property var modelData
            Layout.fillWidth: true
            row: modelData
            list: root.list
        }
    }
}
