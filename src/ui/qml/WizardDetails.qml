import QtQuick
import QtQuick.Layouts

// What the wizard's script comes to: frames of each camera, exposures against the table, and what to know.
ColumnLayout {
    id: root
    spacing: 6
    function colorOf(level) { return level === "good" ? theme.good : level === "bad" ? theme.bad : theme.warning }

    Repeater {
        model: wizard.cameras
        delegate: ZLabel {
            required property var modelData
            Layout.fillWidth: true
            text: modelData.name + ": " + modelData.frames + (modelData.used === "" ? "" : ", " + modelData.used)
            font.weight: Font.DemiBold
        }
    }
    ZLabel {
        visible: wizard.hasGauges
        Layout.fillWidth: true
        text: "Exposures against Espenak's table (NASA), for a high Sun" + (wizard.gaugesOf === "" ? "" : ": " + wizard.gaugesOf)
        color: theme.quiet
        font.pixelSize: theme.small
    }
    ZLabel { visible: wizard.hasGauges; Layout.fillWidth: true; text: wizard.coronaText; color: root.colorOf(wizard.coronaLevel) }
    Flow {
        visible: wizard.hasGauges
        Layout.fillWidth: true
        spacing: 4
        Repeater {
            model: 7
            delegate: Rectangle {
                id: zone
                required property int index
                readonly property var cell: wizard.zones[index]
                width: theme.small * 3.4
                height: Math.max(34, theme.small * 2 + 10)
                radius: 3
                color: cell.reached ? theme.page : "transparent"
                border.width: cell.reached ? 2 : 1
                border.color: cell.reached ? theme.good : theme.line
                Accessible.role: Accessible.Indicator
                Accessible.name: "Corona at " + cell.name + " solar radii " + (cell.reached ? "reached" : "not reached")
                Text {
                    anchors.centerIn: parent
                    text: (zone.cell.reached ? "✓" : "–") + "\n" + zone.cell.name
                    color: zone.cell.reached ? theme.text : theme.quiet
                    font.pixelSize: theme.small
                    font.weight: theme.weight
                    horizontalAlignment: Text.AlignHCenter
                    lineHeight: 0.95
                }
            }
        }
        ZLabel {
            text: "solar radii"
            color: theme.quiet
            font.pixelSize: theme.small
            height: Math.max(34, theme.small * 2 + 10)
            verticalAlignment: Text.AlignVCenter
            wrapMode: Text.NoWrap
        }
    }
    // Placed by hand: a row of a layout keeps the places of a taller one where its text wraps anew.
    Repeater {
        model: 4
        delegate: Item {
            id: row
            required property int index
            readonly property var gauge: wizard.gauges[index]
            visible: wizard.hasGauges && gauge.planned
            Layout.fillWidth: true
            implicitHeight: Math.max(take.height, verdict.implicitHeight)
            ZLabel {
                id: phase
                width: theme.normal * 9.5
                anchors.verticalCenter: parent.verticalCenter
                text: row.gauge.symbol + " " + row.gauge.name
                color: root.colorOf(row.gauge.level)
            }
            ZLabel {
                id: verdict
                anchors { left: phase.right; right: take.left; leftMargin: 8; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: row.gauge.text
            }
            ZButton {
                id: take
                objectName: "take-" + row.gauge.field
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                text: "Take " + row.gauge.shutter
                onClicked: wizard.takeValue(row.gauge.field, row.gauge.shutter)
                Accessible.name: row.gauge.name + ": take the table's shutter " + row.gauge.shutter
            }
        }
    }
    Repeater {
        model: wizard.remarks
        delegate: Item {
            id: remark
            required property var modelData
            Layout.fillWidth: true
            implicitHeight: said.implicitHeight
            ZLabel {
                text: remark.modelData.symbol
                color: remark.modelData.kind === "error" ? theme.bad : remark.modelData.kind === "warning" ? theme.warning : theme.quiet
                font.bold: true
            }
            ZLabel {
                id: said
                x: theme.normal * 1.4
                width: parent.width - x
                text: remark.modelData.text
                color: remark.modelData.kind === "note" ? theme.quiet : theme.text
                Accessible.name: remark.modelData.kind + ": " + text
            }
        }
    }
    ZLabel {
        visible: wizard.remarks.length === 0
        Layout.fillWidth: true
        text: "There is nothing to remark."
        color: theme.quiet
    }
}
