import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Arm the real eclipse clock"
    readonly property bool heldBack: arming.tooTight !== ""
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel {
            Layout.fillWidth: true
            visible: !heldBack
            text: "The clock will follow real time for " + clock.eclipseName + " at " + clock.siteLabel +
                  ", and every frame of the script is fired at its instant. The timeline cannot be moved until you leave the live run."
        }
        ZLabel { Layout.fillWidth: true; visible: !heldBack; text: clock.phaseText; color: theme.quiet }
        ZLabel {
            objectName: "armWarning"
            Layout.fillWidth: true
            visible: text !== ""
            color: theme.warning
            font.weight: Font.Bold
            property string estimate: ""
            Component.onCompleted: estimate = arming.estimate()
            text: heldBack ? "⚠ Not armed yet. " + arming.tooTight : estimate === "" ? "" : "⚠ " + estimate
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        RowLayout {
            visible: heldBack
            spacing: 8
            ZButton { objectName: "armEdit"; text: "Edit the script…"; strong: true; onClicked: arming.editScript() }
            ZButton { objectName: "armMeasure"; text: "Measure the camera…"; onClicked: arming.measure() }
        }
        HoldButton {
            objectName: "armHold"
            focus: true
            strong: !heldBack
            text: heldBack ? "Hold to arm all the same (1.5 s)" : "Hold to arm (Enter or mouse, 1.5 s)"
            onHeld: heldBack ? arming.armAnyway() : arming.arm()
        }
    }
}
