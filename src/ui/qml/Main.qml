import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

ApplicationWindow {
    id: window
    color: theme.page
    onClosing: (close) => close.accepted = app.mayClose()
    // For what the toolkit draws by itself, such as its file dialog.
    palette {
        window: theme.panel
        windowText: theme.text
        base: theme.page
        alternateBase: theme.panel
        text: theme.text
        button: theme.panel
        buttonText: theme.text
        highlight: theme.accent
        highlightedText: theme.page
        mid: theme.line
        dark: theme.line
        light: theme.panel
        placeholderText: theme.quiet
    }
    // Between the drawn size and the smallest one, panels give way by their weight: what matters in the last
    // minutes stays, sky, cameras and log become tabs.
    property bool small: height < 640 || width < 1120

    // A solid bar over the whole top edge tells a live run from a simulation at a glance.
    header: Column {
        Rectangle {
            width: window.width
            height: clock.live ? 10 : 4
            color: clock.live ? theme.bad : theme.quiet
        }
        // A sheet has the keyboard to itself: Escape must close it wherever Tab has led.
        TopBar { width: window.width; enabled: app.sheet === "" }
    }

    FocusScope {
        id: dashboard
        anchors.fill: parent
        enabled: app.sheet === ""
        focus: app.sheet === ""

        ColumnLayout {
            anchors.fill: parent
            spacing: 4

            AlarmBar { Layout.fillWidth: true; visible: cameras.alarmText !== "" }
            WarningBar { Layout.fillWidth: true; visible: warnings.text !== "" }
            PromptBar { Layout.fillWidth: true; visible: app.prompt !== "" }
            // It can wait for all that cannot.
            TrustBar {
                Layout.fillWidth: true
                visible: service.asksForTrust && app.prompt === "" && warnings.text === "" && cameras.alarmText === ""
            }

            RowLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.minimumHeight: 120
                spacing: 4
                CountdownPanel {
                    Layout.preferredWidth: window.small ? window.width * 0.44 : Math.max(300, window.width * 0.29)
                    Layout.fillHeight: true
                }
                PanelSlot {
                    visible: !window.small
                    active: !window.small
                    source: "SkyPanel.qml"
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                }
                PanelSlot {
                    visible: !window.small
                    active: !window.small
                    source: "CamerasPanel.qml"
                    Layout.preferredWidth: Math.max(280, window.width * 0.22)
                    Layout.fillHeight: true
                }
                TabPane {
                    visible: window.small
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                }
            }
            PanelSlot {
                source: "TimelinePanel.qml"
                Layout.fillWidth: true
                Layout.preferredHeight: window.small ? 84 : Math.max(150, Math.min(window.height * 0.24, theme.scale * 90 + timeline.laneCount * 52))
            }
            TransportBar { Layout.fillWidth: true }
            PanelSlot {
                source: "StatusStrip.qml"
                visible: window.small
                active: window.small
                Layout.fillWidth: true
                Layout.preferredHeight: (theme.normal + 8) * 2
            }
            PanelSlot {
                source: "LogPanel.qml"
                visible: !window.small
                active: !window.small
                Layout.fillWidth: true
                Layout.preferredHeight: 120
            }
        }
    }

    Loader {
        id: sheetLoader
        objectName: "sheetLoader"
        anchors.fill: parent
        focus: app.sheet !== ""
        active: app.sheet !== ""
        source: app.sheet === "" ? "" : app.sheet + "Sheet.qml"
        onLoaded: item.forceActiveFocus()
    }

    // What is spoken, to be read over all else; it covers the log alone.
    Caption {
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
    }

    Instantiator {
        model: commands
        delegate: Shortcut {
            required property string commandId
            required property string shortcut
            required property bool standard
            sequence: shortcut
            enabled: shortcut !== "" && !standard
            context: Qt.ApplicationShortcut
            onActivated: commands.trigger(commandId)
        }
    }
}
