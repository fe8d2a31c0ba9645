import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Sky, cameras and log in one place, for small windows.
ColumnLayout {
    id: pane
    objectName: "tabPane"
    property int current: 0
    spacing: 2
    RowLayout {
        spacing: 4
        Repeater {
            model: ["Sky", "Cameras", "Log"]
            delegate: ZButton {
                required property string modelData
                required property int index
                text: (pane.current === index ? "● " : "○ ") + modelData
                strong: pane.current === index
                onClicked: pane.current = index
                Accessible.role: Accessible.PageTab
            }
        }
    }
    PanelSlot {
        Layout.fillWidth: true
        Layout.fillHeight: true
        source: ["SkyPanel.qml", "CamerasPanel.qml", "LogPanel.qml"][pane.current]
    }
}
