import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// May usage reports be sent? Asked once, and open from the settings at any time.
SheetFrame {
    id: sheet
    title: "Usage reports"
    grow: height < 600
    sheetWidth: 760 * theme.scale
    wantedHeight: 470 * theme.scale
    readonly property string keysHere: "Tab: to the answers. Page up, page down in the example: read on. Escape: no, and back."

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        ZLabel {
            objectName: "usageQuestion"
            Layout.fillWidth: true
            text: service.host === "" ? "No service is set that reports could be sent to. Settings has a field for its address."
                : "May Zenka tell " + service.host + " how it does in the field? It would send each start, how each run went, the faults of camera drivers and the programs that got in their way, and what bodies were measured to hold; with it the labels and models of your cameras, and this computer's system and model. No script, no place, no picture and no address of yours. A whole report:"
        }
        ScrollView {
            id: scroller
            focus: true
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 60
            clip: true
            background: Rectangle { color: theme.page; border.color: example.activeFocus ? theme.accent : theme.line; border.width: example.activeFocus ? 2 : 1 }
            TextArea {
                id: example
                objectName: "usageExample"
                readOnly: true
                focus: true
                text: service.example
                wrapMode: TextEdit.Wrap
                textFormat: TextEdit.PlainText
                color: theme.text
                font.family: theme.digits
                font.pixelSize: theme.small
                selectionColor: theme.accent
                selectedTextColor: theme.page
                background: null
                KeyNavigation.priority: KeyNavigation.BeforeItem
                KeyNavigation.tab: yes
                Accessible.name: "Example of a usage report"
                Keys.onPressed: (event) => sheet.scrollByKey(scroller.contentItem, event)
            }
        }
        ZLabel {
            Layout.fillWidth: true
            text: "Settings changes your answer at any time. A no also deletes what waits to be sent."
            color: theme.quiet
            font.pixelSize: theme.small
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZButton {
                id: yes
                objectName: "usageYes"
                text: "Yes"
                enabled: service.host !== ""
                Layout.preferredWidth: 140 * theme.scale
                onClicked: service.answer(true)
                Accessible.name: "Yes, send usage reports"
            }
            ZButton {
                objectName: "usageNo"
                text: "No"
                Layout.preferredWidth: 140 * theme.scale
                onClicked: service.answer(false)
                Accessible.name: "No, send no usage reports"
            }
            Item { Layout.fillWidth: true }
            ZButton { objectName: "usagePage"; text: "What Zenka sends…"; onClicked: commands.trigger("openPrivacy") }
        }
    }
}
