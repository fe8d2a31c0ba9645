import QtQuick
import QtQuick.Controls.Basic

// One value of the wizard's form: a box to tick, a word of a list, or a text that is typed.
Row {
    id: root
    property QtObject cell
    // Opens the list of values below an item.
    signal listWanted(Item below)
    spacing: 6
    visible: cell.shown

    function step(event) {
        const shift = event.modifiers & Qt.ShiftModifier ? 3 : 1
        const up = event.key === Qt.Key_Up
        if (event.key !== Qt.Key_Up && event.key !== Qt.Key_Down || event.modifiers & Qt.ControlModifier)
            return
        event.accepted = true
        if (event.modifiers & Qt.AltModifier)
            root.listWanted(loader.item)
        else // lists run downwards, numbers up
            wizard.nudge(cell.key, (up !== cell.hasOptions ? 1 : -1) * shift)
    }

    ZLabel {
        visible: text !== ""
        text: root.cell.before
        color: theme.quiet
        wrapMode: Text.NoWrap
        anchors.verticalCenter: parent.verticalCenter
    }
    Loader {
        id: loader
        sourceComponent: root.cell.kind === "check" ? check : root.cell.kind === "choice" ? choice : field
    }
    ZLabel {
        visible: text !== ""
        text: root.cell.unit
        color: theme.quiet
        wrapMode: Text.NoWrap
        anchors.verticalCenter: parent.verticalCenter
    }

    Component {
        id: check
        ZCheck {
            objectName: root.cell.key
            text: root.cell.label
            checked: root.cell.ticked
            onToggled: { wizard.tick(root.cell.key, checked); checked = Qt.binding(() => root.cell.ticked) }
        }
    }
    Component {
        id: choice
        ZButton {
            objectName: root.cell.key
            text: root.cell.text + " ▾"
            onClicked: root.listWanted(this)
            Keys.onPressed: (event) => root.step(event)
            Accessible.name: root.cell.label + ": " + root.cell.text
        }
    }
    Component {
        id: field
        ZField {
            objectName: root.cell.key
            implicitWidth: theme.normal * (root.cell.hasOptions ? 6.9 : 4.6)
            rightPadding: root.cell.hasOptions ? 22 : padding
            text: root.cell.text
            placeholderText: root.cell.placeholder
            font.family: theme.digits
            onTextEdited: wizard.type(root.cell.key, text)
            onEditingFinished: wizard.settle(root.cell.key)
            onActiveFocusChanged: { app.setTyping(activeFocus); if (activeFocus) selectAll() }
            Keys.onPressed: (event) => root.step(event)
            Keys.onReturnPressed: (event) => {
                if (event.modifiers & Qt.ControlModifier) { event.accepted = false; return }
                nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
            }
            Accessible.name: root.cell.label + (root.cell.unit ? ", " + root.cell.unit : "")
            Accessible.description: root.cell.fault !== "" ? root.cell.fault : root.cell.note
            Text {
                anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
                visible: root.cell.hasOptions
                text: "▾"
                color: theme.quiet
                font.pixelSize: theme.normal
                MouseArea {
                    anchors.fill: parent
                    anchors.margins: -8
                    cursorShape: Qt.ArrowCursor
                    onClicked: root.listWanted(loader.item)
                }
            }
        }
    }
}
