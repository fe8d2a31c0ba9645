import QtQuick
import QtQuick.Controls.Basic

// One line a camera, for windows with no room for the cards.
ListView {
    id: strip
    readonly property int rowHeight: theme.normal + 8
    implicitHeight: Math.max(1, count) * rowHeight
    clip: true
    activeFocusOnTab: contentHeight > height
    boundsBehavior: Flickable.StopAtBounds
    model: cameras
    ScrollBar.vertical: ZScrollBar {}
    Accessible.role: Accessible.List
    Accessible.name: "Cameras"
    delegate: Text {
        required property string statusLine
        required property string warning
        required property string bodyState
        width: strip.width - 12
        height: strip.rowHeight
        leftPadding: 8
        text: statusLine
        textFormat: Text.PlainText
        color: bodyState === "ready" ? theme.text : theme.warning
        font.family: theme.digits
        font.pixelSize: theme.normal
        font.weight: bodyState === "ready" ? theme.weight : Font.Bold
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.role: Accessible.ListItem
        Accessible.name: statusLine + (warning !== "" ? ". " + warning : "")
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: 2
        border.color: theme.accent
        visible: strip.activeFocus
    }
    ZLabel {
        anchors { left: parent.left; leftMargin: 8; verticalCenter: parent.verticalCenter }
        visible: strip.count === 0
        text: cameras.emptyText
        color: theme.quiet
        elide: Text.ElideRight
        wrapMode: Text.NoWrap
        width: parent.width - 16
    }
}
