import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One card a body, and one for each camera of the script that has none.
Rectangle {
    id: panel
    color: theme.panel

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 6
        spacing: 6

        RowLayout {
            Layout.fillWidth: true
            ZLabel { text: cameras.summary; font.weight: Font.Bold; Accessible.role: Accessible.Heading; wrapMode: Text.NoWrap; elide: Text.ElideRight; Layout.fillWidth: true }
            ZButton {
                objectName: "detect"
                text: cameras.detecting ? "Cancel" : "Detect"
                Accessible.name: cameras.detecting ? "Cancel the detection" : "Detect cameras"
                onClicked: cameras.detecting ? cameras.cancelDetect() : commands.trigger("detectCams")
            }
            ZButton {
                id: addButton
                text: "+ add"
                Accessible.name: "Add a simulated body"
                onClicked: addMenu.popup(addButton, 0, addButton.height)
                Connections {
                    target: app
                    function onSheetChanged() { addMenu.dismiss() }
                }
                Menu {
                    id: addMenu
                    width: 280
                    background: Rectangle { color: theme.panel; border.color: theme.line }
                    delegate: MenuLine {}
                    MenuLine {
                        enabled: false
                        text: cameras.nextToken !== "" ? "Simulated body for " + cameras.nextToken : "Simulated body"
                    }
                    Instantiator {
                        model: cameras.catalogue
                        delegate: Menu {
                            id: brandMenu
                            required property var modelData
                            title: modelData.brand
                            width: 220
                            background: Rectangle { color: theme.panel; border.color: theme.line }
                            Repeater {
                                model: brandMenu.modelData.models
                                delegate: MenuLine {
                                    required property string modelData
                                    text: modelData
                                    onTriggered: cameras.add(modelData)
                                }
                            }
                        }
                        onObjectAdded: (index, object) => addMenu.addMenu(object)
                        onObjectRemoved: (index, object) => addMenu.removeMenu(object)
                    }
                }
            }
        }

        ZLabel {
            Layout.fillWidth: true
            visible: cameras.detecting
            text: cameras.detectStep + "…"
            color: theme.accent
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }

        RowLayout {
            Layout.fillWidth: true
            visible: gapProfiler.running
            ZLabel {
                Layout.fillWidth: true
                text: "Measuring " + gapProfiler.bodyName + "…"
                color: theme.accent
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            ZButton {
                objectName: "showProfile"
                text: "Show"
                Accessible.name: "Show how the measuring of " + gapProfiler.bodyName + " goes"
                onClicked: app.openSheet("GapProfiler")
            }
        }

        RowLayout {
            Layout.fillWidth: true
            visible: cameras.undoText !== ""
            ZLabel { text: cameras.undoText; Layout.fillWidth: true; Accessible.role: Accessible.AlertMessage; Accessible.name: text }
            ZButton {
                id: undoButton
                text: "Undo"
                Accessible.name: "Undo: " + cameras.undoText
                onClicked: {
                    cameras.undoRemove()
                    addButton.forceActiveFocus()
                }
            }
            // The button that had the keyboard went with its card.
            Connections {
                target: cameras
                function onRemoved() { (undoButton.visible ? undoButton : addButton).forceActiveFocus() }
            }
        }

        ListView {
            id: list
            objectName: "cameraList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 6
            boundsBehavior: Flickable.StopAtBounds
            cacheBuffer: 2000 // a card that scrolls out keeps the label that is being typed in it
            model: cameras
            ScrollBar.vertical: ZScrollBar {}
            Accessible.role: Accessible.List
            Accessible.name: "Cameras"
            delegate: CameraCard { width: list.width - 12 }
            // A plain item: a layout as the footer of a list never comes to rest.
            footer: Item {
                width: list.width - 12
                height: empty.visible ? empty.height + 8 : 0
                ZLabel {
                    id: empty
                    y: 8
                    width: parent.width
                    visible: text !== ""
                    text: cameras.emptyText
                    color: theme.quiet
                }
            }
        }
        ZButton {
            id: offerButton
            objectName: "addForScript"
            Layout.fillWidth: true
            implicitHeight: Math.max(32, offerText.implicitHeight + 12)
            visible: cameras.offer !== ""
            text: cameras.offer
            strong: true
            onClicked: cameras.addForScript()
            contentItem: Text {
                id: offerText
                text: cameras.offer
                color: theme.accent
                font: offerButton.font
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
        }
        ZButton {
            objectName: "openLibrary"
            Layout.fillWidth: true
            visible: panel.height >= 340 // the cards come first
            text: "My cameras…"
            onClicked: app.openSheet("Library")
        }
    }
}
