import QtQuick
import QtQuick.Controls as Controls
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Qt.labs.folderlistmodel

// Asks for a file or a folder, in the colours of the theme.
Popup {
    id: picker
    property string title
    property bool saving: false
    property bool choosesFolder: false // the one whose content is shown
    property string emptyText: "No script in this folder."
    property string takeText: asking ? "Replace" : saving ? "Save" : "Open"
    property var nameFilters: []
    property string suffix
    property string suggested // a name to begin with
    property url currentFolder
    property var places: []
    property url selectedFile
    property url replacing // a file that is there already, which the user has been asked about
    signal accepted()

    readonly property url wanted: choosesFolder ? files.folder : script.fileIn(files.folder, nameField.text, saving ? suffix : "")
    readonly property bool asking: String(replacing) !== "" && String(replacing) === String(wanted)
    function choose(index) {
        if (files.isFolder(index)) {
            files.folder = files.get(index, "fileUrl")
            list.currentIndex = 0
        } else {
            nameField.text = files.get(index, "fileName")
            if (!saving) take()
        }
    }
    function up() {
        if (String(files.parentFolder) !== "")
            files.folder = files.parentFolder
    }
    function take() {
        if (String(wanted) === "")
            return
        if (saving && script.isThere(wanted) && !asking) {
            replacing = wanted
            return
        }
        selectedFile = wanted
        close()
        accepted()
    }

    parent: Controls.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(640, parent ? parent.width - 32 : 640)
    height: Math.min(520, parent ? parent.height - 32 : 520)
    modal: true
    closePolicy: Popup.CloseOnEscape // a stray click beside it would lose what was typed
    focus: true
    padding: 16
    enter: null
    exit: null
    background: Rectangle { color: theme.panel; border.color: theme.accent; border.width: 1; radius: 6 }
    Controls.Overlay.modal: Rectangle { color: Qt.rgba(theme.page.r, theme.page.g, theme.page.b, 0.6) }
    onAboutToShow: {
        places = app.places()
        files.folder = currentFolder
        list.currentIndex = 0
        nameField.text = saving ? suggested : ""
        replacing = ""
        if (saving) nameField.forceActiveFocus(); else list.forceActiveFocus()
    }

    FolderListModel {
        id: files
        nameFilters: picker.nameFilters
        showFiles: !picker.choosesFolder
        showDirsFirst: true
        showOnlyReadable: !picker.saving
        caseSensitive: false
    }

    contentItem: ColumnLayout {
        spacing: 8
        ZLabel { text: picker.title; font.pixelSize: theme.large; font.weight: Font.Bold; Layout.fillWidth: true }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZButton { text: "↑"; implicitWidth: 40; Accessible.name: "Folder above"; onClicked: picker.up() }
            ZLabel {
                Layout.fillWidth: true
                text: decodeURIComponent(String(files.folder).replace("file://", ""))
                elide: Text.ElideLeft
                wrapMode: Text.NoWrap
            }
        }
        Flow {
            Layout.fillWidth: true
            spacing: 8
            Repeater {
                model: picker.places
                delegate: ZButton {
                    required property var modelData
                    text: modelData.name
                    onClicked: { files.folder = modelData.folder; list.currentIndex = 0; list.forceActiveFocus() }
                }
            }
        }
        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            activeFocusOnTab: true
            boundsBehavior: Flickable.StopAtBounds
            model: files
            onCountChanged: if (currentIndex < 0) currentIndex = 0
            ScrollBar.vertical: ZScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: "Files"
            Keys.onReturnPressed: if (currentIndex >= 0) picker.choose(currentIndex)
            Keys.onEnterPressed: if (currentIndex >= 0) picker.choose(currentIndex)
            Keys.onPressed: (event) => {
                if (event.key === Qt.Key_Backspace) { picker.up(); event.accepted = true }
            }
            delegate: Rectangle {
                id: entry
                required property int index
                required property string fileName
                required property bool fileIsDir
                width: list.width
                height: Math.max(32, theme.normal + 16)
                color: ListView.isCurrentItem ? theme.page : "transparent"
                border.width: ListView.isCurrentItem && list.activeFocus ? 2 : 0
                border.color: theme.accent
                Accessible.role: Accessible.ListItem
                Accessible.name: (fileIsDir ? "Folder " : "") + fileName
                Text {
                    anchors { left: parent.left; right: parent.right; margins: 10; verticalCenter: parent.verticalCenter }
                    text: (entry.fileIsDir ? "▸ " : "   ") + entry.fileName
                    color: theme.text
                    font.pixelSize: theme.normal
                    font.bold: entry.fileIsDir
                    elide: Text.ElideMiddle
                }
                MouseArea {
                    anchors.fill: parent
                    onClicked: { list.currentIndex = entry.index; picker.choose(entry.index) }
                }
            }
            ZLabel {
                x: 10; y: 8
                visible: files.status === FolderListModel.Ready && files.count === 0
                text: picker.emptyText
                color: theme.quiet
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ZField {
                id: nameField
                visible: !picker.choosesFolder
                Layout.fillWidth: true
                placeholderText: "File name"
                Accessible.name: "File name"
                onAccepted: picker.take()
            }
            Item { visible: picker.choosesFolder; Layout.fillWidth: true }
            ZButton {
                text: picker.takeText
                strong: true
                enabled: String(picker.wanted) !== ""
                onClicked: picker.take()
            }
            ZButton { text: "Cancel"; onClicked: picker.close() }
        }
        ZLabel {
            Layout.fillWidth: true
            visible: picker.asking
            text: "There is a file of this name. Press Replace to write over it, or change the name."
            color: theme.warning
        }
    }
}
