import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Window

// One of a list of words.
ComboBox {
    id: box
    implicitHeight: Math.max(32, theme.normal + 18)
    font.pixelSize: theme.normal
    font.weight: theme.weight
    contentItem: Text {
        leftPadding: 10
        text: box.displayText
        color: theme.text
        font: box.font
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Text {
        x: box.width - width - 10
        anchors.verticalCenter: parent.verticalCenter
        text: "▾"
        color: theme.text
        font.pixelSize: theme.normal
    }
    background: Rectangle {
        radius: 4
        color: theme.page
        border.width: box.activeFocus ? 2 : 1
        border.color: box.activeFocus ? theme.accent : theme.line
    }
    delegate: ItemDelegate {
        id: line
        required property int index
        required property string modelData
        width: ListView.view.width
        height: Math.max(28, theme.normal + 12)
        highlighted: box.highlightedIndex === index
        contentItem: Text {
            text: line.modelData
            color: line.highlighted ? theme.page : theme.text
            font: box.font
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle { color: line.highlighted ? theme.accent : theme.panel }
    }
    popup: Popup {
        y: box.height
        width: box.width
        height: Math.min(contentItem.implicitHeight + 2, box.Window.height * 0.5)
        margins: 8
        padding: 1
        enter: null
        exit: null
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: box.popup.visible ? box.delegateModel : null
            currentIndex: box.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ZScrollBar {}
        }
        background: Rectangle { color: theme.panel; border.color: theme.line }
    }
}
