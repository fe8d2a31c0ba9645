import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Leave the live run"
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel {
            Layout.fillWidth: true
            text: "Nothing more is fired once you leave. The run log is closed and the clock goes back to simulated."
        }
        HoldButton {
            objectName: "leaveHold"
            focus: true
            danger: true
            text: "Hold to leave (Enter or mouse, 1.5 s)"
            onHeld: app.leaveLive()
        }
    }
}
