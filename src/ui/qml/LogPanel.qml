import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The operator's log, newest first.
Rectangle {
    id: panel
    color: theme.panel
    readonly property string keysHere: "Up, down: choose a line, with Shift more of them. Ctrl+A: all. Ctrl+C: copy. Escape: none, or an empty filter."
    readonly property bool low: height < 90

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: panel.low ? 2 : 6
        spacing: 4

        RowLayout {
            Layout.fillWidth: true
            visible: !panel.low
            spacing: 8
            ZLabel { text: "Log"; font.weight: Font.Bold; Accessible.role: Accessible.Heading }
            ZLabel { text: log.countText; color: theme.quiet; wrapMode: Text.NoWrap; elide: Text.ElideRight; Layout.fillWidth: true }
            ZField {
                id: filterField
                objectName: "logFilter"
                implicitWidth: 180
                placeholderText: "Filter"
                Accessible.name: "Filter the log"
                onTextChanged: log.filter = text
                onActiveFocusChanged: app.setTyping(activeFocus)
                Keys.onEscapePressed: (event) => {
                    event.accepted = text !== ""
                    clear()
                }
                Keys.onDownPressed: list.forceActiveFocus()
            }
            ZButton {
                text: log.selected > 0 ? "Copy selected" : "Copy all"
                enabled: list.count > 0
                onClicked: log.copy()
            }
        }

        ListView {
            id: list
            objectName: "logList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            activeFocusOnTab: count > 0 // an empty list could not show the focus
            boundsBehavior: Flickable.StopAtBounds
            cacheBuffer: 0 // rows made ahead of need trip over a filter that leaves fewer
            model: log
            readonly property int rowHeight: theme.normal + 8
            ScrollBar.vertical: ZScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: "Log"

            function step(by, extend) {
                currentIndex = Math.max(0, Math.min(count - 1, currentIndex + by))
                if (extend) log.selectTo(currentIndex)
                else log.select(currentIndex)
                positionViewAtIndex(currentIndex, ListView.Contain)
            }
            Keys.onPressed: (event) => {
                const extend = event.modifiers & Qt.ShiftModifier
                const page = Math.max(1, Math.floor(height / rowHeight) - 1)
                event.accepted = true
                if (event.key === Qt.Key_Down) step(1, extend)
                else if (event.key === Qt.Key_Up) step(-1, extend)
                else if (event.key === Qt.Key_PageDown) step(page, extend)
                else if (event.key === Qt.Key_PageUp) step(-page, extend)
                else if (event.key === Qt.Key_Home) step(-count, extend)
                else if (event.key === Qt.Key_End) step(count, extend)
                else if (event.matches(StandardKey.SelectAll)) log.selectAll()
                else if (event.matches(StandardKey.Copy)) log.copy()
                else if (event.key === Qt.Key_Escape && log.selected > 0) log.selectNone()
                else event.accepted = false
            }
            delegate: Rectangle {
                id: entry
                required property int index
                required property string line
                required property string symbol
                required property string lineState
                required property string lineText
                required property bool lineSelected
                readonly property bool current: list.activeFocus && ListView.isCurrentItem
                readonly property color tone: lineState === "dropped" || lineState === "warning" ? theme.warning
                                              : lineState === "fired" ? theme.text : theme.quiet
                width: list.width
                height: list.rowHeight
                color: lineSelected ? theme.page : "transparent"
                border.width: current ? 2 : lineSelected ? 1 : 0
                border.color: current ? theme.accent : theme.line
                Accessible.role: Accessible.ListItem
                Accessible.name: line
                Text {
                    id: mark
                    x: 8
                    width: theme.normal * 1.4
                    anchors.verticalCenter: parent.verticalCenter
                    text: entry.symbol
                    color: entry.tone
                    font.pixelSize: theme.normal
                    font.bold: entry.lineState === "dropped" || entry.lineState === "warning"
                }
                Text {
                    id: words
                    anchors { left: mark.right; right: parent.right; rightMargin: 16; verticalCenter: parent.verticalCenter }
                    text: entry.lineText
                    textFormat: Text.PlainText
                    color: entry.lineState === "dropped" || entry.lineState === "warning" ? theme.warning : theme.text
                    font.family: theme.digits
                    font.pixelSize: theme.small + 1
                    font.weight: mark.font.bold ? Font.Bold : theme.weight
                    elide: Text.ElideRight
                }
                MouseArea {
                    id: pointer
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: (mouse) => {
                        list.forceActiveFocus()
                        list.currentIndex = entry.index
                        if (mouse.modifiers & Qt.ShiftModifier) log.selectTo(entry.index)
                        else if (mouse.modifiers & Qt.ControlModifier) log.toggle(entry.index)
                        else log.select(entry.index)
                    }
                }
                ZTip { visible: words.truncated && (pointer.containsMouse || entry.current); text: entry.line }
            }
            ZLabel {
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: 8 }
                text: log.emptyText
                visible: text !== ""
                color: theme.quiet
            }
        }
    }
}
