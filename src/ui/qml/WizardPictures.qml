import QtQuick
import QtQuick.Layouts
import Zenka

// When the wizard's frames are taken: over the whole eclipse, and around totality where there is one.
GridLayout {
    id: root
    property bool thin: false
    readonly property bool total: wizard.hasGauges
    columns: thin ? 2 : 1
    columnSpacing: 12
    rowSpacing: 8
    // No more than a third of the room: many cameras get thin lanes.
    property real room: 1000
    readonly property real each: thin || !total ? room : room / 2

    WizardTimeline {
        objectName: "wizardWhole"
        Layout.fillWidth: true
        Layout.preferredWidth: 100
        Layout.preferredHeight: Math.min(wantedHeight, root.each)
        view: wizard
        colors: theme
        thin: root.thin
        Accessible.role: Accessible.Graphic
        Accessible.name: "Frames over the whole eclipse: " + wizard.summary
    }
    WizardTimeline {
        Layout.fillWidth: true
        Layout.preferredWidth: 100
        Layout.preferredHeight: Math.min(wantedHeight, root.each)
        visible: root.total
        closeUp: true
        view: wizard
        colors: theme
        thin: root.thin
        Accessible.role: Accessible.Graphic
        Accessible.name: "Frames around totality"
    }
}
