import QtQuick

// Words from scripts, bodies and servers pass through here: nothing in them is markup.
Text {
    textFormat: Text.PlainText
    color: theme.text
    font.pixelSize: theme.normal
    font.weight: theme.weight
    wrapMode: Text.Wrap
}
