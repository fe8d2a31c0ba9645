import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// What the Simulation Analyzer found, and a note to go with its report.
ColumnLayout {
    id: page
    spacing: 8
    property bool low: false // there is little room
    property var readOn: (event) => {} // scrolls the sheet by a key

    component Reading: TextArea {
        color: theme.text
        font.pixelSize: theme.normal
        font.weight: theme.weight
        wrapMode: TextEdit.Wrap
        textFormat: TextEdit.PlainText
        selectByMouse: true
        selectionColor: theme.accent
        selectedTextColor: theme.page
        placeholderTextColor: theme.quiet
        // Tab leads on.
        Keys.priority: Keys.BeforeItem
        Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
        Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
    }
    component TextFrame: Rectangle {
        property bool lit
        radius: 4
        color: theme.page
        border.width: lit ? 2 : 1
        border.color: lit ? theme.accent : theme.line
    }

    ZLabel {
        objectName: "verdictTitle"
        Layout.fillWidth: true
        text: analyzer.title
        color: analyzer.pass ? theme.good : theme.warning
        font.pixelSize: theme.large * 1.4
        font.weight: Font.Bold
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    Reading {
        objectName: "verdictText"
        Layout.fillWidth: true
        readOnly: true
        text: analyzer.text
        background: TextFrame { lit: parent.activeFocus }
        Accessible.name: "What was found"
        Keys.onPressed: (event) => {
            event.accepted = false
            if (event.key === Qt.Key_F1 || event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp)
                page.readOn(event)
        }
    }
    ZLabel {
        objectName: "sendFault"
        Layout.fillWidth: true
        visible: text !== ""
        text: analyzer.sendFault === "" ? "" : "✖ " + analyzer.sendFault
        color: theme.bad
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    ZLabel {
        objectName: "nobodyToSendTo"
        Layout.fillWidth: true
        text: analyzer.canSend ? "Send report sends the page, its numbers, your note and your email to " + service.host + "."
            : "No service is set up that a report could be sent to: it stays on this computer."
        color: theme.quiet
    }
    ScrollView {
        Layout.fillWidth: true
        Layout.preferredHeight: theme.normal * (page.low ? 3.4 : 5)
        background: TextFrame { lit: noteArea.activeFocus }
        Reading {
            id: noteArea
            objectName: "note"
            placeholderText: "Note (optional): what you were testing, anything that looked off"
            background: null
            Component.onCompleted: text = analyzer.note
            onTextChanged: analyzer.note = text
            onActiveFocusChanged: app.setTyping(activeFocus)
            Accessible.name: "Note to the report"
        }
    }
    EmailField { objectName: "reportEmail"; Layout.fillWidth: true; visible: analyzer.canSend }
}
