import QtQuick
import QtQuick.Layouts

// The frames of a burst as they come, the first that was missing in a frame of its own.
ColumnLayout {
    id: strip
    spacing: 6
    Flow {
        Layout.fillWidth: true
        spacing: 2
        Accessible.role: Accessible.StaticText
        Accessible.name: gapProfiler.burstText
        Repeater {
            model: gapProfiler.burstFrames
            delegate: Rectangle {
                id: place
                required property int index
                readonly property bool first: index === gapProfiler.firstMiss
                objectName: "burstFrame"
                width: mark.width + 6
                height: mark.height + 4
                color: "transparent"
                border.width: first ? 2 : 0
                border.color: theme.bad
                FrameMark {
                    id: mark
                    anchors.centerIn: parent
                    sign: gapProfiler.burstMarks.charAt(place.index)
                }
            }
        }
    }
    ZLabel {
        objectName: "burstText"
        Layout.fillWidth: true
        text: gapProfiler.burstText
        font.family: theme.digits
    }
}
