import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One frame on one body, by hand, to see whether it answers.
SheetFrame {
    id: sheet
    title: testShot.hasBody ? "Test shot: " + testShot.bodyName : "Test shot"
    sheetWidth: 640 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Enter: fire. Up, down: the next standard value, with Shift a whole stop. Page up, page down: read on. Empty: the body's own setting. Escape: back; the result of a shot under way goes to the card and the log."
    Component.onCompleted: testShot.open()
    // What stands below the fields is read on with these.
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            ZLabel { Layout.fillWidth: true; text: testShot.bodyFacts; color: theme.quiet }
            RowLayout {
                visible: testShot.hasBody
                Layout.fillWidth: true
                spacing: 12
                ShotField {
                    name: "ISO"; shown: testShot.iso; fault: testShot.isoFault
                    onTyped: (text) => testShot.typeIso(text)
                    onNudged: (steps) => testShot.nudgeIso(steps)
                }
                ShotField {
                    name: "Aperture, f/"; shown: testShot.aperture; fault: testShot.apertureFault
                    onTyped: (text) => testShot.typeAperture(text)
                    onNudged: (steps) => testShot.nudgeAperture(steps)
                }
                ShotField {
                    name: "Shutter, s"; shown: testShot.shutter; fault: testShot.shutterFault
                    onTyped: (text) => testShot.typeShutter(text)
                    onNudged: (steps) => testShot.nudgeShutter(steps)
                }
            }
            ZLabel {
                Layout.fillWidth: true
                visible: text !== ""
                text: testShot.origin
                color: theme.quiet
                font.pixelSize: theme.small
            }
            RowLayout {
                visible: testShot.hasBody
                Layout.fillWidth: true
                spacing: 8
                ZButton {
                    id: fireButton
                    objectName: "fire"
                    focus: true
                    strong: true
                    enabled: !testShot.firing
                    text: testShot.firing ? testShot.progress : "Fire"
                    implicitHeight: Math.max(52, theme.large + 32)
                    font.pixelSize: theme.large
                    Layout.fillWidth: true
                    Layout.minimumWidth: 160
                    onClicked: testShot.fire()
                    Accessible.name: testShot.firing ? testShot.progress : "Fire one frame on " + testShot.bodyName
                }
                ZButton {
                    visible: testShot.scriptOffer !== ""
                    text: "From the script"
                    onClicked: testShot.takeScript()
                    Accessible.name: "Take the settings of its next frame in the script, " + testShot.scriptOffer
                }
                ZButton {
                    objectName: "nextBody"
                    visible: testShot.hasOthers
                    text: "Next body"
                    onClicked: testShot.nextBody()
                }
            }
            ZLabel {
                Layout.fillWidth: true
                visible: text !== ""
                text: testShot.refusal === "" ? "" : "✖ " + testShot.refusal
                color: theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel {
                objectName: "testResult"
                Layout.fillWidth: true
                visible: text !== ""
                text: testShot.resultText
                color: testShot.resultGood ? theme.good : theme.bad
                font.pixelSize: theme.large * 1.4
                font.weight: Font.Bold
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel { Layout.fillWidth: true; visible: text !== ""; text: testShot.advice }
            ZLabel {
                Layout.fillWidth: true
                visible: text !== ""
                text: testShot.resultDetail
                color: theme.quiet
                font.pixelSize: theme.small
            }
        }
    }
}
