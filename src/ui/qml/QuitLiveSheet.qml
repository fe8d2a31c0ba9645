import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Quit during the live run"
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel {
            Layout.fillWidth: true
            text: "A live run is on, and nothing is fired while Zenka is closed. Started again, it offers to go on where the clock is then."
        }
        HoldButton {
            objectName: "quitHold"
            focus: true
            danger: true
            text: "Hold to quit (Enter or mouse, 1.5 s)"
            onHeld: app.quit()
        }
    }
}
