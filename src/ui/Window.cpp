#include "ui/Window.h"

#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "ui/AppView.h"
#include "ui/CamerasView.h"
#include "ui/ClockView.h"
#include "ui/Commands.h"
#include "ui/EclipseList.h"
#include "ui/LocationView.h"
#include "ui/LogView.h"
#include "ui/ScriptView.h"
#include "ui/SkyItem.h"
#include "ui/SkyView.h"
#include "ui/Theme.h"
#include "ui/TimelineItem.h"
#include "ui/TimelineView.h"
#include "ui/WorldMapItem.h"

#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QScreen>
#include <QUrl>

/// The resources of a static library are linked only when they are asked for, outside of any namespace.
static void initResources() {
    Q_INIT_RESOURCE(zenka_ui);
}

namespace zenka::ui {

Window::Window(rig::RigModel& rig, const ports::Ports& ports, const QString& version)
    : rig_(rig), app_(new AppView(rig, version, this)), commands_(new Commands(this)),
      engine_(new QQmlApplicationEngine) {
    initResources();
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    theme_ = new Theme(ports.settings, this);
    declareCommands(QString::fromStdString(ports.folders.runLogs().string()));

    SkyItem::registerTypes();
    TimelineItem::registerTypes();
    ScriptView::registerTypes();
    WorldMapItem::registerTypes();

    QQmlContext& context = *engine_->rootContext();
    context.setContextProperty(QStringLiteral("theme"), theme_);
    context.setContextProperty(QStringLiteral("app"), app_);
    context.setContextProperty(QStringLiteral("commands"), commands_);
    context.setContextProperty(QStringLiteral("clock"), new ClockView(rig, this));
    context.setContextProperty(QStringLiteral("eclipses"), new EclipseList(rig, this));
    context.setContextProperty(QStringLiteral("sky"), new SkyView(rig, ports, this));
    auto* timeline = new TimelineView(rig, ports, this);
    context.setContextProperty(QStringLiteral("timeline"), timeline);
    connect(timeline, &TimelineView::captureClicked, app_, [app = app_](int lineNo) {
        app->openSheet(QStringLiteral("Script"));
        Q_EMIT app->scriptLineWanted(lineNo);
    });
    context.setContextProperty(QStringLiteral("script"), new ScriptView(rig, ports, this));
    context.setContextProperty(QStringLiteral("location"), new LocationView(rig, ports, this));
    context.setContextProperty(QStringLiteral("cameras"), new CamerasView(rig, this));
    context.setContextProperty(QStringLiteral("log"), new LogView(rig, this));
}

Window::~Window() {
    delete engine_; // before the view models that its bindings read
}

bool Window::show() {
    engine_->load(QUrl(QStringLiteral("qrc:/zenka/Main.qml")));
    QQuickWindow* window = quickWindow();
    if (!window)
        return false;
    const QRect room = window->screen() ? window->screen()->availableGeometry() : QRect(0, 0, 1380, 860);
    window->setMinimumSize(QSize(960, 440).boundedTo(room.size()));
    window->resize(QSize(1380, 860).boundedTo(room.size()));
    window->setTitle(QStringLiteral("Zenka"));
    window->show();
    window->requestActivate();
    rig_.bootstrap();
    return true;
}

void Window::chooseTheme(const QString& name) {
    theme_->choose(name);
}

QStringList Window::sheets() {
    QStringList names;
    for (const QString& file : QDir(QStringLiteral(":/zenka")).entryList({QStringLiteral("*Sheet.qml")}))
        names.append(file.chopped(static_cast<int>(qstrlen("Sheet.qml"))));
    return names;
}

QQuickWindow* Window::quickWindow() const {
    const auto roots = engine_->rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow*>(roots.first());
}

void Window::declareCommands(const QString& runLogs) {
    const auto sheet = [this](const char* name) {
        return [this, name] { app_->openSheet(QString::fromLatin1(name)); };
    };
    const auto add = [this](const char* id, const char* menu, const char* text, const char* shortcut,
                            std::function<void()> run, std::function<bool()> enabled = {}) {
        commands_->add({.id = QString::fromLatin1(id),
                        .menu = QString::fromLatin1(menu),
                        .text = QString::fromUtf8(text),
                        .shortcut = QString::fromLatin1(shortcut),
                        .run = std::move(run),
                        .enabled = std::move(enabled)});
    };
    const auto guide = [this](const char* title, const char* page) {
        return
            [this, title, page] { app_->openGuide(QString::fromLatin1(title), QString::fromLatin1(page)); };
    };
    // The script's commands work on its sheet, which they open.
    const auto script = [this](const char* what) {
        return [this, what] {
            app_->openSheet(QStringLiteral("Script"));
            Q_EMIT app_->scriptCommand(QString::fromLatin1(what));
        };
    };
    rig::Transport& transport = rig_.transport();
    const auto simulated = [&transport] { return !transport.live(); };

    add("about", "Zenka", "About Zenka", "", sheet("About"));
    add("settings", "Zenka", "Settings…", "Ctrl+,", sheet("Settings"));
    add("quit", "Zenka", "Quit Zenka", "Ctrl+Q", [] { QGuiApplication::quit(); });

    add("newScriptCmd", "File", "New Script", "Ctrl+N", script("newScript"));
    add("openScriptCmd", "File", "Open Script…", "Ctrl+O", script("open"));
    add("saveScriptCmd", "File", "Save Script…", "Ctrl+S", script("save"));
    add("script", "File", "Script…", "Ctrl+E", sheet("Script"));
    add("location", "File", "Location…", "Ctrl+L", sheet("Location"), simulated);

    add(
        "togglePlay", "Simulation", "Play / Pause", "Ctrl+P", [&transport] { transport.togglePlay(); },
        simulated);
    add("jumpToTime", "Simulation", "Jump to Time…", "Ctrl+0", sheet("Jump"), simulated);

    add("simTiming", "Timing", "Simulated Clock", "", sheet("LeaveLive"),
        [&transport] { return transport.live(); });
    add("armReal", "Timing", "Arm Real Eclipse Clock", "", sheet("Arm"), simulated);

    add("revealRunLogs", "Tools", "Reveal Run Logs", "",
        [folder = runLogs] { QDesktopServices::openUrl(QUrl::fromLocalFile(folder)); });

    add("cycleTheme", "Window", "Next Theme", "Ctrl+Shift+T", [this] { theme_->cycle(); });
    add("textLarger", "Window", "Larger Text", "Ctrl++",
        [this] { theme_->setTextScale(theme_->textScale() + 0.1); });
    add("textSmaller", "Window", "Smaller Text", "Ctrl+-",
        [this] { theme_->setTextScale(theme_->textScale() - 0.1); });
    add("miniaturize", "Window", "Minimize", "Ctrl+M", [this] { quickWindow()->showMinimized(); });
    add("zoom", "Window", "Zoom", "", [this] {
        QQuickWindow* window = quickWindow();
        if (window->visibility() == QWindow::Maximized)
            window->showNormal();
        else
            window->showMaximized();
    });

    add("showWelcome", "Help", "Welcome / Getting Started", "", sheet("Welcome"));
    add("openGuide", "Help", "Zenka Guide", "", guide("Zenka Guide", "guide.md"));
    add("openScriptGuide", "Help", "Script Language Guide", "",
        guide("Script Language Guide", "script-language.md"));
    add("showKeys", "Help", "Keys", "F1", sheet("Keys"));
}

} // namespace zenka::ui
