import QtQuick
import QtQuick.Layouts
import QtQuick.Window

// What reached the card: the Simulation Analyzer asks, works and gives its verdict.
SheetFrame {
    id: sheet
    title: "Simulation Analyzer"
    sheetWidth: 720 * theme.scale
    wantedHeight: form.contentHeight + form.anchors.bottomMargin + actions.height
    readonly property string keysHere: "Enter: the button that has the keyboard. Up, down, Home, End in a list: another one. Page up, page down: read on. Escape: cancel; a report that is written stays."
    Keys.onPressed: (event) => { if (event.key === Qt.Key_PageDown || event.key === Qt.Key_PageUp) sheet.scrollByKey(form, event) }

    readonly property string step: analyzer.step
    Component.onCompleted: turn()
    onStepChanged: Qt.callLater(sheet.turn)
    // The button that had the keyboard went with its page.
    function turn() {
        form.contentY = 0
        if (step === "pick")
            choices.begin()
        else
            (step === "offer" ? analyzeButton : step === "working" ? cancelButton : step === "verdict" ? keepButton
             : againButton.visible ? againButton : closeButton).forceActiveFocus(Qt.TabFocusReason)
    }
    function askForFolder() {
        folderChooser.ask(analyzer.folder)
    }

    FormFlick {
        id: form
        objectName: "analyzerForm"
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: actions.top; bottomMargin: 12 }
        // A place in a long list is known only once the list is laid out.
        onContentHeightChanged: showFocus()
        onHeightChanged: showFocus()
        function showFocus() {
            const item = sheet.Window.activeFocusItem
            if (item && item.parent === choices)
                reveal(item)
        }
        ColumnLayout {
            width: form.fieldsWidth
            spacing: 10
            ZLabel {
                objectName: "analyzerSummary"
                Layout.fillWidth: true
                visible: text !== ""
                text: analyzer.summary
            }
            ZLabel {
                objectName: "analyzerTitle"
                Layout.fillWidth: true
                visible: sheet.step !== "verdict" && text !== ""
                text: analyzer.title
                font.pixelSize: theme.large
                font.weight: Font.Bold
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZLabel {
                objectName: "analyzerText"
                Layout.fillWidth: true
                visible: sheet.step !== "verdict"
                text: analyzer.text
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }

            // How far the reading is
            ZLabel {
                objectName: "analyzerProgress"
                Layout.fillWidth: true
                visible: bar.visible
                text: analyzer.filesRead + " of " + analyzer.filesFound + (analyzer.filesFound === 1 ? " file" : " files")
                font.family: theme.digits
                Accessible.role: Accessible.StaticText
                Accessible.name: text
            }
            Rectangle {
                id: bar
                objectName: "analyzerBar"
                Layout.fillWidth: true
                visible: sheet.step === "working" && analyzer.filesFound > 0
                implicitHeight: 14
                color: theme.page
                border.width: 1
                border.color: theme.text
                Rectangle {
                    objectName: "analyzerBarDone"
                    anchors { left: parent.left; top: parent.top; bottom: parent.bottom; margins: 3 }
                    width: (parent.width - 6) * analyzer.filesRead / Math.max(1, analyzer.filesFound)
                    color: theme.accent
                }
            }

            AnalyzerChoices { id: choices; Layout.fillWidth: true; visible: sheet.step === "pick" }
            AnalyzerVerdict {
                Layout.fillWidth: true
                visible: sheet.step === "verdict"
                low: sheet.height < 500
                readOn: (event) => sheet.scrollByKey(form, event)
            }
        }
    }
    // Always to be seen, however long the list or the verdict is.
    Flow {
        id: actions
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        spacing: 8
        ZButton {
            id: analyzeButton
            objectName: "analyze"
            visible: sheet.step === "offer"
            strong: true
            text: "Analyze"
            onClicked: analyzer.choose(0)
        }
        ZButton { objectName: "notNow"; visible: sheet.step === "offer"; text: "Not now"; onClicked: app.closeSheet() }
        ZButton {
            id: againButton
            objectName: "tryAgain"
            visible: sheet.step === "idle" || analyzer.wantsCard
            strong: true
            text: analyzer.wantsCard ? "Try again" : "Analyze"
            onClicked: analyzer.analyze()
        }
        ZButton {
            objectName: "chooseFolder"
            visible: analyzer.wantsCard
            text: "Choose a folder…"
            onClicked: sheet.askForFolder()
            Accessible.name: "Choose a folder with a card's images"
        }
        ZButton {
            id: closeButton
            objectName: "closeMessage"
            visible: sheet.step === "idle" || sheet.step === "message"
            text: "Close"
            onClicked: app.closeSheet()
        }
        ZButton {
            id: cancelButton
            objectName: "cancelAnalysis"
            visible: sheet.step === "working" || sheet.step === "pick"
            text: "Cancel"
            onClicked: app.closeSheet()
        }
        ZButton {
            objectName: "sendReport"
            visible: sheet.step === "verdict"
            enabled: analyzer.canSend
            text: "Send report"
            onClicked: analyzer.sendReport(service.email)
        }
        ZButton {
            id: keepButton
            objectName: "keepLocal"
            visible: sheet.step === "verdict"
            strong: true
            text: analyzer.hasReport ? "Save locally only" : "Close"
            onClicked: analyzer.keepLocal()
        }
        ZButton { objectName: "openReport"; visible: analyzer.hasReport; text: "Open the report"; onClicked: analyzer.openReport() }
    }

    FileChooser {
        id: folderChooser
        title: "The folder with the card's images"
        choosesFolder: true
        takeText: "Analyze this folder"
        emptyText: "No folder in this one."
        onChosen: (folder) => analyzer.analyzeFolder(folder)
    }
}
