import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Everything that could spoil the run, in one list: told by shape and word, and what to do about it.
SheetFrame {
    id: sheet
    title: "Pre-flight"
    sheetWidth: 860 * theme.scale
    grow: height < 640
    wantedHeight: Math.max(320, Math.min(sheet.height - 120, rows.contentHeight + 150))
    readonly property string keysHere: "Up, down: through the list. Tab: to the buttons. F5: look again. Escape: back."
    readonly property bool armed: !preflight.fails || word.text.trim().toUpperCase() === "ARM"
    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_F5) {
            preflight.recheck()
            event.accepted = true
        }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        ZLabel {
            objectName: "preflightSummary"
            Layout.fillWidth: true
            text: preflight.summary
            font.weight: Font.Bold
            font.pixelSize: theme.large
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        ZLabel { Layout.fillWidth: true; visible: text !== ""; text: preflight.place; color: theme.quiet }
        ListView {
            id: rows
            objectName: "preflightRows"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            focus: true
            activeFocusOnTab: true
            model: preflight
            spacing: 2
            cacheBuffer: 4000 // all rows, so that the length is known
            boundsBehavior: Flickable.StopAtBounds
            Accessible.role: Accessible.List
            Accessible.name: "Checks"
            ScrollBar.vertical: ZScrollBar { policy: rows.contentHeight > rows.height ? ScrollBar.AlwaysOn : ScrollBar.AsNeeded }
            Keys.onPressed: (event) => sheet.scrollByKey(rows, event)
            delegate: Rectangle {
                id: row
                required property string title
                required property string detail
                required property string symbol
                required property string word
                required property string status
                readonly property color tone: status === "fail" ? theme.bad : status === "warn" ? theme.warning : theme.good
                objectName: "preflightRow"
                width: rows.width - 16
                height: cells.implicitHeight + 12
                color: status === "fail" ? theme.page : "transparent"
                border.width: status === "fail" ? 2 : 0
                border.color: tone
                Accessible.role: Accessible.ListItem
                Accessible.name: word + ". " + title + ". " + detail
                RowLayout {
                    id: cells
                    anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 8 }
                    spacing: 12
                    Text {
                        text: row.symbol + " " + row.word
                        color: row.tone
                        font.pixelSize: theme.normal
                        font.bold: true
                        Layout.preferredWidth: theme.normal * 5
                        Layout.alignment: Qt.AlignTop
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 1
                        ZLabel { Layout.fillWidth: true; text: row.title; font.weight: Font.Bold }
                        ZLabel { Layout.fillWidth: true; text: row.detail }
                    }
                }
            }
            Rectangle {
                anchors.fill: parent
                color: "transparent"
                border.width: 2
                border.color: theme.accent
                visible: rows.activeFocus
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZButton { objectName: "recheck"; text: "Re-check (F5)"; onClicked: preflight.recheck(); Accessible.name: "Re-check" }
            ZButton { text: "Location…"; onClicked: commands.trigger("location") }
            ZLabel {
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignRight
                text: word.visible ? "To go on all the same, type ARM:" : ""
            }
            ZField {
                id: word
                objectName: "armWord"
                visible: preflight.mayProceed && preflight.fails
                Layout.preferredWidth: theme.normal * 6
                Accessible.name: "Type ARM to go on although a check fails"
                onAccepted: if (sheet.armed) preflight.proceed()
            }
            ZButton {
                objectName: "preflightGoOn"
                visible: preflight.mayProceed
                enabled: sheet.armed
                strong: true
                text: "Go on to arming…"
                onClicked: preflight.proceed()
            }
        }
    }
}
