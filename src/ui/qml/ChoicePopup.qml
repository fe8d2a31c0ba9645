import QtQuick
import QtQuick.Controls.Basic

// A list of values to choose one from, opened below what it belongs to. One serves a whole form.
Popup {
    id: popup
    property Item owner: null
    property var values: []
    signal picked(int index)

    function openFor(item, list, now) {
        owner = item
        values = list
        rows.currentIndex = now
        const room = parent.height
        const place = item.mapToItem(parent, 0, item.height)
        height = Math.min(room - 8, list.length * rows.rowHeight + 2, Math.max(240, rows.rowHeight * 4))
        x = Math.max(4, Math.min(place.x, parent.width - width - 4))
        y = place.y + height > room - 4 ? Math.max(4, place.y - item.height - height) : place.y
        open()
        rows.positionViewAtIndex(now, ListView.Center)
        rows.forceActiveFocus()
    }
    function pick(index) {
        close()
        picked(index)
    }

    width: theme.normal * 16
    padding: 1
    modal: true
    dim: false
    focus: true
    enter: null
    exit: null
    onClosed: if (owner) owner.forceActiveFocus(Qt.PopupFocusReason)
    background: Rectangle { color: theme.page; border.color: theme.accent; border.width: 2; radius: 4 }
    contentItem: ListView {
        id: rows
        objectName: "choiceRows"
        readonly property int rowHeight: Math.max(30, theme.normal + 14)
        clip: true
        focus: true
        model: popup.values
        keyNavigationEnabled: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        ScrollBar.vertical: ZScrollBar {}
        Accessible.role: Accessible.List
        Keys.onReturnPressed: popup.pick(currentIndex)
        Keys.onEnterPressed: popup.pick(currentIndex)
        Keys.onSpacePressed: popup.pick(currentIndex)
        Keys.onPressed: (event) => {
            if (event.key === Qt.Key_Home) currentIndex = 0
            else if (event.key === Qt.Key_End) currentIndex = count - 1
            else if (event.key === Qt.Key_PageDown) currentIndex = Math.min(count - 1, currentIndex + 6)
            else if (event.key === Qt.Key_PageUp) currentIndex = Math.max(0, currentIndex - 6)
            else return
            event.accepted = true
        }
        delegate: Rectangle {
            id: row
            required property int index
            required property string modelData
            width: rows.width
            height: rows.rowHeight
            color: ListView.isCurrentItem ? theme.accent : "transparent"
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData
            Text {
                anchors.fill: parent
                anchors.leftMargin: 10
                text: (row.ListView.isCurrentItem ? "▸ " : "  ") + row.modelData
                color: row.ListView.isCurrentItem ? theme.page : theme.text
                font.pixelSize: theme.normal
                font.weight: theme.weight
                verticalAlignment: Text.AlignVCenter
            }
            MouseArea { anchors.fill: parent; onClicked: popup.pick(row.index) }
        }
    }
}
