import QtQuick

// The words that are being spoken, or would be.
Rectangle {
    objectName: "caption"
    visible: voice.saying !== ""
    color: theme.panel
    border.color: theme.accent
    border.width: 2
    readonly property bool brief: app.sheet !== "" // then the sheet's buttons stand just above
    implicitHeight: words.implicitHeight + (brief ? 6 : 16)
    Text {
        id: words
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter; margins: 12 }
        text: "♪ " + voice.saying
        textFormat: Text.PlainText
        color: theme.text
        font.pixelSize: parent.brief ? theme.normal : theme.large * 1.4
        font.bold: true
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        maximumLineCount: parent.brief ? 1 : 2
        elide: Text.ElideRight
        Accessible.role: Accessible.AlertMessage
        Accessible.name: voice.saying
    }
}
