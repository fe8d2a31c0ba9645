import QtQuick

// The rungs of a profile, each with its frames, how fast they were answered and how far apart they came. Plain
// rows: a layout that changes its size while it cannot be seen does not always make up for it.
Column {
    id: ladder
    spacing: 1
    readonly property real tight: theme.normal * 4.4
    readonly property real wide: theme.normal * 6.4

    Row {
        spacing: 10
        component Head: ZLabel { color: theme.quiet; font.pixelSize: theme.small; wrapMode: Text.NoWrap; horizontalAlignment: Text.AlignRight }
        Head { width: ladder.tight; text: "asked" }
        Head { width: theme.normal * 1.15 * 6; text: "frames"; horizontalAlignment: Text.AlignLeft }
        Head { width: ladder.wide; text: "answered in" }
        Head { width: ladder.wide; text: "came every" }
    }
    Repeater {
        model: gapProfiler.ladder
        delegate: Row {
            id: rung
            required property string interval
            required property string marks
            required property string word
            required property string rungState
            required property string latency
            required property string achieved
            required property string words
            readonly property bool toCome: rungState === "next"
            objectName: "rung"
            width: ladder.width
            spacing: 10
            Accessible.role: Accessible.ListItem
            Accessible.name: words
            ZLabel {
                width: ladder.tight
                anchors.verticalCenter: parent.verticalCenter
                text: rung.interval
                color: rung.toCome ? theme.quiet : theme.text
                font.family: theme.digits
                font.weight: rung.toCome ? theme.weight : Font.Bold
                wrapMode: Text.NoWrap
                horizontalAlignment: Text.AlignRight
            }
            Row {
                Repeater {
                    model: rung.marks.length
                    delegate: FrameMark {
                        required property int index
                        sign: rung.marks.charAt(index)
                    }
                }
            }
            ZLabel {
                width: ladder.wide
                anchors.verticalCenter: parent.verticalCenter
                text: rung.latency
                font.family: theme.digits
                wrapMode: Text.NoWrap
                horizontalAlignment: Text.AlignRight
            }
            ZLabel {
                width: ladder.wide
                anchors.verticalCenter: parent.verticalCenter
                text: rung.achieved
                font.family: theme.digits
                wrapMode: Text.NoWrap
                horizontalAlignment: Text.AlignRight
            }
            ZLabel {
                width: Math.max(0, rung.width - x)
                anchors.verticalCenter: parent.verticalCenter
                text: rung.word
                color: rung.rungState === "good" ? theme.good : rung.rungState === "bad" ? theme.bad : rung.rungState === "slow" ? theme.warning : theme.accent
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
            }
        }
    }
}
