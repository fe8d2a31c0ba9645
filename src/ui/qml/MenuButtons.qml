import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The menus, from the one list of commands.
ZButton {
    id: opener
    text: "☰ Menu"
    Accessible.name: "Menu"
    onClicked: menu.open()

    Menu {
        id: menu
        y: opener.height
        Repeater {
            model: commands.menus
            delegate: Item {}
        }
        background: Rectangle { implicitWidth: 280; color: theme.panel; border.color: theme.line }
        Instantiator {
            model: commands.menus
            delegate: Menu {
                id: sub
                required property string modelData
                title: modelData
                background: Rectangle { implicitWidth: 320; color: theme.panel; border.color: theme.line }
                delegate: MenuLine {}
                property var rows: commands.inMenu(modelData)
                onAboutToShow: rows = commands.inMenu(modelData)
                Instantiator {
                    model: sub.rows
                    delegate: MenuLine {
                        required property var modelData
                        text: modelData.text
                        hint: modelData.shortcut
                        enabled: modelData.enabled
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
