import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QtQuick.Window

// A sign of the top bar that opens what there is to say of it.
ZButton {
    id: chip
    property string about
    property string tone // "good", "warning", "critical", or none
    property string tip: about
    property var lines: []
    property var rows: [] // of name and value
    property string offer
    signal acted()

    leftPadding: 8
    rightPadding: 8
    danger: tone === "critical"
    onClicked: more.opened ? more.close() : more.open()
    Accessible.name: about + ": " + text
    Accessible.description: tip
    contentItem: Text {
        text: chip.text
        font: chip.font
        color: chip.tone === "critical" ? theme.bad : chip.tone === "warning" ? theme.warning : theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    ZTip { visible: chip.hovered && !more.opened && chip.x > 0; text: chip.tip }

    Popup {
        id: more
        objectName: chip.objectName + "More"
        readonly property real wanted: Math.min(440 * theme.scale, chip.Window.width - 24)
        y: chip.height + 4
        width: wanted
        margins: 8
        padding: 12
        modal: true
        dim: false
        focus: true
        enter: null
        exit: null
        onClosed: chip.forceActiveFocus(Qt.PopupFocusReason)
        background: Rectangle { color: theme.panel; border.color: theme.accent; border.width: 2; radius: 4 }
        // Only while it is open: a layout that was never shown keeps the rows that have gone, and Qt trips over
        // them when the window's size changes.
        contentItem: Loader {
            active: more.visible
            focus: true
            sourceComponent: ColumnLayout {
                spacing: 8
                ZLabel { text: chip.about; font.weight: Font.Bold }
                Repeater {
                    model: chip.lines
                    delegate: ZLabel {
                        required property string modelData
                        Layout.fillWidth: true
                        visible: modelData !== ""
                        text: modelData
                    }
                }
                Repeater {
                    model: chip.rows
                    delegate: RowLayout {
                        required property var modelData
                        Layout.fillWidth: true
                        ZLabel { Layout.fillWidth: true; text: modelData.name; color: theme.quiet }
                        ZLabel { text: modelData.value; font.family: theme.digits }
                    }
                }
                RowLayout {
                    spacing: 8
                    ZButton {
                        objectName: chip.objectName + "Action"
                        visible: chip.offer !== ""
                        focus: visible
                        text: chip.offer
                        onClicked: chip.acted()
                    }
                    ZButton { focus: chip.offer === ""; text: "Close"; onClicked: more.close() }
                }
            }
        }
    }
}
