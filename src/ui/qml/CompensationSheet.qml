import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Live exposure compensation: what is asked of each camera, and what its next frame makes of it.
SheetFrame {
    id: sheet
    title: "Exposure compensation"
    sheetWidth: 860 * theme.scale
    wantedHeight: top.implicitHeight + 8 + list.contentHeight
    readonly property string keysHere: "Ctrl+Up, Ctrl+Down: all cameras a stop brighter, darker. Ctrl+0: back to zero. In a number, up and down: a stop more, less. Escape: back."

    ColumnLayout {
        id: top
        anchors { left: parent.left; right: parent.right; top: parent.top }
        spacing: 6
        Flow {
            Layout.fillWidth: true
            spacing: 8
            ZButton { text: "− All"; focus: true; onClicked: compensation.nudgeAll(-1); Accessible.name: "All cameras a stop darker" }
            ZButton { text: "+ All"; onClicked: compensation.nudgeAll(1); Accessible.name: "All cameras a stop brighter" }
            ZButton { text: "Back to zero"; strong: compensation.active; onClicked: compensation.reset() }
            ZCheck {
                text: "Leave totality as the script has it"
                checked: compensation.leaveTotalityAlone
                onToggled: compensation.leaveTotalityAlone = checked
            }
        }
        ZLabel {
            Layout.fillWidth: true
            text: compensation.emptyText !== "" ? compensation.emptyText : "A camera takes part once its rules are saved. Each run begins at zero. Totality counts from 30 s before C2 to 30 s after C3."
            color: theme.quiet
            font.pixelSize: theme.small
        }
    }
    FormFlick {
        id: list
        anchors { left: parent.left; right: parent.right; top: top.bottom; topMargin: 8; bottom: parent.bottom }
        Column {
            width: list.fieldsWidth
            spacing: 6
            Repeater {
                model: compensation
                delegate: Rectangle {
                    id: row
                    required property string token
                    required property bool on
                    required property string partials
                    required property string totality
                    required property bool linked
                    required property bool hasRules
                    required property string gaps
                    required property string next
                    required property string note
                    width: parent.width
                    height: cells.implicitHeight + 12
                    color: theme.page
                    border.width: 1
                    border.color: theme.line
                    radius: 4
                    Accessible.role: Accessible.ListItem
                    Accessible.name: token + ", partials " + partials + ", totality " + totality

                    ColumnLayout {
                        id: cells
                        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 8 }
                        spacing: 2
                        Flow {
                            Layout.fillWidth: true
                            spacing: 8
                            ZCheck {
                                text: row.token
                                font.bold: true
                                enabled: row.hasRules
                                checked: row.on
                                onToggled: { compensation.setOn(row.token, checked); checked = Qt.binding(() => row.on) }
                                Accessible.name: "Compensate " + row.token
                            }
                            StopsField { objectName: "partialsStops"; name: "Partials"; value: row.partials; owner: row.token; enabled: row.hasRules; onNudged: (by) => compensation.nudgePartials(row.token, by) }
                            StopsField { name: "Totality"; value: row.totality; owner: row.token; enabled: row.hasRules && !row.linked; onNudged: (by) => compensation.nudgeTotality(row.token, by) }
                            ZCheck {
                                text: "together"
                                enabled: row.hasRules
                                checked: row.linked
                                onToggled: { compensation.setLinked(row.token, checked); checked = Qt.binding(() => row.linked) }
                                Accessible.name: "Totality of " + row.token + " follows the partials"
                            }
                            ZButton {
                                objectName: "compRules"
                                text: row.hasRules ? "Rules…" : "Give it rules…"
                                strong: !row.hasRules
                                Accessible.name: text + " " + row.token
                                onClicked: { compRules.open(row.token); app.openPage("CompRules") }
                            }
                        }
                        ZLabel { Layout.fillWidth: true; text: row.next; font.family: theme.digits; font.pixelSize: theme.small }
                        ZLabel { Layout.fillWidth: true; visible: text !== ""; text: row.note; color: theme.accent; font.pixelSize: theme.small }
                        ZLabel { Layout.fillWidth: true; text: "Spacing: " + row.gaps; color: theme.quiet; font.pixelSize: theme.small }
                    }
                }
            }
        }
    }
}
