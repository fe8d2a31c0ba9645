import QtQuick

// One frame: ● came, ▲ dropped, ? no answer, · to come. Its shape tells, the colour helps.
Text {
    id: mark
    property string sign
    width: theme.normal * 1.15
    horizontalAlignment: Text.AlignHCenter
    text: sign
    color: sign === "●" ? theme.good : sign === "·" ? theme.quiet : theme.bad
    font.family: theme.digits
    font.pixelSize: sign === "▲" || sign === "?" ? theme.normal * 1.15 : theme.normal
    font.weight: sign === "·" ? Font.Normal : Font.Bold
    verticalAlignment: Text.AlignVCenter
    height: theme.normal * 1.4
}
