import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window

// A form that is scrolled where it is too long. What has the keyboard is to be seen.
Flickable {
    id: form
    default property alias content: fields.data
    readonly property real fieldsWidth: width - 14 // beside the scroll bar

    contentHeight: fields.childrenRect.height
    implicitHeight: contentHeight
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ZScrollBar { policy: form.contentHeight > form.height ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded }

    Item { id: fields; width: form.fieldsWidth; height: childrenRect.height }

    function reveal(item) {
        const top = item.mapToItem(fields, 0, 0).y
        if (top < contentY)
            contentY = Math.max(0, top - 4)
        else if (top + item.height > contentY + height)
            contentY = Math.max(0, Math.min(contentHeight - height, top + item.height - height + 4))
    }
    Connections {
        target: form.Window.window
        function onActiveFocusItemChanged() {
            const item = form.Window.activeFocusItem
            for (let above = item; above; above = above.parent)
                if (above === fields) { form.reveal(item); break }
        }
    }
}
