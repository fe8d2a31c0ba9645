import QtQuick
import QtQuick.Layouts

// One burst: how far the Sun goes meanwhile. The picked one is in the picture.
ZButton {
    id: row
    required property int index
    required property string title
    required property string facts
    required property string drift
    required property string trail
    required property string warning
    required property int warnLevel
    required property bool picked
    objectName: "burst" + index
    implicitHeight: words.implicitHeight + 12
    onClicked: framing.pickBurst(index)
    text: title + ", " + facts + ", " + drift + ", " + trail + (warning === "" ? "" : ". " + warning)
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.checked: picked
    contentItem: ColumnLayout {
        id: words
        spacing: 0
        ZLabel {
            Layout.fillWidth: true
            text: (row.picked ? "● " : "○ ") + row.title + " · " + row.facts
            font.weight: row.picked ? Font.Bold : theme.weight
            color: row.picked ? theme.accent : theme.text
        }
        ZLabel { Layout.fillWidth: true; text: row.drift; font.pixelSize: theme.small }
        ZLabel { Layout.fillWidth: true; visible: text !== ""; text: row.trail; font.pixelSize: theme.small }
        ZLabel {
            Layout.fillWidth: true
            visible: text !== ""
            text: row.warning
            color: row.warnLevel === 2 ? theme.bad : theme.warning
            font.weight: Font.Bold
            font.pixelSize: theme.small
        }
    }
}
