import QtQuick
import QtQuick.Layouts
import Zenka

// Sun and Moon as they stand at the clock, and the same in numbers.
Rectangle {
    id: panel
    objectName: "skyPanel"
    color: theme.panel
    property bool low: height < theme.normal * 16

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: panel.low ? 4 : 8
        spacing: panel.low ? 1 : 4

        Text {
            text: sky.phaseText
            color: theme.text
            font.pixelSize: panel.low ? theme.normal : theme.large
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            Layout.fillWidth: true
        }
        ZLabel {
            text: sky.noteText
            visible: text !== ""
            color: theme.warning
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            maximumLineCount: 2
            Layout.fillWidth: true
        }
        SkyItem {
            id: picture
            view: sky
            colors: theme
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 40
            Accessible.role: Accessible.Graphic
            Accessible.name: sky.spokenText
        }
        Flow {
            Layout.fillWidth: true
            spacing: 2
            Repeater {
                model: [sky.magnitudeText, sky.obscurationText, sky.altitudeText, sky.azimuthText]
                delegate: Text {
                    required property string modelData
                    text: modelData
                    rightPadding: theme.small
                    color: theme.text
                    font.family: theme.digits
                    font.pixelSize: panel.low ? theme.small : theme.normal
                    font.weight: theme.weight
                }
            }
        }
    }
}
