import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Updates"
    sheetWidth: 560
    Component.onCompleted: updates.check()
    ColumnLayout {
        width: parent.width
        spacing: 12
        ZLabel { text: updates.words; Layout.fillWidth: true; Accessible.name: text }
        ZButton {
            text: "Check again"
            focus: true
            visible: updates.address !== ""
            enabled: !updates.asking
            onClicked: updates.check()
        }
    }
}
