import QtQuick
import QtQuick.Layouts

// The values of one row of the wizard's form under its name, with what there is to say of them below.
ColumnLayout {
    id: root
    property var row
    property ChoicePopup list
    readonly property bool single: row.cells.length === 1 && row.cells[0].kind === "check"
    readonly property bool any: {
        for (const cell of row.cells)
            if (cell.shown)
                return true
        return false
    }
    visible: any
    spacing: 0

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZLabel {
            visible: !root.single
            Layout.preferredWidth: theme.normal * 11
            Layout.alignment: Qt.AlignTop
            Layout.minimumHeight: Math.max(32, theme.normal + 18)
            verticalAlignment: Text.AlignVCenter
            text: root.row.name
            color: theme.quiet
        }
        Flow {
            Layout.fillWidth: true
            spacing: 8
            Repeater {
                model: root.row.cells
                delegate: WizardEntry {
                    id: entry
                    required property QtObject modelData
                    cell: modelData
                    onListWanted: (below) => root.list.openOn(below, modelData.key)
                }
            }
        }
    }
    Repeater {
        model: root.row.cells
        delegate: Item {
            id: words
            required property QtObject modelData
            readonly property bool faulty: modelData.fault !== ""
            Layout.fillWidth: true
            Layout.leftMargin: root.single ? 6 : theme.normal * 11 + 8
            Layout.bottomMargin: 4
            visible: modelData.shown && (faulty || modelData.note !== "")
            implicitHeight: Math.max(said.implicitHeight, take.visible ? take.height : 0)
            ZLabel {
                id: said
                anchors { left: parent.left; right: take.visible ? take.left : parent.right; rightMargin: take.visible ? 8 : 0; verticalCenter: parent.verticalCenter }
                text: words.faulty ? "✖ " + words.modelData.fault
                    : words.modelData.warned ? "▲ " + words.modelData.note : words.modelData.note
                color: words.faulty ? theme.bad : words.modelData.warned ? theme.warning : theme.quiet
                font.pixelSize: theme.small
                Accessible.role: words.faulty ? Accessible.AlertMessage : Accessible.StaticText
                Accessible.name: text
            }
            ZButton {
                id: take
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                visible: words.modelData.offer !== ""
                objectName: "offer-" + words.modelData.key
                text: words.modelData.offer
                onClicked: wizard.takeOffer(words.modelData.key)
                Accessible.name: words.modelData.label + ": " + text
            }
        }
    }
}
