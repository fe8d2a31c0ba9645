import QtQuick

Text {
    color: theme.text
    font.pixelSize: theme.normal
    font.weight: theme.weight
    wrapMode: Text.Wrap
}
