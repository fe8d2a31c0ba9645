import QtQuick
import QtQuick.Layouts

// The Simulation Analyzer asks which one: a button each. Arrows go from one to the next.
ColumnLayout {
    id: list
    spacing: 4

    // Gives the keyboard to the recommended one, or to the first.
    function begin() { go(Math.max(0, analyzer.recommended)) }
    function go(row) {
        if (row >= 0 && row < rows.count)
            rows.itemAt(row).forceActiveFocus(Qt.TabFocusReason)
    }

    Repeater {
        id: rows
        model: analyzer.choices
        delegate: ZButton {
            required property string modelData
            required property int index
            objectName: "choice" + index
            Layout.fillWidth: true
            text: modelData
            strong: index === analyzer.recommended
            onClicked: analyzer.choose(index)
            Keys.onPressed: (event) => {
                const to = {[Qt.Key_Down]: index + 1, [Qt.Key_Up]: index - 1,
                            [Qt.Key_Home]: 0, [Qt.Key_End]: rows.count - 1}[event.key]
                event.accepted = to !== undefined
                if (event.accepted)
                    list.go(to)
            }
        }
    }
}
