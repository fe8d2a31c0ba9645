import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The menus, from the one list of commands.
ZButton {
    id: opener
    text: "☰ Menu"
    Accessible.name: "Menu"
    onClicked: menu.open()
    Connections {
        target: app
        function onMenuWanted() { if (opener.enabled) { opener.forceActiveFocus(Qt.ShortcutFocusReason); menu.open() } }
        function onSheetChanged() { menu.dismiss() } // a key may open a sheet below it
    }

    Menu {
        id: menu
        y: opener.height
        background: Rectangle { implicitWidth: 280; color: theme.panel; border.color: theme.line }
        Instantiator {
            model: commands.menus
            delegate: Menu {
                id: sub
                required property string modelData
                title: modelData
                background: Rectangle { implicitWidth: 320; color: theme.panel; border.color: theme.line }
                delegate: MenuLine {}
                property int shown: 0 // what is enabled is asked for anew each time
                onAboutToShow: shown += 1
                Instantiator {
                    model: commands.inMenu(sub.modelData)
                    delegate: MenuLine {
                        required property var modelData
                        text: modelData.text + (enabled ? "" : modelData.whyOff)
                        hint: modelData.shortcut
                        enabled: sub.shown >= 0 && commands.isEnabled(modelData.id)
                        onTriggered: commands.trigger(modelData.id)
                    }
                    onObjectAdded: (index, object) => sub.insertItem(index, object)
                    onObjectRemoved: (index, object) => sub.removeItem(object)
                }
            }
            onObjectAdded: (index, object) => menu.insertMenu(index, object)
            onObjectRemoved: (index, object) => menu.removeMenu(object)
        }
        delegate: MenuLine {}
    }
}
