import QtQuick
import QtQuick.Layouts
import Zenka

// The terrain around the site that is being chosen, with the Sun's path over it.
ColumnLayout {
    id: pane
    spacing: 6
    property alias firstStop: findButton
    Component.onCompleted: horizon.open()
    Component.onDestruction: horizon.close()

    HorizonItem {
        objectName: "horizonPicture"
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.minimumHeight: 60
        view: horizon
        colors: theme
        Accessible.role: Accessible.Graphic
        Accessible.name: "Horizon. " + horizon.verdict
    }
    ZLabel {
        objectName: "horizonVerdict"
        Layout.fillWidth: true
        text: (horizon.hidden ? "▲ " : "") + horizon.verdict
        color: horizon.hidden ? theme.bad : theme.text
        font.weight: horizon.hidden ? Font.Bold : theme.weight
        Accessible.name: text
    }
    ZLabel {
        objectName: "horizonRemark"
        Layout.fillWidth: true
        visible: text !== ""
        text: horizon.running ? horizon.progress : horizon.remark
        color: horizon.running ? theme.accent : theme.warning
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        ZButton {
            id: findButton
            objectName: "findHorizon"
            text: horizon.running ? "Cancel" : horizon.known ? "Look up again" : "Look up the terrain"
            strong: !horizon.known
            onClicked: horizon.running ? horizon.cancel() : horizon.find()
        }
        ZCheck {
            objectName: "horizonBuildings"
            text: "with buildings"
            checked: horizon.buildings
            onToggled: horizon.buildings = checked
        }
        ZCheck {
            objectName: "openTiles"
            Layout.fillWidth: true
            text: "open tiles, no token"
            checked: horizon.openTiles
            onToggled: horizon.openTiles = checked
        }
    }
}
