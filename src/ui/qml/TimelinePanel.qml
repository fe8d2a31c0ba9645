import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Zenka

// The run on a line of time, and the mark under the pointer in words.
Rectangle {
    id: panel
    objectName: "timelinePanel"
    readonly property string keysHere: timeline.keysText
    color: theme.panel
    property bool low: height < 140

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 2
        spacing: 2

        Flickable {
            id: lanes
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            interactive: false // a drag moves the clock
            contentHeight: Math.max(height, item.roomyHeight)
            ScrollBar.vertical: ScrollBar {
                policy: lanes.contentHeight > lanes.height ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
            }

            TimelineItem {
                id: item
                objectName: "timelineItem"
                width: lanes.width
                height: lanes.contentHeight
                view: timeline
                colors: theme
                compact: panel.low
                onSelectionChanged: (top, bottom) => {
                    lanes.contentY = Math.max(Math.min(lanes.contentY, top), bottom - lanes.height)
                }
                Accessible.role: Accessible.Graphic
                Accessible.name: "Timeline. " + timeline.markText
                Accessible.description: timeline.keysText
                Accessible.focusable: true
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 4
            visible: panel.height > 80
            spacing: 4
            Text {
                text: timeline.markText
                textFormat: Text.PlainText
                color: theme.text
                font.pixelSize: panel.low ? theme.small : theme.normal
                font.weight: theme.weight
                elide: Text.ElideRight
                Layout.fillWidth: true
                Accessible.name: text
            }
            ZButton {
                visible: timeline.empty && !panel.low
                text: "Script Wizard…"
                onClicked: commands.trigger("scriptWizard")
            }
            ZButton {
                visible: !panel.low
                text: "−"
                Accessible.name: "Zoom out"
                enabled: !timeline.wholeShown
                onClicked: timeline.zoomOut()
            }
            ZButton {
                visible: !panel.low
                text: "+"
                Accessible.name: "Zoom in"
                onClicked: timeline.zoomIn()
            }
            ZButton {
                visible: !panel.low
                text: "All"
                Accessible.name: "Show the whole run"
                enabled: !timeline.wholeShown
                onClicked: timeline.showAll()
            }
        }
    }

    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.width: 2
        border.color: theme.accent
        visible: item.activeFocus
    }
}
