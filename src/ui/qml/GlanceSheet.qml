import QtQuick
import QtQuick.Layouts
import Zenka 1.0

// A page for phones nearby: who may see it, and where it is.
SheetFrame {
    id: sheet
    title: "Remote glance"
    sheetWidth: 900 * theme.scale
    wantedHeight: form.contentHeight
    readonly property string keysHere: "Tab: to the choices and the address. Space: choose. Escape: back; the page stays as it is set."

    FormFlick {
        id: form
        anchors.fill: parent
        RowLayout {
            width: form.fieldsWidth
            spacing: 16
            ColumnLayout {
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
                spacing: 8
                Flow {
                    Layout.fillWidth: true
                    spacing: 8
                    Repeater {
                        model: ["Off", "This computer", "Local network"]
                        delegate: ZButton {
                            required property string modelData
                            required property int index
                            objectName: "glanceReach" + index
                            Component.onCompleted: if (glance.reach === index) Qt.callLater(forceActiveFocus)
                            text: (glance.reach === index ? "● " : "○ ") + modelData
                            strong: glance.reach === index
                            Accessible.name: modelData + (glance.reach === index ? ", chosen" : "")
                            onClicked: glance.reach = index
                        }
                    }
                }
                ZLabel {
                    objectName: "glanceWords"
                    Layout.fillWidth: true
                    text: glance.words
                }
                ZLabel {
                    objectName: "glanceFault"
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: glance.fault === "" ? "" : "▲ " + glance.fault
                    color: theme.warning
                    Accessible.role: Accessible.AlertMessage
                }
                Repeater {
                    model: glance.addresses
                    delegate: RowLayout {
                        required property string modelData
                        required property int index
                        Layout.fillWidth: true
                        spacing: 8
                        ZField {
                            objectName: "glanceAddress" + index
                            Layout.fillWidth: true
                            readOnly: true
                            text: modelData
                            font.family: theme.digits
                            Accessible.name: "Address of the page"
                        }
                        ZButton {
                            text: "Copy"
                            Accessible.name: "Copy the address"
                            onClicked: app.copy(modelData)
                        }
                    }
                }
                ZButton {
                    objectName: "glanceRenew"
                    visible: glance.reach > 0
                    text: "New address"
                    Accessible.name: "New address; the one of before shows nothing more"
                    onClicked: glance.renewAddress()
                }
            }
            QrItem {
                objectName: "glanceQr"
                visible: glance.reach === 2 && glance.addresses.length > 0
                Layout.alignment: Qt.AlignTop
                Layout.preferredWidth: Math.min(280, sheet.height * 0.5)
                Layout.preferredHeight: Layout.preferredWidth
                colors: theme
                text: glance.addresses.length > 0 ? glance.addresses[0] : ""
                Accessible.role: Accessible.Graphic
                Accessible.name: "The address as a code for a phone's camera"
            }
        }
    }
}
