import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Zenka 1.0

// The script: editor, what the compiler says of it, and its frames against the eclipse.
SheetFrame {
    id: sheet
    // In a low window the name goes into the title, and the editor gets the room.
    readonly property bool low: height < 500
    title: low ? "Script  " + (script.edited ? "✎ " : "") + script.name : "Script"
    grow: true
    readonly property string keysHere: "Ctrl+S: save. Ctrl+Shift+S: save as. Ctrl+O: open. Ctrl+N: new. F7: validate. Ctrl+Z, Ctrl+Shift+Z: undo, redo. Tab: to the buttons and the diagnostics, where Enter goes to the line. Escape: back, with the text kept."

    function askWhereToSave() {
        saveChooser.ask(script.folder)
    }
    function save() {
        if (!script.save())
            askWhereToSave()
    }
    function ask() {
        openChooser.ask(script.folder)
    }
    function goToRow(row) {
        area.cursorPosition = script.positionOf(row)
        area.forceActiveFocus()
    }

    // While the sheet is open these keys are its own.
    function keyOf(event) {
        if (!(event.modifiers & Qt.ControlModifier))
            return ""
        const shift = event.modifiers & Qt.ShiftModifier
        switch (event.key) {
        case Qt.Key_S: return shift ? "saveAs" : "save"
        case Qt.Key_O: return shift ? "" : "open"
        case Qt.Key_N: return shift ? "" : "new"
        }
        return ""
    }
    Keys.onShortcutOverride: (event) => event.accepted = keyOf(event) !== ""
    Keys.onPressed: (event) => {
        const key = keyOf(event)
        event.accepted = key !== ""
        if (key === "save") save()
        else if (key === "saveAs") askWhereToSave()
        else if (key === "open") ask()
        else if (key === "new") script.newScript()
    }

    ScriptHighlighter {
        document: area.textDocument
        active: script.colours
        command: theme.accent
        plain: theme.text
        quiet: theme.quiet
        unknown: theme.bad
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            visible: !sheet.low
            spacing: 8
            ZLabel {
                text: script.name
                font.weight: Font.Bold
                elide: Text.ElideMiddle
                wrapMode: Text.NoWrap
                Layout.maximumWidth: sheet.width * 0.4
            }
            ZLabel {
                objectName: "scriptFileWords"
                text: (script.edited ? "✎ " : "") + script.fileWords + (script.isDefault ? " · each start begins with it" : "")
                color: script.edited ? theme.accent : theme.quiet
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                Layout.fillWidth: true
            }
        }

        Flow {
            Layout.fillWidth: true
            spacing: 6
            ZButton { text: "New"; onClicked: script.newScript() }
            ZButton { text: "Open…"; onClicked: sheet.ask() }
            ZButton {
                id: recentButton
                text: "Recent ▾"
                enabled: script.recent.length > 0 || script.hasUnsaved
                Accessible.name: "Recent scripts"
                onClicked: recentMenu.popup(recentButton, 0, recentButton.height)
                Menu {
                    id: recentMenu
                    width: Math.min(560, sheet.width - 60)
                    background: Rectangle { color: theme.panel; border.color: theme.line }
                    Instantiator {
                        model: script.recent
                        delegate: MenuLine {
                            required property var modelData
                            text: modelData.name
                            hint: modelData.folder
                            onTriggered: script.openRecent(modelData.path)
                        }
                        onObjectAdded: (index, object) => recentMenu.insertItem(index, object)
                        onObjectRemoved: (index, object) => recentMenu.removeItem(object)
                    }
                    MenuLine {
                        text: "Unsaved text from before"
                        visible: script.hasUnsaved
                        height: visible ? implicitHeight : 0
                        onTriggered: script.bringBackUnsaved()
                    }
                }
            }
            ZButton { text: "Save"; strong: script.edited; onClicked: sheet.save() }
            ZButton { text: "Save as…"; onClicked: sheet.askWhereToSave() }
            ZButton {
                id: exampleButton
                text: "Load example ▾"
                Accessible.name: "Load example"
                visible: script.examples.length > 0
                onClicked: exampleMenu.popup(exampleButton, 0, exampleButton.height)
                Menu {
                    id: exampleMenu
                    width: 300
                    background: Rectangle { color: theme.panel; border.color: theme.line }
                    Instantiator {
                        model: script.examples
                        delegate: MenuLine {
                            required property var modelData
                            text: modelData.title
                            onTriggered: script.loadExample(modelData.file)
                        }
                        onObjectAdded: (index, object) => exampleMenu.insertItem(index, object)
                        onObjectRemoved: (index, object) => exampleMenu.removeItem(object)
                    }
                }
            }
            ZButton { objectName: "validateButton"; text: "Validate"; onClicked: script.validate() }
            ZButton {
                objectName: "consentButton"
                visible: consent.count > 0
                danger: true
                text: "⚠ Commands…"
                Accessible.name: "Commands that wait for your leave"
                onClicked: app.openPage("Consent")
            }
            ZButton { text: "Wizard…"; Accessible.name: "Script Wizard"; onClicked: app.openPage("Wizard") }
            ZButton { text: "Undo"; enabled: area.canUndo; onClicked: area.undo() }
            ZButton { text: "Redo"; enabled: area.canRedo; onClicked: area.redo() }
            ZButton {
                text: script.isDefault ? "Not at each start" : "Use at each start"
                onClicked: script.setDefault(!script.isDefault)
            }
            ZButton { text: "Language"; visible: !sheet.low; Accessible.name: "Script language guide"; onClicked: commands.trigger("openScriptGuide") }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 80
            color: theme.page
            border.width: area.activeFocus ? 2 : 1
            border.color: area.activeFocus ? theme.accent : theme.line
            clip: true

            ScriptGutter {
                id: gutter
                anchors { left: parent.left; top: parent.top; bottom: parent.bottom; margins: 2 }
                width: digits.advanceWidth + 36
                view: script
                colors: theme
                scrolled: scroller.contentY - area.topPadding
                currentRow: area.row
                font: area.font
                TextMetrics {
                    id: digits
                    font: area.font
                    text: "0".repeat(Math.max(3, String(area.lineCount).length))
                }
                MouseArea {
                    anchors.fill: parent
                    onClicked: (mouse) => sheet.goToRow(gutter.rowAtY(mouse.y))
                }
            }
            Rectangle {
                anchors { left: gutter.right; top: parent.top; bottom: parent.bottom; margins: 2 }
                width: 1
                color: theme.line
            }
            Flickable {
                id: scroller
                anchors { left: gutter.right; leftMargin: 3; right: parent.right; top: parent.top; bottom: parent.bottom; margins: 2 }
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                // The line one types in stays to be seen when a message takes room.
                onHeightChanged: {
                    const line = area.cursorRectangle
                    if (line.y + line.height > contentY + height && line.y > contentY)
                        contentY = Math.max(0, line.y + line.height + area.bottomPadding - height)
                }
                ScrollBar.vertical: ZScrollBar {}
                ScrollBar.horizontal: ZScrollBar {}

                TextArea.flickable: TextArea {
                    id: area
                    objectName: "scriptArea"
                    readonly property int row: cursorPosition >= 0 && lineCount > 0 ? script.rowAt(cursorPosition) : 0
                    focus: true
                    textFormat: TextEdit.PlainText
                    wrapMode: TextEdit.NoWrap
                    selectByMouse: true
                    persistentSelection: true
                    font.family: theme.digits
                    font.pixelSize: theme.normal
                    font.weight: theme.weight
                    color: theme.text
                    selectionColor: theme.accent
                    selectedTextColor: theme.page
                    background: null
                    cursorDelegate: Rectangle {
                        width: 2
                        color: theme.accent
                        visible: area.activeFocus
                    }
                    Accessible.name: "Script text"
                    // Tab leads on: a script needs no tabs, and the keyboard must get out again.
                    Keys.priority: Keys.BeforeItem
                    Keys.onTabPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                    Keys.onBacktabPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason)
                    onActiveFocusChanged: app.setTyping(activeFocus)
                    Component.onCompleted: script.document = area.textDocument
                    Connections {
                        target: script
                        function onReplaced() { area.cursorPosition = 0 }
                    }
                }
            }
            ZLabel {
                anchors { right: parent.right; bottom: parent.bottom; margins: 18 }
                visible: area.length === 0
                anchors.left: gutter.right
                text: "No script yet. Write a line, open a file, load an example, or let the wizard make one."
                color: theme.quiet
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            ZLabel {
                objectName: "scriptSummary"
                text: script.summary
                font.weight: Font.DemiBold
                Layout.fillWidth: true
            }
            ZLabel { text: "line " + (area.row + 1); color: theme.quiet; wrapMode: Text.NoWrap }
        }
        ZLabel {
            objectName: "scriptValidated"
            Layout.fillWidth: true
            visible: text !== ""
            text: script.validated
            color: text.startsWith("✓") ? theme.good : theme.warning
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        ZLabel {
            Layout.fillWidth: true
            visible: text !== ""
            text: script.outside
            color: theme.warning
        }
        ZLabel {
            Layout.fillWidth: true
            visible: !script.colours
            text: "This text is longer than a million letters, so it is shown without colours."
            color: theme.quiet
        }
        ZLabel {
            objectName: "scriptMessage"
            Layout.fillWidth: true
            visible: script.message !== ""
            text: (script.failed ? "✖ " : "") + script.message
            color: script.failed ? theme.bad : theme.quiet
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }

        ScriptPreview {
            Layout.fillWidth: true
            Layout.preferredHeight: 64
            visible: !sheet.low
            view: script
            colors: theme
            Accessible.role: Accessible.Graphic
            Accessible.name: "Frames over the eclipse: " + script.summary
        }

        ListView {
            id: diagnosticsList
            objectName: "diagnosticsList"
            Layout.fillWidth: true
            // Always the same, so that the text does not move while one types.
            Layout.preferredHeight: rowHeight * (sheet.height < 600 ? 1 : 3)
            visible: !sheet.low || count > 0
            readonly property int rowHeight: Math.max(32, theme.normal + 16)
            clip: true
            activeFocusOnTab: count > 0
            keyNavigationEnabled: true
            boundsBehavior: Flickable.StopAtBounds
            model: script.diagnostics
            ScrollBar.vertical: ZScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: "Diagnostics"
            ZLabel {
                x: 8
                visible: diagnosticsList.count === 0
                text: script.validated === "" ? "The compiler has nothing to remark. Validate asks the sky and the cameras." : "There is nothing to remark."
                color: theme.quiet
            }
            Keys.onReturnPressed: if (currentItem) sheet.goToRow(currentItem.row)
            Keys.onEnterPressed: if (currentItem) sheet.goToRow(currentItem.row)
            delegate: Rectangle {
                id: diagnostic
                required property int index
                required property int row
                required property int line
                required property string symbol
                required property string word
                required property string message
                required property bool isError
                readonly property bool current: diagnosticsList.activeFocus && ListView.isCurrentItem
                width: diagnosticsList.width
                height: diagnosticsList.rowHeight
                color: row === area.row ? theme.page : "transparent"
                border.width: current ? 2 : 0
                border.color: theme.accent
                Accessible.role: Accessible.ListItem
                Accessible.name: word + (line > 0 ? " in line " + line : "") + ": " + message
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 8
                    anchors.rightMargin: 14
                    spacing: 10
                    Text {
                        text: diagnostic.symbol
                        color: diagnostic.isError ? theme.bad : theme.warning
                        font.pixelSize: theme.large
                        font.family: theme.digits
                        font.bold: true
                    }
                    Text {
                        visible: diagnostic.line > 0
                        text: "line " + diagnostic.line
                        color: theme.text
                        font.pixelSize: theme.normal
                        font.family: theme.digits
                        font.weight: theme.weight
                    }
                    Text {
                        text: diagnostic.message
                        textFormat: Text.PlainText
                        color: theme.text
                        font.pixelSize: theme.normal
                        font.weight: theme.weight
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                }
                MouseArea {
                    id: pointer
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: { diagnosticsList.currentIndex = diagnostic.index; sheet.goToRow(diagnostic.row) }
                }
                ZTip { visible: pointer.containsMouse || diagnostic.current; text: diagnostic.message }
            }
        }
    }

    FileChooser {
        id: openChooser
        title: "Open a script"
        kind: "Scripts"
        patterns: ["*.zenka", "*.txt"]
        onChosen: (file) => script.open(file)
    }
    FileChooser {
        id: saveChooser
        title: "Save the script"
        saving: true
        kind: "Scripts"
        patterns: ["*.zenka"]
        suffix: ".zenka"
        onChosen: (file) => script.saveAs(file)
    }
    // What the menu and the timeline ask for.
    Connections {
        target: app
        function onScriptCommand(what) {
            if (what === "newScript") script.newScript()
            else if (what === "open") sheet.ask()
            else if (what === "save") sheet.save()
            else if (what === "validate") script.validate()
        }
        function onScriptLineWanted(lineNo) { sheet.goToRow(script.rowOfLine(lineNo)) }
    }
    Component.onDestruction: script.keep()
}
