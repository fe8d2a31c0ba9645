import QtQuick
import QtQuick.Layouts

// Why frames dropped in the run that has ended, and what to do about it.
SheetFrame {
    id: sheet
    title: "After the run"
    sheetWidth: 640 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Enter: the button that has the keyboard. Escape: leave it at that."
    readonly property bool explains: dropExplainer.reason !== ""
    Component.onCompleted: (explains ? editButton : leaveButton).focus = true

    FormFlick {
        id: form
        anchors.fill: parent
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 10
            ZLabel {
                objectName: "dropHeadline"
                Layout.fillWidth: true
                text: dropExplainer.headline
                font.pixelSize: theme.large
                font.weight: Font.Bold
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel { objectName: "dropReason"; Layout.fillWidth: true; visible: text !== ""; text: dropExplainer.reason }
            ZLabel { Layout.fillWidth: true; visible: text !== ""; text: dropExplainer.basis }
            ZLabel {
                objectName: "dropAsymmetry"
                Layout.fillWidth: true
                visible: text !== ""
                text: dropExplainer.asymmetry === "" ? "" : "⚠ " + dropExplainer.asymmetry
                color: theme.warning
            }
            Flow {
                Layout.fillWidth: true
                spacing: 8
                ZButton {
                    id: editButton
                    objectName: "editScript"
                    visible: sheet.explains
                    strong: true
                    text: "Edit the script"
                    onClicked: dropExplainer.editScript()
                    Accessible.name: "Edit the script at its tightest place"
                }
                ZButton { objectName: "measureBody"; visible: sheet.explains; text: "Measure the body…"; onClicked: dropExplainer.measure() }
                ZButton { id: leaveButton; objectName: "leaveIt"; text: sheet.explains ? "Leave it" : "Back"; onClicked: app.closeSheet() }
            }
        }
    }
}
