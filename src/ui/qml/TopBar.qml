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
            Layout.minimumWidth: 150 * theme.scale
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
        StatusChips { room: bar.room }
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
