import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Jump to time"
    sheetWidth: 480
    readonly property string keysHere: "Up, down: a second on or back, with Shift a minute. Enter: jump. Escape: back."
    ColumnLayout {
        width: parent.width
        spacing: 8
        ZLabel { text: "Time of day at the site, as 20:29 or 20:29:03"; Layout.fillWidth: true }
        ZField {
            id: field
            objectName: "jumpField"
            focus: true
            Layout.fillWidth: true
            Accessible.name: "Time of day at the site"
            // not bound to the clock, which goes on while one types
            Component.onCompleted: {
                text = clock.siteTime
                selectAll()
            }
            onAccepted: go()
            Keys.onUpPressed: (event) => text = clock.nudged(text, event.modifiers & Qt.ShiftModifier ? 60 : 1)
            Keys.onDownPressed: (event) => text = clock.nudged(text, event.modifiers & Qt.ShiftModifier ? -60 : -1)
            function go() {
                if (clock.jumpToLocalTime(text))
                    app.closeSheet()
                else
                    fault.visible = true
            }
        }
        ZLabel {
            id: fault
            visible: false
            color: theme.bad
            text: "✖ That is no time of day. Type hours and minutes, as 20:29, or 20:29:03 with seconds."
            Layout.fillWidth: true
        }
        ZButton { text: "Jump"; strong: true; onClicked: field.go() }
    }
}
