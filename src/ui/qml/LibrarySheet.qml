import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The bodies that are remembered by their serial numbers, here or not.
SheetFrame {
    id: sheet
    title: "My cameras"
    sheetWidth: 860 * theme.scale
    wantedHeight: top.implicitHeight + 8 + list.contentHeight
    readonly property string keysHere: "In a lens field, Enter: keep it; Escape: as it was. Escape elsewhere: back."

    ColumnLayout {
        id: top
        anchors { left: parent.left; right: parent.right; top: parent.top }
        spacing: 6
        ZLabel {
            Layout.fillWidth: true
            text: library.emptyText !== "" ? library.emptyText : library.summary + ". Label, lens and framing follow each body by its serial number."
            color: library.emptyText !== "" ? theme.text : theme.quiet
        }
        RowLayout {
            Layout.fillWidth: true
            visible: library.undoText !== ""
            ZLabel { Layout.fillWidth: true; text: library.undoText; Accessible.role: Accessible.AlertMessage; Accessible.name: text }
            ZButton {
                id: undoButton
                objectName: "undoForget"
                text: "Undo"
                Accessible.name: "Undo: " + library.undoText
                onClicked: {
                    library.undoForget()
                    if (!visible)
                        sheet.forceActiveFocus()
                }
            }
        }
    }
    FormFlick {
        id: list
        anchors { left: parent.left; right: parent.right; top: top.bottom; topMargin: 8; bottom: parent.bottom }
        Column {
            width: list.fieldsWidth
            spacing: 6
            Repeater {
                model: library
                delegate: Rectangle {
                    id: row
                    required property string serial
                    required property string label
                    required property string bodyModel
                    required property string lens
                    required property string lensFault
                    required property bool isConnected
                    required property string bodyState
                    width: parent.width
                    height: cells.implicitHeight + 12
                    color: theme.page
                    border.width: 1
                    border.color: theme.line
                    radius: 4
                    Accessible.role: Accessible.ListItem
                    Accessible.name: label + ", " + bodyModel + ", serial number " + serial + ", " + bodyState

                    GridLayout {
                        id: cells
                        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 8 }
                        columns: 5
                        columnSpacing: 12
                        rowSpacing: 2
                        ColumnLayout {
                            Layout.fillWidth: true
                            Layout.preferredWidth: 200
                            spacing: 0
                            ZLabel { Layout.fillWidth: true; text: row.label; font.weight: Font.Bold; elide: Text.ElideRight; wrapMode: Text.NoWrap }
                            ZLabel { Layout.fillWidth: true; text: row.bodyModel + "  № " + row.serial; color: theme.quiet; font.pixelSize: theme.small; wrapMode: Text.WrapAnywhere }
                        }
                        ZLabel {
                            Layout.preferredWidth: theme.normal * 10.5
                            text: row.bodyState
                            color: row.isConnected ? theme.good : theme.text
                            wrapMode: Text.NoWrap
                        }
                        LensField {
                            objectName: "libraryLens"
                            Layout.fillWidth: true
                            Layout.preferredWidth: 220
                            enabled: row.lensFault === ""
                            lens: row.lens
                            owner: row.label
                            onDecided: (text) => library.setLens(row.serial, text)
                        }
                        ZButton {
                            objectName: "libraryFraming"
                            text: "Framing…"
                            Accessible.name: "Framing of " + row.label
                            onClicked: {
                                framing.chooseSerial(row.serial)
                                app.openPage("Framing")
                            }
                        }
                        ZButton {
                            text: "Forget"
                            Accessible.name: "Forget " + row.label
                            onClicked: {
                                sheet.forgotten = true
                                library.forget(row.serial)
                            }
                        }
                        ZLabel {
                            Layout.fillWidth: true
                            Layout.columnSpan: 5
                            visible: text !== ""
                            text: row.lensFault
                            color: theme.warning
                            font.pixelSize: theme.small
                        }
                    }
                }
            }
        }
    }
    // The button that had the keyboard went with its row.
    property bool forgotten: false
    Connections {
        target: library
        function onChanged() {
            if (sheet.forgotten) {
                sheet.forgotten = false
                undoButton.forceActiveFocus()
            }
        }
    }
}
