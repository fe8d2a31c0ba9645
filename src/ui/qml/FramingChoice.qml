import QtQuick
import QtQuick.Layouts

// A list of a framing under its name.
ColumnLayout {
    id: root
    property string name
    property string objectId
    property var values: []
    property int now: 0
    signal taken(int index)
    Layout.fillWidth: true
    Layout.preferredWidth: 100
    Layout.alignment: Qt.AlignTop
    spacing: 2

    ZLabel { text: root.name; color: theme.quiet; wrapMode: Text.NoWrap; elide: Text.ElideRight; Layout.fillWidth: true }
    PickList {
        objectName: root.objectId
        Layout.fillWidth: true
        model: root.values
        currentIndex: root.now
        onActivated: (index) => root.taken(index)
        Accessible.name: root.name
    }
}
