import QtQuick
import QtQuick.Layouts

// What stands by the run: clock, receiver, machine, keep-awake, cards. Each opens what there is to say of it.
RowLayout {
    id: chipsRow
    property real room: 1380
    readonly property bool wide: room > 1200
    spacing: 6

    Chip {
        objectName: "clockChip"
        text: chipsRow.wide ? time.clockText : time.clockBrief
        tone: time.clockIsOff ? "critical" : ""
        about: "Computer clock"
        lines: [time.clockWords, time.serviceWords, time.checkWords]
        offer: time.checking ? "" : "Check again"
        onActed: time.checkAgain()
        onClicked: time.checkAgain() // besides opening
    }
    Chip {
        objectName: "gpsChip"
        visible: time.gpsConnected
        text: (time.gpsLocked ? "◉" : "◌") + (chipsRow.wide ? " " + time.gpsText : "")
        tip: time.gpsTip
        about: "Satellite receiver"
        lines: time.gpsLines
        offer: time.hasPosition ? "Use this position" : ""
        onActed: time.usePosition()
    }
    Chip {
        objectName: "healthChip"
        text: chipsRow.wide ? health.text : health.brief
        tone: health.severity
        about: "This computer"
        rows: health.rows
    }
    Repeater {
        model: chips.rows
        delegate: Text {
            required property var modelData
            text: modelData.symbol + (chipsRow.wide ? " " + modelData.text : "")
            color: theme.text
            font.pixelSize: theme.normal
            font.weight: theme.weight
            Accessible.role: Accessible.StaticText
            Accessible.name: modelData.words
            ZTip { visible: over.hovered; text: modelData.words }
            // Not before the chip has its place: it is made in the window's corner.
            HoverHandler { id: over; enabled: over.parent.x > 0 }
        }
    }
    ZButton {
        id: cardChip
        objectName: "cardChip"
        visible: chips.cards !== ""
        Layout.maximumWidth: 190 * theme.scale // a longer name stands in the tip
        text: "▤ " + (chipsRow.wide ? chips.cards : chips.cardsBrief)
        onClicked: commands.trigger("analyzer")
        Accessible.name: chips.cards
        Accessible.description: chips.cardsWords
        ZTip { visible: cardChip.hovered && cardChip.x > 0; text: chips.cardsWords }
    }
}
