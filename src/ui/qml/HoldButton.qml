import QtQuick
import QtQuick.Controls.Basic

// Acts only after it was held down, by mouse or by key, so that no stray click does it.
ZButton {
    id: control
    property int holdMs: 1500
    property bool holding: false
    signal held()

    property real progress: 0
    onPressedChanged: holding = pressed
    Keys.onPressed: (event) => {
        if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Space)) {
            event.accepted = true
            if (!event.isAutoRepeat)
                holding = true
        }
    }
    Keys.onReleased: (event) => {
        if (!event.isAutoRepeat)
            holding = false
    }
    Keys.onReturnPressed: (event) => { event.accepted = true; if (!event.isAutoRepeat) holding = true }
    Keys.onEnterPressed: (event) => { event.accepted = true; if (!event.isAutoRepeat) holding = true }
    onActiveFocusChanged: if (!activeFocus) holding = false
    property double since: 0
    onHoldingChanged: {
        progress = 0
        since = Date.now()
    }
    Timer {
        interval: 50
        repeat: true
        running: control.holding
        onTriggered: {
            // by the clock: on a busy machine the beats come late
            control.progress = Math.min(1, (Date.now() - control.since) / control.holdMs)
            if (control.progress >= 1) {
                control.holding = false
                control.held()
            }
        }
    }
    Rectangle {
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        height: 4
        width: parent.width * control.progress
        color: control.danger ? theme.bad : theme.accent
    }
}
