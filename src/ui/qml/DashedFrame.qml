import QtQuick

// A dashed border, drawn of plain rectangles.
Item {
    id: frame
    property color color
    readonly property int dash: 6
    readonly property int gap: 4
    clip: true
    Repeater {
        model: Math.max(0, Math.ceil(frame.width / (frame.dash + frame.gap)))
        Item {
            required property int index
            x: index * (frame.dash + frame.gap)
            Rectangle { width: frame.dash; height: 1; color: frame.color }
            Rectangle { width: frame.dash; height: 1; y: frame.height - 1; color: frame.color }
        }
    }
    Repeater {
        model: Math.max(0, Math.ceil(frame.height / (frame.dash + frame.gap)))
        Item {
            required property int index
            y: index * (frame.dash + frame.gap)
            Rectangle { width: 1; height: frame.dash; color: frame.color }
            Rectangle { width: 1; height: frame.dash; x: frame.width - 1; color: frame.color }
        }
    }
}
