import QtQuick
import QtQuick.Layouts

// Play, jumps, the next frame, and the way into and out of a live run.
Rectangle {
    id: bar
    color: theme.panel
    implicitHeight: row.implicitHeight + 12

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        spacing: 6

        ZButton {
            objectName: "play"
            text: clock.playing ? "❚❚ Pause" : "▶ Play"
            visible: !clock.live
            strong: true
            onClicked: commands.trigger("togglePlay")
        }
        Repeater {
            model: clock.live ? [] : clock.contacts
            delegate: ZButton {
                required property var modelData
                text: modelData.key
                leftPadding: 8; rightPadding: 8
                onClicked: clock.jumpToContact(modelData.key)
                Accessible.name: "Jump to " + modelData.words
            }
        }
        ZButton { text: "Jump…"; visible: !clock.live && bar.width / theme.scale > 1000; onClicked: commands.trigger("jumpToTime") }
        Text {
            objectName: "nextShot"
            text: clock.nextShot
            textFormat: Text.PlainText
            color: theme.text
            font.family: theme.digits
            font.pixelSize: theme.normal
            font.weight: theme.weight
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: theme.small
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            Layout.fillWidth: true
        }
        ZButton {
            objectName: "compensation"
            text: compensation.summary
            strong: compensation.active
            leftPadding: 8; rightPadding: 8
            Layout.maximumWidth: 220
            onClicked: commands.trigger("compensation")
            Accessible.name: "Exposure compensation, " + compensation.summary
        }
        ZButton {
            text: "Arm real eclipse…"
            visible: !clock.live
            strong: true
            onClicked: commands.trigger("armReal")
        }
        ZButton {
            text: "Leave live run…"
            visible: clock.live
            danger: true
            onClicked: commands.trigger("simTiming")
        }
    }
}
