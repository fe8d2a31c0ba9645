import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Search of a place by name, as it is typed. Up and Down choose, Enter takes.
FocusScope {
    id: root
    implicitHeight: column.implicitHeight

    function take(index) {
        location.takeResult(index)
        field.clear()
        location.search("")
    }

    ColumnLayout {
        id: column
        width: parent.width
        spacing: 2
        ZField {
            id: field
            objectName: "placeSearch"
            focus: true
            Layout.fillWidth: true
            placeholderText: "Search a place by name"
            Accessible.name: "Search a place by name"
            onTextEdited: location.search(text)
            onAccepted: if (list.count > 0) root.take(list.currentIndex)
            Keys.onDownPressed: list.incrementCurrentIndex()
            Keys.onUpPressed: list.decrementCurrentIndex()
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(list.contentHeight, 6 * 34) + 2
            visible: list.count > 0
            color: theme.page
            border.color: theme.line
            ListView {
                id: list
                objectName: "placeResults"
                anchors.fill: parent
                anchors.margins: 1
                clip: true
                model: location.results
                onCountChanged: currentIndex = 0
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ZScrollBar {}
                delegate: ItemDelegate {
                    id: row
                    required property int index
                    required property var modelData
                    width: ListView.view.width
                    height: Math.max(32, theme.normal + 18)
                    highlighted: ListView.isCurrentItem
                    focusPolicy: Qt.NoFocus
                    onClicked: root.take(index)
                    Accessible.name: modelData.label + " " + modelData.position
                    contentItem: RowLayout {
                        ZLabel {
                            Layout.fillWidth: true
                            text: (row.highlighted ? "▸ " : "  ") + row.modelData.label
                            color: row.highlighted ? theme.page : theme.text
                            elide: Text.ElideRight; wrapMode: Text.NoWrap
                        }
                        ZLabel {
                            text: row.modelData.position
                            color: row.highlighted ? theme.page : theme.quiet
                            font.family: theme.digits; font.pixelSize: theme.small
                        }
                    }
                    background: Rectangle { color: row.highlighted ? theme.accent : "transparent" }
                }
            }
        }
        ZLabel {
            Layout.fillWidth: true
            visible: text !== ""
            text: location.searchNote
            color: theme.quiet
            font.pixelSize: theme.small
        }
    }
}
