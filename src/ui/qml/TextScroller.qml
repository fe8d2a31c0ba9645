import QtQuick
import QtQuick.Controls.Basic

// A scrolled text to read. A long one has drawn the lines that were to be seen, and notices a scroll, but not a
// larger window.
ScrollView {
    id: scroller
    clip: true
    function drawAnew() {
        contentItem.contentY += 1
        contentItem.contentY -= 1
    }
    onWidthChanged: Qt.callLater(drawAnew)
    onHeightChanged: Qt.callLater(drawAnew)
}
