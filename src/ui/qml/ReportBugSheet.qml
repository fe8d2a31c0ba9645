import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

SheetFrame {
    title: "Report a bug"
    grow: true
    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        ZLabel {
            Layout.fillWidth: true
            text: "Tell what you did, what happened, and what you expected instead. Send it to whoever gave you Zenka, with these lines below it. They may name your site and your files: read them first."
        }
        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            background: Rectangle { color: theme.page; border.color: facts.activeFocus ? theme.accent : theme.line; border.width: facts.activeFocus ? 2 : 1 }
            TextArea {
                id: facts
                objectName: "bugFacts"
                readOnly: true
                text: app.bugFacts
                wrapMode: TextEdit.Wrap
                color: theme.text
                font.family: theme.digits
                font.pixelSize: theme.small
                selectionColor: theme.accent
                selectedTextColor: theme.page
                background: null
                KeyNavigation.priority: KeyNavigation.BeforeItem
                KeyNavigation.tab: copyFacts
                Accessible.name: "Facts for the report"
            }
        }
        RowLayout {
            spacing: 8
            ZButton { id: copyFacts; text: "Copy"; strong: true; focus: true; onClicked: { app.copy(app.bugFacts); told.text = "Copied." } Accessible.name: "Copy the facts" }
            ZLabel { id: told }
        }
    }
}
