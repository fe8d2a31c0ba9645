import QtQuick
import QtQuick.Layouts

// How close together one body's frames may be: measured by firing it.
SheetFrame {
    id: sheet
    title: gapProfiler.page === "setup" ? "Gap profiler" : "Gap profiler: " + gapProfiler.bodyName
    sheetWidth: 780 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Enter: start in a field, stop while it measures. Up, down in a list: another value. Page up, page down: read on. Escape: back; a body goes on being measured, and the Cameras panel leads back here."
    Component.onCompleted: {
        gapProfiler.open()
        turn()
    }
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    readonly property string page: gapProfiler.page
    onPageChanged: Qt.callLater(sheet.turn)
    // The button that had the keyboard went with its page.
    function turn() {
        form.contentY = 0
        const next = page === "running" ? stopButton : page === "result" ? againButton : startButton
        next.forceActiveFocus(Qt.TabFocusReason)
    }

    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8

            // What to measure
            BodyPicker {
                visible: sheet.page === "setup"
                Layout.fillWidth: true
                picked: gapProfiler.bodyId
                onChosen: (bodyId) => gapProfiler.choose(bodyId)
            }
            Flow {
                visible: sheet.page === "setup"
                Layout.fillWidth: true
                spacing: 8
                Repeater {
                    model: ["Quick floor: how close together", "Sustained burst: for how long"]
                    delegate: ZButton {
                        required property string modelData
                        required property int index
                        readonly property bool on: gapProfiler.burst === (index === 1)
                        objectName: "mode" + index
                        text: (on ? "● " : "○ ") + modelData
                        strong: on
                        onClicked: gapProfiler.burst = index === 1
                        Accessible.role: Accessible.RadioButton
                        Accessible.checked: on
                    }
                }
            }
            Flow {
                visible: sheet.page === "setup" && !gapProfiler.burst
                Layout.fillWidth: true
                spacing: 8
                Repeater {
                    model: ["Settings change from frame to frame", "Same settings"]
                    delegate: ZButton {
                        required property string modelData
                        required property int index
                        readonly property bool on: gapProfiler.changing === (index === 0)
                        objectName: "settings" + index
                        text: (on ? "● " : "○ ") + modelData
                        strong: on
                        onClicked: gapProfiler.changing = index === 0
                        Accessible.role: Accessible.RadioButton
                        Accessible.checked: on
                    }
                }
            }
            RowLayout {
                visible: sheet.page === "setup" && gapProfiler.burst
                Layout.fillWidth: true
                spacing: 12
                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 100
                    Layout.alignment: Qt.AlignTop
                    spacing: 2
                    ZLabel { text: "Long frames of"; color: theme.quiet }
                    PickList {
                        objectName: "longShutter"
                        Layout.fillWidth: true
                        model: gapProfiler.shutters
                        currentIndex: gapProfiler.shutter
                        onActivated: (index) => gapProfiler.shutter = index
                        Accessible.name: "Shutter of long frames"
                    }
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    Layout.preferredWidth: 100
                    Layout.alignment: Qt.AlignTop
                    spacing: 2
                    ZLabel { text: "Seconds from frame to frame"; color: theme.quiet }
                    ZField {
                        objectName: "cadence"
                        Layout.fillWidth: true
                        text: gapProfiler.cadence
                        placeholderText: "from the measured floor"
                        font.family: theme.digits
                        onTextEdited: gapProfiler.cadence = text
                        onEditingFinished: gapProfiler.check()
                        onActiveFocusChanged: { app.setTyping(activeFocus); if (activeFocus) selectAll() }
                        Keys.onReturnPressed: (event) => { if (!event.isAutoRepeat) gapProfiler.start() }
                        Keys.onEnterPressed: (event) => { if (!event.isAutoRepeat) gapProfiler.start() }
                        Accessible.name: "Target cadence, seconds from frame to frame"
                        Accessible.description: gapProfiler.cadenceFault
                    }
                    ZLabel {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: gapProfiler.cadenceFault === "" ? "" : "✖ " + gapProfiler.cadenceFault
                        color: theme.bad
                        font.pixelSize: theme.small
                        Accessible.role: Accessible.AlertMessage
                        Accessible.name: text
                    }
                }
            }
            ZLabel {
                objectName: "plan"
                visible: sheet.page === "setup"
                Layout.fillWidth: true
                text: gapProfiler.plan
            }
            ZButton {
                id: startButton
                objectName: "startProfile"
                visible: sheet.page === "setup"
                strong: true
                text: "Start"
                Layout.fillWidth: true
                implicitHeight: Math.max(44, theme.large + 20)
                onClicked: gapProfiler.start()
                Accessible.name: "Start measuring " + gapProfiler.bodyName
                Accessible.description: gapProfiler.plan
            }
            ZLabel {
                objectName: "refusal"
                Layout.fillWidth: true
                visible: text !== ""
                text: gapProfiler.refusal === "" ? "" : "✖ " + gapProfiler.refusal
                color: theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }

            // How it goes
            RowLayout {
                visible: sheet.page === "running"
                Layout.fillWidth: true
                spacing: 12
                ZLabel {
                    objectName: "progress"
                    Layout.fillWidth: true
                    text: gapProfiler.progress
                    font.weight: Font.Bold
                    Accessible.role: Accessible.StaticText
                    Accessible.name: text
                }
                ZButton {
                    id: stopButton
                    objectName: "stopProfile"
                    text: "Stop"
                    danger: true
                    onClicked: gapProfiler.stop()
                    Accessible.name: "Stop measuring " + gapProfiler.bodyName
                }
            }

            // What came of it
            RowLayout {
                visible: sheet.page === "result"
                Layout.fillWidth: true
                spacing: 12
                ZLabel {
                    objectName: "verdict"
                    Layout.fillWidth: true
                    text: gapProfiler.verdict
                    font.pixelSize: theme.large
                    font.weight: Font.Bold
                    Accessible.role: Accessible.AlertMessage
                    Accessible.name: text
                }
                ZButton {
                    id: againButton
                    objectName: "again"
                    Layout.alignment: Qt.AlignTop
                    text: "Next profile"
                    strong: true
                    onClicked: gapProfiler.again()
                }
            }
            GapLadder {
                visible: sheet.page !== "setup" && gapProfiler.burstFrames === 0
                Layout.fillWidth: true
            }
            BurstStrip {
                visible: sheet.page !== "setup" && gapProfiler.burstFrames > 0
                Layout.fillWidth: true
            }

            // What is known
            ColumnLayout {
                visible: sheet.page !== "running"
                Layout.fillWidth: true
                spacing: 4
                ZLabel { Layout.fillWidth: true; visible: text !== ""; text: gapProfiler.storedTitle; font.weight: Font.Bold }
                Repeater {
                    model: gapProfiler.stored
                    delegate: ZLabel {
                        required property var modelData
                        objectName: "stored"
                        Layout.fillWidth: true
                        Layout.leftMargin: 12
                        text: modelData.name + ": " + modelData.value + (modelData.before === "" ? "" : " (" + modelData.before + ")")
                    }
                }
                ZLabel { objectName: "meaning"; Layout.fillWidth: true; visible: text !== ""; text: gapProfiler.meaning }
            }
            ColumnLayout {
                visible: sheet.page !== "running" && past.count > 0
                Layout.fillWidth: true
                spacing: 4
                ZLabel { text: "Measured in this session"; font.weight: Font.Bold }
                Repeater {
                    id: past
                    model: gapProfiler.history
                    delegate: ZLabel {
                        required property var modelData
                        objectName: "past"
                        Layout.fillWidth: true
                        Layout.leftMargin: 12
                        text: modelData.time + "  " + modelData.name + ", " + modelData.kind + ": " + modelData.verdict
                        font.pixelSize: theme.small
                        Accessible.role: Accessible.ListItem
                        Accessible.name: text
                    }
                }
            }
        }
    }
}
