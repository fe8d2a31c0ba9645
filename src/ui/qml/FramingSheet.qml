import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Zenka

// What a body sees with a lens: the Sun to scale in its frame, and how far it drifts without tracking.
SheetFrame {
    id: sheet
    title: "Framing simulator"
    grow: true
    readonly property string keysHere: "Up, down in a number: the next usual value, with Shift ten. Up, down in a list: another value. Enter on a burst: show it in the picture. Page up, page down: read on. Escape: back; what you chose is kept."
    Component.onCompleted: {
        framing.open()
        bodyChoice.children[1].forceActiveFocus(Qt.TabFocusReason)
    }
    Component.onDestruction: framing.close()
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    FormFlick {
        id: form
        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        width: Math.max(300, Math.min(460, parent.width * 0.42))

        ColumnLayout {
            width: form.fieldsWidth
            spacing: 6
            FramingChoice {
                id: bodyChoice
                name: "Body"; objectId: "framingBody"
                values: framing.bodies; now: framing.body
                onTaken: (index) => framing.body = index
            }
            FramingChoice {
                name: "Sensor"; objectId: "framingSensor"
                values: framing.sensors; now: framing.sensor
                onTaken: (index) => framing.sensor = index
            }
            GridLayout {
                visible: framing.ownSensor
                Layout.fillWidth: true
                columns: 2
                columnSpacing: 8
                rowSpacing: 4
                FramingField { field: "ownWidth"; name: "Width, mm" }
                FramingField { field: "ownHeight"; name: "Height, mm" }
                FramingField { field: "ownWidthPx"; name: "Width, pixels"; hint: "not known" }
                FramingField { field: "ownHeightPx"; name: "Height, pixels"; hint: "not known" }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                FramingField { id: focal; field: "focal"; name: "Focal length, mm" }
                ZButton {
                    objectName: "usualFocals"
                    Layout.alignment: Qt.AlignBottom
                    implicitWidth: 36
                    leftPadding: 0
                    rightPadding: 0
                    text: "▾"
                    Accessible.name: "Usual focal lengths"
                    onClicked: focals.openFor(focal.input, framing.focals, framing.focal)
                }
                FramingChoice {
                    name: "Teleconverter"; objectId: "framingConverter"
                    values: framing.converters; now: framing.converter
                    onTaken: (index) => framing.converter = index
                }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                FramingField { field: "rotation"; name: "Turned, °" }
                Repeater {
                    model: ["Landscape", "Portrait"]
                    delegate: ZButton {
                        required property string modelData
                        required property int index
                        readonly property bool on: (framing.texts["rotation"] ?? "") === (index === 0 ? "0" : "90")
                        objectName: "held" + index
                        Layout.alignment: Qt.AlignBottom
                        text: (on ? "● " : "○ ") + modelData
                        strong: on
                        onClicked: { framing.type("rotation", index === 0 ? "0" : "90"); framing.check() }
                        Accessible.role: Accessible.RadioButton
                        Accessible.name: modelData
                        Accessible.checked: on
                    }
                }
            }
            ZCheck {
                objectName: "framingTracking"
                Layout.fillWidth: true
                text: "on a mount that follows the Sun"
                checked: framing.tracking
                onToggled: framing.tracking = checked
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                FramingChoice {
                    name: "Corona wanted to"; objectId: "framingRadius"
                    values: framing.radii; now: framing.radius
                    onTaken: (index) => framing.radius = index
                }
                FramingChoice {
                    name: "Trailing allowed"; objectId: "framingTrail"
                    values: framing.trails; now: framing.trail
                    onTaken: (index) => framing.trail = index
                }
            }
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                FramingChoice {
                    Layout.preferredWidth: 60
                    name: "Moment"; objectId: "framingMoment"
                    values: framing.moments; now: framing.moment
                    onTaken: (index) => framing.moment = index
                }
                FramingChoice {
                    visible: !framing.tracking
                    name: "Centred on the Sun"; objectId: "framingAim"
                    values: framing.aims; now: framing.aim
                    onTaken: (index) => framing.aim = index
                }
            }
            ZLabel { Layout.fillWidth: true; text: framing.keptText; color: theme.quiet; font.pixelSize: theme.small }

            ZLabel { Layout.fillWidth: true; Layout.topMargin: 4; text: "Bursts of the script"; font.weight: Font.Bold; Accessible.role: Accessible.Heading; Accessible.name: text }
            Repeater {
                model: framing.bursts
                delegate: FramingBurst { Layout.fillWidth: true }
            }
            ZLabel {
                objectName: "burstsText"
                Layout.fillWidth: true
                visible: text !== ""
                text: framing.burstsText
                color: theme.quiet
            }
        }
    }

    // The numbers first, then the picture in what room is left.
    Item {
        anchors { left: form.right; leftMargin: 12; right: parent.right; top: parent.top; bottom: parent.bottom }
        ZLabel {
            id: verdict
            objectName: "framingVerdict"
            anchors { left: parent.left; right: parent.right; top: parent.top }
            text: framing.verdict
            color: framing.verdictLevel === 2 ? theme.bad : framing.verdictLevel === 1 ? theme.warning : theme.good
            font.pixelSize: sheet.height < 500 ? theme.normal : theme.large
            font.weight: Font.Bold
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        Column {
            id: numbers
            anchors { left: parent.left; right: parent.right; top: verdict.bottom; topMargin: 4 }
            Repeater {
                model: framing.numbers
                delegate: Row {
                    required property var modelData
                    required property int index
                    objectName: "framingNumber" + index
                    width: numbers.width
                    spacing: 8
                    Accessible.role: Accessible.StaticText
                    Accessible.name: modelData.name + ": " + modelData.value
                    ZLabel { id: label; width: theme.small * 9; text: parent.modelData.name; color: theme.quiet; font.pixelSize: theme.small; wrapMode: Text.NoWrap }
                    ZLabel { width: numbers.width - label.width - 8; text: parent.modelData.value; font.pixelSize: theme.small; font.family: theme.digits }
                }
            }
        }
        FramingItem {
            objectName: "framingPicture"
            anchors { left: parent.left; right: parent.right; top: numbers.bottom; topMargin: 6; bottom: parent.bottom }
            view: framing
            colors: theme
            Accessible.role: Accessible.Graphic
            Accessible.name: "The frame to scale. " + framing.verdict
        }
    }

    ChoicePopup {
        id: focals
        parent: sheet
        onPicked: (index) => framing.focal = index
    }
}
