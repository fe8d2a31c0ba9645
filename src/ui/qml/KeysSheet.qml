import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    title: "Keys"
    grow: true
    ListView {
        anchors.fill: parent
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
