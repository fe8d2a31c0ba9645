import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A page to read. Links are for the pointer; by keyboard the menu Help has every page.
SheetFrame {
    id: sheet
    title: guide.title
    grow: true
    readonly property string keysHere: "Up, down, page up, page down, home, end: read on. Escape: close the page."

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        ZButton {
            objectName: "guideBack"
            visible: guide.canGoBack
            text: "‹ Back"
            Accessible.name: "Back to the page before"
            onClicked: {
                guide.goBack()
                page.forceActiveFocus()
            }
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            color: "transparent"
            border.width: page.activeFocus ? 2 : 1
            border.color: page.activeFocus ? theme.accent : theme.line
            TextScroller {
                id: scroller
                anchors.fill: parent
                anchors.margins: 2
                focus: true
                TextArea {
                    id: page
                    objectName: "guideText"
                    focus: true
                    readOnly: true
                    textFormat: TextEdit.MarkdownText
                    text: guide.text
                    onTextChanged: guide.dress(page)
                    wrapMode: TextEdit.Wrap
                    color: theme.text
                    font.pixelSize: theme.normal
                    selectionColor: theme.accent
                    selectedTextColor: theme.page
                    background: null
                    Accessible.name: guide.title
                    Keys.priority: Keys.BeforeItem
                    Keys.onPressed: (event) => sheet.scrollByKey(scroller.contentItem, event)
                    onLinkActivated: (link) => guide.follow(link)
                    HoverHandler { cursorShape: page.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor }
                }
            }
        }
    }
    Binding { target: guide; property: "room"; value: Math.floor(scroller.availableWidth - page.leftPadding - page.rightPadding) }
    Connections {
        target: guide
        function onTurned() {
            scroller.contentItem.contentY = 0
            Qt.callLater(scroller.drawAnew)
        }
        function onHeadingWanted(heading) {
            const at = guide.positionOf(heading, page)
            if (at >= 0)
                sheet.scrollTo(scroller.contentItem, page.positionToRectangle(at).y)
            Qt.callLater(scroller.drawAnew)
        }
    }
}
