import QtQuick
import QtQuick.Layouts

// The largest thing on the screen: how long until what comes next.
Rectangle {
    id: panel
    color: theme.panel
    property bool narrow: height < 220
    // The contacts take what room the digits leave, up to the large size.
    readonly property int rowSize: Math.max(theme.small, Math.min(theme.large, (width - 40) / 20, (height - 190) / 9))

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 10
        spacing: 4

        Text {
            text: clock.countdownTitle
            color: theme.text
            font.pixelSize: theme.large
            font.weight: Font.DemiBold
            Layout.fillWidth: true
            elide: Text.ElideRight
        }
        Text {
            id: digits
            objectName: "countdown"
            text: clock.countdown
            color: clock.inTotality || clock.lastMinute ? theme.accent : theme.text
            font.family: theme.digits
            font.bold: true
            // In the last minute and in totality it fills the panel.
            font.pixelSize: Math.min((panel.width - 20) / (text.length * 0.605),
                                     clock.lastMinute || clock.inTotality ? panel.height * 0.45 : theme.huge * 2)
            Layout.fillWidth: true
            Accessible.name: clock.countdownTitle + " " + text
        }
        ZLabel {
            text: clock.phaseText
            Layout.fillWidth: true
            maximumLineCount: 3
            elide: Text.ElideRight
        }
        Rectangle { Layout.fillWidth: true; implicitHeight: 1; color: theme.line; visible: !panel.narrow }
        Repeater {
            model: panel.narrow ? [] : clock.contacts
            delegate: RowLayout {
                required property var modelData
                Layout.fillWidth: true
                spacing: 8
                Accessible.role: Accessible.StaticText
                Accessible.name: modelData.words + " at " + modelData.time
                Text {
                    text: modelData.key
                    color: clock.nextContact === modelData.key ? theme.accent : theme.text
                    font.pixelSize: panel.rowSize
                    font.bold: clock.nextContact === modelData.key
                    Layout.preferredWidth: panel.rowSize * 2.8
                }
                Text {
                    text: modelData.time
                    color: theme.text
                    font.family: theme.digits
                    font.pixelSize: panel.rowSize
                    font.weight: theme.weight
                }
                Text {
                    text: (modelData.down ? "▼ " : "") + "alt " + modelData.alt + "  az " + modelData.az
                    color: theme.quiet
                    font.family: theme.digits
                    font.pixelSize: panel.rowSize
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
            }
        }
        Item { Layout.fillHeight: true }
    }
}
