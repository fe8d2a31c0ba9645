import QtQuick
import QtQuick.Layouts

// What one body is and offers.
SheetFrame {
    id: sheet
    title: "Camera profiler"
    sheetWidth: 720 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Enter: read. Page up, page down: read on. In the lens field, Enter: keep it. Escape: back."
    Component.onCompleted: cameraProfiler.open()
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            BodyPicker {
                Layout.fillWidth: true
                picked: cameraProfiler.bodyId
                onChosen: (bodyId) => cameraProfiler.choose(bodyId)
            }
            ZButton {
                id: readButton
                objectName: "readProfile"
                focus: true
                strong: true
                Layout.fillWidth: true
                text: cameraProfiler.bodyName === "" ? "Read" : "Read " + cameraProfiler.bodyName
                onClicked: cameraProfiler.read()
                Accessible.name: "Read what " + cameraProfiler.bodyName + " offers"
            }
            ZLabel {
                objectName: "progress"
                Layout.fillWidth: true
                visible: text !== ""
                text: cameraProfiler.progress
                color: theme.accent
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel {
                objectName: "refusal"
                Layout.fillWidth: true
                visible: text !== ""
                text: cameraProfiler.refusal === "" ? "" : "✖ " + cameraProfiler.refusal
                color: theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel {
                objectName: "profileTitle"
                Layout.fillWidth: true
                visible: cameraProfiler.hasResult
                text: cameraProfiler.title
                font.pixelSize: theme.large
                font.weight: Font.Bold
            }
            ZLabel {
                objectName: "profileError"
                Layout.fillWidth: true
                visible: text !== ""
                text: cameraProfiler.error === "" ? "" : "✖ " + cameraProfiler.error
                color: theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            RowLayout {
                visible: cameraProfiler.hasResult && cameraProfiler.libraryText !== ""
                Layout.fillWidth: true
                spacing: 8
                ZLabel { objectName: "libraryText"; Layout.fillWidth: true; text: cameraProfiler.libraryText }
                ZButton {
                    objectName: "addToLibrary"
                    visible: cameraProfiler.mayAdd
                    text: "Add to my cameras"
                    onClicked: {
                        cameraProfiler.add()
                        if (!visible) // it goes with its press
                            lensField.forceActiveFocus(Qt.TabFocusReason)
                    }
                }
                LensField {
                    id: lensField
                    objectName: "profileLens"
                    visible: cameraProfiler.known
                    Layout.preferredWidth: 240 * theme.scale
                    lens: cameraProfiler.lens
                    owner: cameraProfiler.title
                    onDecided: (text) => cameraProfiler.setLens(text)
                }
            }
            ProfilePost { Layout.fillWidth: true }
            Repeater {
                model: cameraProfiler.choices
                delegate: ColumnLayout {
                    id: choice
                    required property var modelData
                    Layout.fillWidth: true
                    spacing: 2
                    Accessible.role: Accessible.StaticText
                    Accessible.name: modelData.name + ": " + modelData.summary
                    ZLabel {
                        Layout.fillWidth: true
                        text: choice.modelData.name + ": " + choice.modelData.summary
                        font.weight: Font.Bold
                    }
                    ZLabel {
                        Layout.fillWidth: true
                        Layout.leftMargin: 12
                        visible: text !== ""
                        text: choice.modelData.values
                        color: theme.quiet
                        font.pixelSize: theme.small
                        Accessible.role: Accessible.StaticText
                        Accessible.name: text
                    }
                }
            }
        }
    }
}
