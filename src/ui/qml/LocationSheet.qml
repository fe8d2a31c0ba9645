import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Zenka

// Where one stands: by name, by numbers, from the saved sites or on the map.
SheetFrame {
    id: sheet
    title: "Location"
    grow: true
    readonly property string keysHere: "Up, down: a step of the number, with Shift ten. Tab: to the next field and on to the map. On the map: arrows move it, + and − zoom, Enter takes the cross-hair. Escape: back, with the site as it was."
    property bool horizonShown: false
    Component.onCompleted: location.open()

    function use() {
        if (location.apply())
            app.closeSheet()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 12

        ColumnLayout {
            Layout.preferredWidth: Math.max(300, Math.min(400, parent.width * 0.34))
            Layout.fillWidth: false
            Layout.fillHeight: true
            spacing: 8

            FormFlick {
                id: form
                Layout.fillWidth: true
                Layout.fillHeight: true

                ColumnLayout {
                    width: form.fieldsWidth
                    spacing: 6
                    PlaceSearch { Layout.fillWidth: true; focus: true }
                    LocationField {
                        name: "Latitude"; shown: location.latText; fault: location.latFault
                        onTyped: (text) => location.typeLatitude(text)
                        onNudged: (steps) => location.nudgeLatitude(steps)
                    }
                    LocationField {
                        name: "Longitude"; shown: location.lonText; fault: location.lonFault
                        onTyped: (text) => location.typeLongitude(text)
                        onNudged: (steps) => location.nudgeLongitude(steps)
                    }
                    LocationField {
                        name: "Elevation, m"; shown: location.elevText; fault: location.elevFault; note: location.elevNote
                        onTyped: (text) => location.typeElevation(text)
                        onNudged: (steps) => location.nudgeElevation(steps)
                    }
                    LocationField {
                        name: "Label"; shown: location.label
                        onTyped: (text) => location.typeLabel(text)
                    }
                    LocationField {
                        name: "Time zone"; shown: location.zone; fault: location.zoneFault; note: location.zoneNote
                        onTyped: (text) => location.typeZone(text)
                    }
                    RowLayout {
                        Layout.fillWidth: true
                        visible: time.gpsSiteLine !== ""
                        spacing: 8
                        ZLabel { Layout.fillWidth: true; text: time.gpsSiteLine; color: time.gpsLocked ? theme.text : theme.quiet }
                        ZButton {
                            objectName: "siteFromGps"
                            text: "Use GPS"
                            enabled: time.hasPosition
                            onClicked: { time.usePosition(); location.reset() }
                            Accessible.name: "Use the position of the GPS receiver"
                        }
                    }
                    SavedSites { Layout.fillWidth: true; Layout.topMargin: 6 }
                }
            }
            ZLabel {
                Layout.fillWidth: true
                visible: text !== ""
                text: location.warning === "" ? "" : "▲ " + location.warning
                color: theme.warning
                Accessible.name: text
            }
            ZLabel {
                Layout.fillWidth: true
                text: location.summary
                font.bold: true
                Accessible.name: "Here: " + text
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                ZButton {
                    objectName: "useSite"
                    text: "Use this site"
                    strong: true
                    Layout.fillWidth: true
                    onClicked: sheet.use()
                }
                ZButton {
                    text: "Undo"
                    enabled: location.edited
                    onClicked: location.reset()
                    Accessible.name: "Undo: back to the site in use"
                }
            }
        }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 6
            Loader {
                Layout.fillWidth: true
                Layout.fillHeight: true
                active: sheet.horizonShown
                visible: active
                sourceComponent: HorizonPane {}
            }
            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                visible: !sheet.horizonShown
                spacing: 6
                Item {
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    clip: true
                    WorldMapItem {
                        id: map
                        objectName: "map"
                        anchors.fill: parent
                        view: location
                        colors: theme
                        Accessible.role: Accessible.Graphic
                        Accessible.name: "Map. " + location.probeText
                        Accessible.focusable: true
                    }
                    Rectangle {
                        anchors.fill: parent
                        color: "transparent"
                        border.width: map.activeFocus ? 2 : 1
                        border.color: map.activeFocus ? theme.accent : theme.line
                    }
                    Row {
                        anchors { left: parent.left; top: parent.top; margins: 8 }
                        spacing: 6
                        ZButton { text: "+"; onClicked: map.zoomIn(); Accessible.name: "Zoom in" }
                        ZButton { text: "−"; onClicked: map.zoomOut(); Accessible.name: "Zoom out" }
                        ZButton { text: "World"; onClicked: map.showWorld(); Accessible.name: "Show the whole world" }
                        ZButton { text: "Site"; onClicked: map.showPoint(); Accessible.name: "Show the site" }
                    }
                }
                ZLabel {
                    Layout.fillWidth: true
                    Layout.minimumHeight: theme.small * 2.6
                    text: location.probeText
                    font.family: theme.digits
                    font.pixelSize: theme.small
                    verticalAlignment: Text.AlignVCenter
                }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                ZButton {
                    objectName: "showHorizon"
                    text: sheet.horizonShown ? "Map" : "Horizon"
                    onClicked: sheet.horizonShown = !sheet.horizonShown
                    Accessible.name: sheet.horizonShown ? "Show the map" : "Show the horizon"
                }
                ZButton {
                    objectName: "goToGreatest"
                    text: "Go to greatest duration"
                    enabled: location.hasGreatest
                    onClicked: location.goToGreatest()
                }
                ZLabel { Layout.fillWidth: true; text: location.trackText; color: theme.quiet; elide: Text.ElideRight; wrapMode: Text.NoWrap }
            }
        }
    }
}
