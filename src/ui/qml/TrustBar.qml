import QtQuick
import QtQuick.Layouts

// How far the program is trusted: one line that can be answered or put off, never in a run.
Rectangle {
    id: bar
    objectName: "trustBar"
    color: theme.panel
    border.color: theme.line
    border.width: 1
    implicitHeight: row.implicitHeight + 12
    RowLayout {
        id: row
        anchors.fill: parent
        anchors.margins: 6
        spacing: 8
        ZLabel {
            Layout.fillWidth: true
            text: "How far do you trust Zenka " + app.version + " with an eclipse? 1: not at all, 5: fully. Your answer goes to " + service.host + "."
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        Repeater {
            model: 5
            delegate: ZButton {
                required property int index
                objectName: "trust" + (index + 1)
                text: index + 1
                onClicked: service.rate(index + 1)
                Accessible.name: "Trust " + (index + 1) + " of 5"
            }
        }
        ZButton { objectName: "trustLater"; text: "Not now"; onClicked: service.dismissTrust(); Accessible.name: "Not now: the question of trust" }
    }
}
