import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// By which rules one camera may be compensated.
SheetFrame {
    id: sheet
    title: "Compensation rules: " + compRules.token
    sheetWidth: 640 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Enter in a field: save. Escape: back; what was typed stays until the next start."

    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 8
            ZLabel { Layout.fillWidth: true; text: compRules.origin; color: theme.quiet }
            ZLabel { text: "What may move, first choice first"; font.bold: true }
            Repeater {
                model: compRules.order
                delegate: RowLayout {
                    id: variable
                    required property var modelData
                    required property int index
                    Layout.fillWidth: true
                    ZCheck {
                        focus: variable.index === 0
                        Layout.fillWidth: true
                        text: variable.modelData.label
                        checked: variable.modelData.on
                        onToggled: compRules.setOn(variable.index, checked)
                    }
                    ZButton {
                        text: "▲"
                        visible: variable.index > 0
                        onClicked: compRules.moveUp(variable.index)
                        Accessible.name: "Move " + variable.modelData.label + " up"
                    }
                }
            }
            ZLabel { Layout.fillWidth: true; text: "To make frames darker, the shutter is always the last choice."; color: theme.quiet; font.pixelSize: theme.small }
            ZCheck {
                Layout.fillWidth: true
                text: "Share the stops among them instead of using one up first"
                checked: compRules.balanced
                onToggled: compRules.balanced = checked
            }
            Repeater {
                model: 3
                delegate: RowLayout {
                    id: pair
                    required property int index
                    readonly property var limit: compRules.limits[index]
                    Layout.fillWidth: true
                    spacing: 6
                    ZLabel { Layout.preferredWidth: 220 * theme.scale; text: pair.limit.name }
                    Repeater {
                        model: 2
                        delegate: ZField {
                            required property int index
                            objectName: "limit" + pair.index + index
                            Layout.fillWidth: true
                            text: index ? pair.limit.high : pair.limit.low
                            font.family: theme.digits
                            onTextEdited: compRules.typeLimit(pair.index, index === 1, text)
                            onActiveFocusChanged: app.setTyping(activeFocus)
                            onAccepted: sheet.save()
                            Accessible.name: pair.limit.name + (index ? ", upper" : ", lower")
                        }
                    }
                }
            }
            ZLabel {
                Layout.fillWidth: true
                visible: text !== ""
                text: compRules.fault === "" ? "" : "✖ " + compRules.fault
                color: theme.bad
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            RowLayout {
                spacing: 8
                ZButton { objectName: "saveRules"; text: "Save"; strong: true; enabled: compRules.fault === ""; onClicked: sheet.save() }
                ZButton { text: "As they were"; visible: compRules.edited; onClicked: compRules.discard() }
            }
        }
    }
    function save() {
        if (compRules.save())
            app.closeSheet()
    }
}
