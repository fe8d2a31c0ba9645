import QtQuick
import QtQuick.Dialogs

// Asks where: with the desktop's dialog by day, which knows its places, and with our own in the dark, where that
// would be white, and on desktops that have none.
Item {
    id: chooser
    property string title
    property bool saving: false
    property bool choosesFolder: false
    property string kind // "Scripts", as the desktop's dialog calls the files that the patterns let through
    property var patterns: []
    property string suffix // ".zenka", of a name that is typed without one
    property string suggested
    property string emptyText
    property string takeText
    signal chosen(url file)

    function ask(folder) {
        const dialog = theme.night || !app.desktopDialogs ? own.item : desktops.item
        dialog.currentFolder = folder
        if (dialog === desktops.item && saving && suggested !== "")
            dialog.selectedFile = folder + "/" + suggested
        dialog.open()
    }

    Loader {
        id: desktops
        active: app.desktopDialogs
        sourceComponent: chooser.choosesFolder ? folderDialog : fileDialog
    }
    Component {
        id: fileDialog
        FileDialog {
            title: chooser.title
            fileMode: chooser.saving ? FileDialog.SaveFile : FileDialog.OpenFile
            defaultSuffix: chooser.suffix.replace(".", "")
            nameFilters: [chooser.kind + " (" + chooser.patterns.join(" ") + ")", "All files (*)"]
            onAccepted: chooser.chosen(selectedFile)
        }
    }
    Component {
        id: folderDialog
        FolderDialog {
            title: chooser.title
            onAccepted: chooser.chosen(selectedFolder)
        }
    }
    Loader {
        id: own
        active: theme.night || !app.desktopDialogs
        source: "FilePicker.qml"
        onLoaded: {
            item.title = chooser.title
            item.saving = chooser.saving
            item.choosesFolder = chooser.choosesFolder
            item.nameFilters = chooser.patterns
            item.suffix = chooser.suffix
            item.suggested = Qt.binding(() => chooser.suggested)
            if (chooser.emptyText !== "") item.emptyText = chooser.emptyText
            if (chooser.takeText !== "") item.takeText = chooser.takeText
        }
        Connections {
            target: own.item
            function onAccepted() { chooser.chosen(own.item.selectedFile) }
        }
    }
}
