import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "Welcome to Zenka"
    ColumnLayout {
        width: parent.width
        spacing: 10
        ZLabel {
            Layout.fillWidth: true
            text: "Zenka photographs a solar eclipse from one laptop. Four steps take you to a rehearsal:"
        }
        Repeater {
            model: ["1  Choose an eclipse in the bar at the top.",
                    "2  Set your site: by place name, on the map or by coordinates.",
                    "3  Write a script, or load an example.",
                    "4  Add a simulated body for each camera and press Play."]
            delegate: ZLabel { required property string modelData; text: modelData; Layout.fillWidth: true }
        }
        RowLayout {
            spacing: 8
            ZButton { text: "Start"; strong: true; focus: true; onClicked: app.closeSheet() }
        }
    }
}
