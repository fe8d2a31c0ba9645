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
    // A column and no list: with rows left out, a list only guesses how long it is.
    Flickable {
        id: list
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; top: here.visible ? here.bottom : parent.top; margins: 4; topMargin: here.visible ? 10 : 4 }
        contentHeight: rows.height
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ZScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: "Keys"
        Keys.onPressed: (event) => sheet.scrollByKey(list, event)
        Column {
            id: rows
            width: list.width - 16
            Repeater {
                model: commands
                delegate: RowLayout {
                    required property string text
                    required property string shortcut
                    required property string menu
                    width: rows.width
                    height: theme.normal + 12
                    visible: shortcut !== ""
                    Text { text: parent.shortcut; color: theme.accent; font.family: theme.digits; font.pixelSize: theme.normal; Layout.preferredWidth: 180 }
                    Text { text: (parent.menu ? parent.menu + " › " : "") + parent.text; color: theme.text; font.pixelSize: theme.normal; Layout.fillWidth: true; elide: Text.ElideRight }
                }
            }
        }
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: list.activeFocus ? 2 : 1
        border.color: list.activeFocus ? theme.accent : theme.line
    }
}
