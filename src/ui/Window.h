#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <utility>

class QQmlApplicationEngine;
class QQuickWindow;
class QUrl;

namespace zenka::rig {
class RigModel;
}

namespace zenka::ports {
struct Ports;
}

namespace zenka::services {
class GlanceDesk;
class ServiceDesk;
} // namespace zenka::services

namespace zenka::ui {

class AppView;
class ChecklistPrinter;
class Commands;
class EditTarget;
class RigTransferView;
class ScriptView;
class Theme;

/// The one window: its view models, its commands, and the QML that shows them. Made behind a
/// QGuiApplication; the rig, the services and the ports outlive it.
class Window : public QObject {
    Q_OBJECT

public:
    Window(rig::RigModel& rig, const ports::Ports& ports, services::ServiceDesk& services,
           services::GlanceDesk& glance, const QString& version);
    ~Window() override;

    /// Shows the window; false, with the reason on the error stream, when its QML cannot be loaded. The
    /// rig is started once the dashboard is up.
    bool show();

    /// Opens a file: a rig to be imported, by its ending, or else a script in its sheet.
    void openFile(const QString& path);

    /// The user started the program once more, with a script or without one (empty): this window comes to the
    /// front. In a live run the script is not opened, and the log says so.
    void startedAgain(const QString& path);

    QQuickWindow* quickWindow() const;
    Commands& commands() { return *commands_; }
    AppView& app() { return *app_; }
    Theme& theme() { return *theme_; }
    /// What opens reports and folders; the desktop's own programs at first.
    void setOpenUrl(std::function<void(const QUrl&)> open) { openUrl_ = std::move(open); }
    /// The sheets that there are, by name.
    static QStringList sheets();

private:
    rig::RigModel& rig_;
    services::ServiceDesk& services_;
    services::GlanceDesk& glance_;
    std::function<void(const QUrl&)> openUrl_;
    AppView* app_ = nullptr;
    Commands* commands_ = nullptr;
    std::unique_ptr<ChecklistPrinter> checklist_;
    EditTarget* edit_ = nullptr;
    RigTransferView* transfer_ = nullptr;
    Theme* theme_ = nullptr;
    ScriptView* script_ = nullptr;
    QQmlApplicationEngine* engine_ = nullptr;
};

} // namespace zenka::ui
