import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Mode, eclipse, site and the times of day. The mode is told by word, by shape and by the bar above.
Rectangle {
    id: bar
    color: theme.panel
    readonly property real room: width / theme.scale
    implicitHeight: row.implicitHeight + 12

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 12

        Rectangle {
            implicitWidth: modeText.implicitWidth + 20
            implicitHeight: Math.max(32, modeText.implicitHeight + 10)
            radius: clock.live ? 0 : 16
            color: clock.live ? theme.bad : "transparent"
            border.width: 2
            border.color: clock.live ? theme.bad : theme.quiet
            Text {
                id: modeText
                anchors.centerIn: parent
                text: clock.live ? "■ LIVE" : "○ SIMULATED"
                color: clock.live ? theme.page : theme.text
                font.pixelSize: theme.normal
                font.bold: true
            }
            Accessible.role: Accessible.StaticText
            Accessible.name: "Timing " + clock.modeWord + ", " + clock.statusText
        }
        MenuButtons {}
        ComboBox {
            id: eclipseBox
            model: eclipses
            textRole: "label"
            currentIndex: eclipses.current
            Layout.preferredWidth: 300
            Layout.fillWidth: true
            Layout.maximumWidth: 420
            implicitHeight: Math.max(32, theme.normal + 18)
            font.pixelSize: theme.normal
            enabled: !clock.live
            onActivated: (index) => eclipses.choose(index)
            Accessible.name: "Eclipse"
            contentItem: Text {
                leftPadding: 10
                text: eclipseBox.displayText
                color: theme.text
                font.pixelSize: theme.normal
                font.weight: theme.weight
                elide: Text.ElideRight
                verticalAlignment: Text.AlignVCenter
            }
            indicator: Text {
                x: eclipseBox.width - width - 10
                anchors.verticalCenter: parent.verticalCenter
                text: "▾"; color: theme.text; font.pixelSize: theme.normal
            }
            background: Rectangle {
                radius: 4; color: theme.page
                border.width: eclipseBox.activeFocus ? 2 : 1
                border.color: eclipseBox.activeFocus ? theme.accent : theme.line
            }
            delegate: ItemDelegate {
                required property int index
                required property string label
                required property string notes
                width: ListView.view.width
                height: Math.max(32, theme.normal + 16)
                highlighted: eclipseBox.highlightedIndex === index
                contentItem: Text {
                    text: label; color: highlighted ? theme.page : theme.text
                    font.pixelSize: theme.normal; elide: Text.ElideRight; verticalAlignment: Text.AlignVCenter
                }
                background: Rectangle { color: highlighted ? theme.accent : theme.panel }
            }
            popup: Popup {
                y: eclipseBox.height
                width: Math.max(eclipseBox.width, 380)
                height: Math.min(contentItem.implicitHeight + 2, bar.Window.height - 120)
                padding: 1
                contentItem: ListView {
                    clip: true
                    implicitHeight: contentHeight
                    model: eclipseBox.popup.visible ? eclipseBox.delegateModel : null
                    currentIndex: eclipseBox.highlightedIndex
                    ScrollBar.vertical: ScrollBar {}
                }
                background: Rectangle { color: theme.panel; border.color: theme.line }
            }
        }
        Text {
            Layout.fillWidth: true
            Layout.minimumWidth: 60
            text: clock.siteLabel + (bar.room > 1200 ? "  " + clock.sitePosition : "")
            color: theme.text
            font.pixelSize: theme.normal
            font.weight: theme.weight
            elide: Text.ElideRight
            Accessible.name: "Site " + text
        }
        Repeater {
            model: chips.rows
            delegate: Text {
                required property var modelData
                text: modelData.symbol + (bar.room > 1200 ? " " + modelData.text : "")
                color: theme.text
                font.pixelSize: theme.normal
                font.weight: theme.weight
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.words
                ZTip { visible: over.hovered; text: modelData.words }
                // Not before the chip has its place: it is made in the window's corner.
                HoverHandler { id: over; enabled: over.parent.x > 0 }
            }
        }
        ZButton {
            id: cardChip
            objectName: "cardChip"
            visible: chips.cards !== ""
            Layout.maximumWidth: 190 * theme.scale // a longer name stands in the tip
            text: "▤ " + (bar.room > 1200 ? chips.cards : chips.cardsBrief)
            onClicked: commands.trigger("analyzer")
            Accessible.name: chips.cards
            Accessible.description: chips.cardsWords
            ZTip { visible: cardChip.hovered && cardChip.x > 0; text: chips.cardsWords }
        }
        Text {
            text: clock.siteTime + " " + clock.zoneName
            color: theme.text
            font.family: theme.digits
            font.pixelSize: theme.large
            font.bold: true
            Accessible.name: "Site time " + text
        }
        Text {
            visible: bar.room > 1040
            text: clock.utcTime + " UTC"
            color: theme.quiet
            font.family: theme.digits
            font.pixelSize: theme.normal
        }
    }
}
