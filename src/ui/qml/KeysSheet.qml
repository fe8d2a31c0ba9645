import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
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
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; top: here.visible ? here.bottom : parent.top; topMargin: here.visible ? 10 : 0 }
        model: commands
        clip: true
        focus: true
        ScrollBar.vertical: ScrollBar {}
        Keys.onDownPressed: flick(0, -600)
        Keys.onUpPressed: flick(0, 600)
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
}
