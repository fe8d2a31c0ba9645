import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A sheet over the dashboard: one column, closed with Escape. The countdown stays to be seen while a run is on.
FocusScope {
    id: frame
    property string title
    property int sheetWidth: 720
    property bool grow: false // takes all the room there is
    // What the content would take; a content that fills its parent tells it here.
    property real wantedHeight: body.childrenRect.height
    default property alias content: body.data

    // Reads on in a text or list that has the keyboard.
    function scrollByKey(flickable, event) {
        if (event.key === Qt.Key_F1) { // a text that is only read keeps it from the menu's shortcut
            commands.trigger("showKeys")
            event.accepted = true
            return
        }
        const steps = {[Qt.Key_Down]: 48, [Qt.Key_Up]: -48,
                       [Qt.Key_PageDown]: flickable.height * 0.9, [Qt.Key_PageUp]: -flickable.height * 0.9,
                       [Qt.Key_Home]: -flickable.contentHeight, [Qt.Key_End]: flickable.contentHeight}
        const step = steps[event.key]
        event.accepted = step !== undefined
        if (!event.accepted)
            return
        scrollTo(flickable, flickable.contentY + step)
    }
    function scrollTo(flickable, y) {
        const first = flickable.originY
        const last = Math.max(first, first + flickable.contentHeight - flickable.height)
        flickable.contentY = Math.max(first, Math.min(last, y))
    }

    anchors.fill: parent
    focus: true
    Keys.onEscapePressed: app.closeSheet()
    Accessible.role: Accessible.Dialog
    Accessible.name: title

    Rectangle {
        anchors.fill: parent
        color: theme.page
        opacity: 0.8
        MouseArea { anchors.fill: parent; hoverEnabled: true; onWheel: (wheel) => wheel.accepted = true }
    }
    Rectangle {
        id: box
        width: frame.grow ? parent.width - 24 : Math.min(parent.width - 24, frame.sheetWidth)
        height: frame.grow ? parent.height - 24 : Math.min(parent.height - 24, column.implicitHeight + 32)
        anchors.centerIn: parent
        color: theme.panel
        border.color: theme.line
        border.width: 1
        radius: 6
        ColumnLayout {
            id: column
            anchors.fill: parent
            anchors.margins: 16
            spacing: 12
            RowLayout {
                Layout.fillWidth: true
                Label {
                    objectName: "sheetTitle"
                    text: frame.title
                    color: theme.text
                    font.pixelSize: theme.large
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                    Accessible.role: Accessible.Heading
                }
                Label {
                    visible: clock.runActive
                    text: clock.countdownTitle + " " + clock.countdown
                    color: theme.accent
                    font.family: theme.digits
                    font.pixelSize: theme.large
                    font.bold: true
                }
                ZButton { text: "Close"; onClicked: app.closeSheet(); Accessible.name: "Close " + frame.title }
            }
            Item {
                id: body
                Layout.fillWidth: true
                Layout.fillHeight: true
                implicitHeight: frame.grow ? 0 : frame.wantedHeight
            }
        }
    }
}
