import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Jump to time"
    sheetWidth: 480
    ColumnLayout {
        width: parent.width
        spacing: 8
        ZLabel { text: "Time of day at the site, as 20:29 or 20:29:03"; Layout.fillWidth: true }
        ZField {
            id: field
            objectName: "jumpField"
            focus: true
            text: clock.siteTime
            Layout.fillWidth: true
            Accessible.name: "Time of day at the site"
            Component.onCompleted: selectAll()
            onAccepted: go()
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
