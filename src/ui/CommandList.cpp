#include "ui/CommandList.h"

#include "rig/RigModel.h"
#include "ui/Commands.h"
#include "ui/help/GuidePages.h"
#include "ui/help/GuideView.h"
#include "ui/kit/AppView.h"
#include "ui/kit/EditTarget.h"
#include "ui/kit/Theme.h"
#include "ui/run/AnalyzerView.h"
#include "ui/run/ChecklistPrinter.h"
#include "ui/run/PreflightView.h"
#include "ui/run/RigTransferView.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>

#include <utility>

namespace zenka::ui {

namespace {

using Action = std::function<void()>;
using Condition = std::function<bool()>;

/// The commands of one menu, as one writes them down.
class Menu {
public:
    Menu(Commands& commands, const char* title) : commands_(commands), title_(QString::fromLatin1(title)) {}

    Menu& add(const char* id, const char* text, const char* shortcut, Action run, Condition enabled = {}) {
        commands_.add(command(id, text, shortcut, std::move(run), std::move(enabled)));
        return *this;
    }
    /// What the last one added says of itself while it is not enabled.
    Menu& whyOff(const char* words) {
        commands_.explainLast(QString::fromUtf8(words));
        return *this;
    }
    /// One that a focused text field answers to by itself.
    Menu& addStandard(const char* id, const char* text, const char* shortcut, Action run, Condition enabled) {
        Command standard = command(id, text, shortcut, std::move(run), std::move(enabled));
        standard.standard = true;
        commands_.add(std::move(standard));
        return *this;
    }

private:
    Command command(const char* id, const char* text, const char* shortcut, Action run, Condition enabled) {
        return {.id = QString::fromLatin1(id),
                .menu = title_,
                .text = QString::fromUtf8(text),
                .shortcut = QString::fromLatin1(shortcut),
                .run = std::move(run),
                .enabled = std::move(enabled)};
    }

    Commands& commands_;
    const QString title_;
};

void toggleMaximized(QQuickWindow& window) {
    if (window.visibility() == QWindow::Maximized)
        window.showNormal();
    else
        window.showMaximized();
}

/// What an item or what it stands in says of its keys.
QString keysOf(const QQuickItem* item) {
    for (; item; item = item->parentItem()) {
        if (QString keys = item->property("keysHere").toString(); !keys.isEmpty())
            return keys;
    }
    return {};
}

void addEdit(Commands& commands, EditTarget& edit) {
    Menu menu(commands, "Edit");
    const auto add = [&](const char* operation, const char* text, const char* shortcut) {
        menu.addStandard(
            operation, text, shortcut, [&edit, operation] { edit.call(operation); },
            [&edit, operation] { return edit.has(operation); });
    };
    add("undo", "Undo", "Ctrl+Z");
    add("redo", "Redo", "Ctrl+Shift+Z");
    add("cut", "Cut", "Ctrl+X");
    add("copy", "Copy", "Ctrl+C");
    add("paste", "Paste", "Ctrl+V");
    add("selectAll", "Select All", "Ctrl+A");
}

} // namespace

void declareCommands(Commands& commands, rig::RigModel& rig, AppView& app, Theme& theme, EditTarget& edit,
                     AnalyzerView& analyzer, PreflightView& preflight, RigTransferView& transfer,
                     ChecklistPrinter& checklist, GuideView& guide,
                     const std::function<QQuickWindow*()>& window,
                     const std::function<void(const QUrl&)>& open, const QString& runLogs) {
    const auto sheet = [&app](const char* name) {
        return [&app, name] { app.openSheet(QString::fromLatin1(name)); };
    };
    // The script's commands work on its sheet, which they open.
    const auto script = [&app](const char* what) {
        return [&app, what] {
            app.openSheet(QStringLiteral("Script"));
            Q_EMIT app.scriptCommand(QString::fromLatin1(what));
        };
    };
    rig::Transport& transport = rig.transport();
    const auto simulated = [&transport] { return !transport.live(); };
    const auto live = [&transport] { return transport.live(); };

    Menu(commands, "Zenka")
        .add("about", "About Zenka", "", sheet("About"))
        .add("checkForUpdates", "Check for Updates…", "", sheet("Updates"))
        .add("openSettings", "Settings…", "Ctrl+,", sheet("Settings"))
        .add("reportBug", "Report a Bug…", "", [&app] { app.reportBug(); })
        .add("hide", "Hide Zenka", "Ctrl+H", [window] { window()->showMinimized(); })
        .add("quit", "Quit Zenka", "Ctrl+Q", [&app] { app.askToQuit(); });

    Menu(commands, "File")
        .add("newScriptCmd", "New Script", "Ctrl+N", script("newScript"))
        .add("scriptWizard", "Script Wizard…", "Ctrl+K", sheet("Wizard"))
        .add("aiAssistant", "AI Script Assistant…", "Ctrl+J", sheet("Assistant"))
        .add("openScriptCmd", "Open Script…", "Ctrl+O", script("open"))
        .add("saveScriptCmd", "Save Script…", "Ctrl+S", script("save"))
        .add("script", "Script…", "Ctrl+E", sheet("Script"))
        .add("validate", "Validate Script", "F7", script("validate"))
        .add("location", "Location…", "Ctrl+L", sheet("Location"), simulated)
        .add("exportRig", "Export Rig…", "", [&transfer] { transfer.beginExport(); })
        .add(
            "importRig", "Import Rig…", "", [&transfer] { transfer.beginImport(); }, simulated)
        .whyOff(" (not in a live run)")
        .add("printChecklist", "Print Checklist…", "", [&checklist] { checklist.print(); });

    addEdit(commands, edit);

    Menu(commands, "Simulation")
        .add(
            "togglePlay", "Play / Pause", "Ctrl+P", [&transport] { transport.togglePlay(); }, simulated)
        // One key: with compensation on it takes that back, as in the field there is no time for a menu.
        .add(
            "jumpToTime", "Jump to Time…", "Ctrl+0",
            [&rig, &app] {
                if (rig.exposure().compActive())
                    rig.exposure().resetExposureComp(true);
                else
                    app.openSheet(QStringLiteral("Jump"));
            },
            [&rig] { return rig.exposure().compActive() || !rig.transport().live(); });

    const auto notTyping = [&app] { return !app.typing(); };
    Menu(commands, "Exposure")
        .add("compensation", "Exposure Compensation…", "Ctrl+Shift+E", sheet("Compensation"))
        .add(
            "compUp", "All Cameras +1 Stop", "Ctrl+Up", [&rig] { rig.exposure().nudgeAllComp(1); }, notTyping)
        .add(
            "compDown", "All Cameras −1 Stop", "Ctrl+Down", [&rig] { rig.exposure().nudgeAllComp(-1); },
            notTyping)
        .add(
            "compReset", "Reset Compensation", "", [&rig] { rig.exposure().resetExposureComp(true); },
            [&rig] { return rig.exposure().compActive(); });

    Menu(commands, "Timing")
        .add("simTiming", "Simulated Clock", "", sheet("LeaveLive"), live)
        .add("preflight", "Pre-flight Checks…", "Ctrl+Shift+P", [&rig] { rig.preflight().openPreflight(); })
        .add(
            "armReal", "Arm Real Eclipse Clock", "",
            [&rig, &preflight] { rig.preflight().runPreflight([&preflight] { preflight.openArming(); }); },
            simulated);

    Menu(commands, "Cameras")
        .add(
            "detectCams", "Detect Cameras", "Ctrl+D", [&rig] { rig.detector().detectCameras(); },
            [&rig] { return !rig.detector().detecting().get(); })
        .add("testShot", "Test Shot…", "Ctrl+T", sheet("TestShot"))
        .add("library", "My Cameras…", "Ctrl+B", sheet("Library"));

    Menu(commands, "Tools")
        .add("framingSimulator", "Framing Simulator…", "Ctrl+Shift+F", sheet("Framing"))
        .add("gapProfiler", "Camera Gap Profiler…", "Ctrl+G", sheet("GapProfiler"))
        .add("cameraProfiler", "Camera Profiler…", "Ctrl+R", sheet("CameraProfiler"))
        .add(
            "analyzer", "Simulation Analyzer…", "Ctrl+Shift+A", [&analyzer] { analyzer.analyze(); },
            simulated)
        .add(
            "exposureCheck", "Fire Exposure Check", "", [&rig] { rig.exposureCheck().runExposureCheck(); },
            simulated)
        .add("remoteGlance", "Remote Glance…", "Ctrl+Shift+G", sheet("Glance"))
        .add("revealRunLogs", "Reveal Run Logs", "", [open, runLogs] { open(QUrl::fromLocalFile(runLogs)); });

    Menu(commands, "Window")
        .add("openMenu", "Menu", "F10", [&app] { Q_EMIT app.menuWanted(); })
        .add("cycleTheme", "Next Theme", "Ctrl+Shift+T", [&theme] { theme.cycle(); })
        .add("textLarger", "Larger Text", "Ctrl++", [&theme] { theme.setTextScale(theme.textScale() + 0.1); })
        .add("textSmaller", "Smaller Text", "Ctrl+-",
             [&theme] { theme.setTextScale(theme.textScale() - 0.1); })
        .add("miniaturize", "Minimize", "Ctrl+M", [window] { window()->showMinimized(); })
        .add("zoom", "Zoom", "", [window] { toggleMaximized(*window()); });

    Menu help(commands, "Help");
    help.add("showWelcome", "Welcome / Getting Started", "", sheet("Welcome"));
    for (const GuidePage& page : guidePages())
        help.add(page.command, page.title, "",
                 [&guide, file = page.file] { guide.open(QString::fromLatin1(file)); });
    help.add("showKeys", "Keys", "F1", [&app, window] { app.openKeys(keysOf(window()->activeFocusItem())); });
}

} // namespace zenka::ui
