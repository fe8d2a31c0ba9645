import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Arm the real eclipse clock"
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel {
            Layout.fillWidth: true
            text: "The clock will follow real time for " + clock.eclipseName + " at " + clock.siteLabel +
                  ", and every frame of the script is fired at its instant. The timeline cannot be moved until you leave the live run."
        }
        ZLabel { Layout.fillWidth: true; text: clock.phaseText; color: theme.quiet }
        ZLabel {
            objectName: "armWarning"
            Layout.fillWidth: true
            visible: text !== ""
            color: theme.warning
            font.weight: Font.Bold
            Component.onCompleted: { const words = app.armWarning(); text = words === "" ? "" : "⚠ " + words }
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        HoldButton {
            objectName: "armHold"
            focus: true
            strong: true
            text: "Hold to arm (Enter or mouse, 1.5 s)"
            onHeld: app.arm()
        }
    }
}
