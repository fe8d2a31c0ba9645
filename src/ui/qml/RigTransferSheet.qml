import QtQuick
import QtQuick.Layouts

// A rig into a file, or out of one: what is in it is shown before anything is taken.
SheetFrame {
    id: sheet
    title: transfer.importing ? "Import a rig" : "Export the rig"
    sheetWidth: 820 * theme.scale
    wantedHeight: form.contentHeight + 12 + actions.height
    readonly property string keysHere: "Tab, Space: through the parts, and take or leave one. Enter: the button that has the keyboard. Escape: back, with nothing changed that was not imported yet."

    function askForFile() {
        (transfer.importing ? openChooser : saveChooser).ask(transfer.folder)
    }

    FormFlick {
        id: form
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: actions.top; bottomMargin: 12 }
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            ZLabel {
                objectName: "transferSummary"
                Layout.fillWidth: true
                visible: !transfer.importing
                text: "To be carried to another computer: " + transfer.summary + "."
            }
            ZLabel {
                Layout.fillWidth: true
                visible: !transfer.importing
                text: "Not in it: tokens, addresses of servers, your leave for commands, the look of the window."
                color: theme.quiet
            }
            ZLabel {
                Layout.fillWidth: true
                visible: transfer.importing && !transfer.found && transfer.message === ""
                text: "Choose a file that Export Rig… has written. You see what is in it before anything is taken."
            }
            ZLabel {
                objectName: "transferOrigin"
                Layout.fillWidth: true
                visible: text !== ""
                text: transfer.origin
                font.weight: Font.Bold
            }
            Repeater {
                model: transfer.parts
                delegate: ColumnLayout {
                    id: part
                    required property var modelData
                    required property int index
                    Layout.fillWidth: true
                    spacing: 0
                    ZCheck {
                        objectName: "transferPart" + part.index
                        Layout.fillWidth: true
                        text: part.modelData.what
                        checked: true
                        onToggled: transfer.take(part.index, checked)
                        Accessible.name: part.modelData.what + ": " + part.modelData.effect
                    }
                    ZLabel {
                        Layout.fillWidth: true
                        Layout.leftMargin: 32
                        text: part.modelData.effect
                        color: theme.quiet
                    }
                }
            }
            Repeater {
                model: transfer.leftOut
                delegate: ZLabel {
                    required property string modelData
                    Layout.fillWidth: true
                    text: "▲ " + modelData
                    color: theme.warning
                    Accessible.role: Accessible.AlertMessage
                    Accessible.name: modelData
                }
            }
            ZLabel {
                objectName: "transferMessage"
                Layout.fillWidth: true
                visible: text !== ""
                text: (transfer.failed ? "✖ " : "") + transfer.message
                color: transfer.failed ? theme.bad : theme.text
                Accessible.role: Accessible.AlertMessage
                Accessible.name: transfer.message
            }
            ZLabel {
                objectName: "transferFault"
                Layout.fillWidth: true
                visible: transfer.importing && text !== ""
                text: transfer.importFault
                color: theme.warning
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
    Flow {
        id: actions
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        spacing: 8
        ZButton {
            objectName: "transferChoose"
            focus: true
            strong: !transfer.found
            enabled: !transfer.busy
            text: !transfer.importing ? "Export to…" : transfer.found ? "Another file…" : "Choose a file…"
            onClicked: sheet.askForFile()
        }
        ZButton {
            objectName: "transferImport"
            visible: transfer.found
            enabled: transfer.canImport
            strong: true
            text: "Import what is ticked"
            onClicked: { transfer.import(); sheet.forceActiveFocus() }
        }
    }

    FileChooser {
        id: openChooser
        title: "Import a rig"
        kind: "Rigs"
        patterns: ["*.zenka-rig"]
        emptyText: "No rig in this folder."
        onChosen: (file) => transfer.read(file)
    }
    FileChooser {
        id: saveChooser
        title: "Export the rig"
        saving: true
        kind: "Rigs"
        patterns: ["*.zenka-rig"]
        suffix: ".zenka-rig"
        suggested: transfer.suggestedName
        emptyText: "No rig in this folder."
        onChosen: (file) => transfer.exportTo(file)
    }
}
