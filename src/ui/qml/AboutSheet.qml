import QtQuick
import QtQuick.Layouts

SheetFrame {
    title: "About Zenka"
    sheetWidth: 560
    ColumnLayout {
        width: parent.width
        spacing: 8
        ZLabel { text: "Zenka " + app.version; font.bold: true; Layout.fillWidth: true }
        ZLabel {
            Layout.fillWidth: true
            text: "Photographs a solar eclipse from one laptop. Free software under the GNU General Public License, version 3 or later."
        }
        ZLabel {
            Layout.fillWidth: true
            color: theme.quiet
            text: "Eclipse predictions by Fred Espenak and Jean Meeus, NASA's GSFC."
        }
    }
}
