import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    id: sheet
    title: "Keys"
    grow: true
    ZLabel {
        id: here
        width: parent.width
        visible: text !== ""
        text: app.keysHere === "" ? "" : "Here: " + app.keysHere
        font.bold: true
    }
    ListView {
        id: list
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; top: here.visible ? here.bottom : parent.top; margins: 4; topMargin: here.visible ? 10 : 4 }
        model: commands
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: false
        currentIndex: -1
        ScrollBar.vertical: ZScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: "Keys"
        Keys.onPressed: (event) => sheet.scrollByKey(list, event)
        delegate: RowLayout {
            required property string text
            required property string shortcut
            required property string menu
            width: ListView.view.width - 16
            height: visible ? theme.normal + 12 : 0
            visible: shortcut !== ""
            Text { text: parent.shortcut; color: theme.accent; font.family: theme.digits; font.pixelSize: theme.normal; Layout.preferredWidth: 180 }
            Text { text: (parent.menu ? parent.menu + " › " : "") + parent.text; color: theme.text; font.pixelSize: theme.normal; Layout.fillWidth: true; elide: Text.ElideRight }
        }
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: list.activeFocus ? 2 : 1
        border.color: list.activeFocus ? theme.accent : theme.line
    }
}
