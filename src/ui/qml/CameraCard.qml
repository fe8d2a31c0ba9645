import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A body at a glance. A missing one has an open border, one that the script does not use a dashed one.
FocusScope {
    id: card
    required property int index
    required property string cameraId
    required property bool missing
    required property string label
    required property string bodyModel
    required property string details
    required property string symbol
    required property string bodyState
    required property string lastFrame
    required property string counts
    required property string dropped
    required property string warning
    required property bool used
    required property bool runActive
    required property bool bodyReal
    required property string lens
    required property string lensFault
    property bool asking: false // whether to take the body away
    property bool askingLens: false
    implicitHeight: column.implicitHeight + 16
    // What has the keyboard is to be seen.
    onActiveFocusChanged: if (activeFocus) ListView.view.positionViewAtIndex(index, ListView.Contain)
    Accessible.role: Accessible.ListItem
    Accessible.name: label + " " + bodyModel + ", " + details + ", " + counts + " " + dropped

    Rectangle {
        anchors.fill: parent
        visible: card.missing || card.used
        color: card.missing ? "transparent" : theme.page
        border.width: card.missing ? 2 : 1
        border.color: card.missing ? theme.quiet : theme.line
        radius: 4
    }
    DashedFrame { anchors.fill: parent; visible: !card.missing && !card.used; color: theme.quiet }

    Column {
        id: column
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 8 }
        spacing: 3

        RowLayout {
            width: parent.width
            spacing: 6
            Text {
                text: card.symbol
                color: card.bodyState === "ready" ? theme.good : card.missing ? theme.quiet : theme.warning
                font.pixelSize: theme.normal
                font.bold: true
            }
            ZLabel {
                visible: card.missing
                text: card.label
                font.weight: Font.Bold
                elide: Text.ElideRight
                wrapMode: Text.NoWrap
                Layout.fillWidth: true
            }
            ZField {
                id: labelField
                objectName: "labelField"
                visible: !card.missing
                Layout.fillWidth: true
                Layout.minimumWidth: 60
                text: card.label
                font.bold: true
                leftPadding: 4
                Accessible.name: "Label of " + card.bodyModel
                onTextChanged: if (!activeFocus) cursorPosition = 0
                Component.onCompleted: cursorPosition = 0
                background: Rectangle {
                    color: labelField.activeFocus ? theme.panel : "transparent"
                    border.width: labelField.activeFocus ? 2 : labelField.hovered ? 1 : 0
                    border.color: labelField.activeFocus ? theme.accent : theme.line
                    radius: 4
                }
                readonly property bool typed: text !== card.label
                readonly property string fault: typed ? cameras.labelFault(card.cameraId, text) : ""
                function take() {
                    if (typed && fault === "")
                        cameras.setLabel(card.cameraId, text)
                }
                onAccepted: take()
                onActiveFocusChanged: {
                    app.setTyping(activeFocus)
                    if (activeFocus) selectAll()
                    else if (fault === "") take()
                    else text = card.label
                }
                Keys.onEscapePressed: (event) => {
                    event.accepted = typed
                    text = card.label
                }
                Connections {
                    target: card
                    function onLabelChanged() { if (!labelField.activeFocus) labelField.text = card.label }
                }
            }
            ZLabel {
                text: card.bodyModel === card.label ? "" : card.bodyModel
                color: theme.quiet
                elide: Text.ElideRight
                wrapMode: Text.NoWrap
                horizontalAlignment: Text.AlignRight
                Layout.maximumWidth: card.width * 0.36
            }
            ZButton {
                visible: !card.missing
                text: "✕"
                implicitWidth: 32
                leftPadding: 0
                rightPadding: 0
                Accessible.name: "Remove " + card.label
                onClicked: if (card.runActive) card.asking = true; else cameras.remove(card.cameraId)
            }
        }
        ZLabel {
            width: parent.width
            visible: labelField.fault !== "" && labelField.activeFocus
            text: labelField.fault
            color: theme.warning
        }
        Flow {
            width: parent.width
            visible: card.asking
            spacing: 6
            ZLabel { text: "A run is on. Its frames for " + card.label + " will not be taken."; width: parent.width }
            ZButton { text: "Remove"; danger: true; onClicked: cameras.remove(card.cameraId) }
            ZButton { text: "Keep"; onClicked: card.asking = false }
        }
        ZLabel { width: parent.width; text: card.details; color: theme.quiet; font.pixelSize: theme.small }
        RowLayout {
            width: parent.width
            spacing: 6
            visible: !card.missing || card.counts !== ""
            ZLabel { Layout.fillWidth: true; text: card.counts; font.family: theme.digits; wrapMode: Text.NoWrap }
            ZButton {
                id: lensButton
                objectName: "lensButton"
                visible: !card.missing && card.bodyReal
                text: "Lens"
                Accessible.name: card.lens === "" ? "Note the lens of " + card.label : "Lens of " + card.label + ": " + card.lens
                onClicked: {
                    card.askingLens = !card.askingLens
                    if (card.askingLens && card.lensFault === "")
                        lensField.forceActiveFocus(Qt.TabFocusReason)
                }
            }
            ZButton {
                objectName: "framingButton"
                visible: !card.missing
                text: "Frame"
                Accessible.name: "Framing of " + card.label
                onClicked: {
                    framing.choose(card.cameraId)
                    app.openSheet("Framing")
                }
            }
            ZButton {
                objectName: "testButton"
                visible: !card.missing
                text: "Test"
                Accessible.name: "Test shot of " + card.label
                onClicked: {
                    testShot.choose(card.cameraId)
                    app.openSheet("TestShot")
                }
            }
        }
        // A line of its own: beside the buttons of a narrow card there is no room for it.
        ZLabel {
            width: parent.width
            visible: text !== ""
            text: card.dropped
            font.weight: Font.Bold
            color: theme.warning
        }
        LensField {
            id: lensField
            objectName: "cardLens"
            width: parent.width
            visible: card.askingLens && card.lensFault === ""
            lens: card.lens
            owner: card.label
            passing: true
            onDecided: (text) => cameras.setLens(card.cameraId, text)
            onEnded: {
                const here = activeFocus // else the keyboard has gone elsewhere already
                card.askingLens = false
                if (here)
                    lensButton.forceActiveFocus(Qt.TabFocusReason)
            }
        }
        ZLabel {
            width: parent.width
            visible: card.askingLens && card.lensFault !== ""
            text: card.lensFault
            font.pixelSize: theme.small
        }
        ZLabel {
            width: parent.width
            visible: !card.missing
            text: card.lastFrame
            font.family: theme.digits
            font.pixelSize: theme.small
            maximumLineCount: 2
            elide: Text.ElideRight
        }
        ZLabel {
            width: parent.width
            visible: text !== ""
            text: card.warning !== "" ? "⚠ " + card.warning : ""
            color: theme.warning
            font.pixelSize: theme.small
        }
    }
}
