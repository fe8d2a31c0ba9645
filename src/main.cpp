#include "cameras/canon/MainThreadCalls.h"
#include "cameras/gphoto2/GPhoto2Program.h"
#include "cameras/usb/USBHolders.h"
#include "cli/Switches.h"
#include "painting/AppIcon.h"
#include "platform/LinuxFolders.h"
#include "platform/LinuxPorts.h"
#include "platform/OneInstance.h"
#include "platform/QtSettings.h"
#include "platform/QuitSignals.h"
#include "rig/RigModel.h"
#include "rig/links/CanonFamily.h"
#include "rig/links/GPhoto2Family.h"
#include "rig/links/LumixFamily.h"
#include "rig/links/SonyFamily.h"
#include "rig/shared/SettingsKeys.h"
#include "services/GlanceDesk.h"
#include "services/ModelStatsFetch.h"
#include "services/ServiceDesk.h"
#include "services/UpdateCheck.h"
#include "ui/Window.h"

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>
#include <QImage>
#include <QThreadPool>
#include <QWindow>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

/// Without a display Qt would end the process with a dump of its own.
bool hasDisplay() {
    for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* value = std::getenv(variable);
        if (value && *value)
            return true;
    }
    return false;
}

/// The window need not wait for its icon.
void paintIconAside() {
    QThreadPool::globalInstance()->start([] {
        const QList<QImage> images = zenka::painting::windowIcons();
        QMetaObject::invokeMethod(
            qApp,
            [images] {
                QIcon icon;
                for (const QImage& image : images)
                    icon.addPixmap(QPixmap::fromImage(image));
                QGuiApplication::setWindowIcon(icon);
                for (QWindow* window : QGuiApplication::topLevelWindows()) // that were there before it
                    window->setIcon(icon);
            },
            Qt::QueuedConnection);
    });
}

/// Two programs would take the bodies from each other.
int passedOn(const zenka::platform::OneInstance& first, const QString& file) {
    if (first.passOn(file.toUtf8())) {
        std::fputs("zenka: it runs already, and its window comes to the front.\n", stderr);
        return 0;
    }
    std::fputs("zenka: it runs already and does not answer. End it first.\n", stderr);
    return 1;
}

int runWindow(int argc, char** argv) {
    using namespace zenka;
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Zenka"));
    QGuiApplication::setApplicationVersion(QStringLiteral(ZENKA_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Zenka"));
    QGuiApplication::setDesktopFileName(QStringLiteral("zenka"));
    platform::LinuxFolders folders;
    // What a file manager passes on. A switch that lacks its values is none of that.
    const QString file =
        argc > 1 && argv[1][0] != '-' ? QFileInfo(QFile::decodeName(argv[1])).absoluteFilePath() : QString();
    platform::OneInstance instance(folders.applicationSupport());
    if (!instance.first())
        return passedOn(instance, file);
    paintIconAside();
    platform::ThreadWorkQueues settingsQueues;
    platform::QtSettings settings(settingsQueues);
    for (const char* key : rig::settingsKeys::deployment)
        settings.letEnvironmentRule(key);
    settings.letEnvironmentRule(services::updateAddressKey);
    // Work on the machine's queues may still use these when all else has gone.
    std::optional<cameras::CameraDaemons> daemons;
    std::optional<cameras::GPhoto2Program> gphoto2;
    std::optional<cameras::MainThreadCalls> mainThread;
    std::optional<cameras::DriverMachine> drivers;
    std::optional<cameras::CanonEDSDK> canon;
    platform::LinuxPorts machine(settings, folders);
    daemons.emplace(machine.processes, machine.queues);
    std::function<void(const std::string&)> log = [](const std::string&) {};
    std::function<void(const std::string&, const cameras::DriverMachine::Fields&)> report;
    const auto tell = [&report](const std::string& event, const cameras::DriverMachine::Fields& fields) {
        if (report)
            report(event, fields);
    };
    gphoto2.emplace(
        cameras::GPhoto2Machine{.children = machine.children,
                                .daemons = *daemons,
                                .queues = machine.queues,
                                .loop = machine.loop,
                                .clock = machine.clock,
                                .settings = settings,
                                .folders = folders,
                                .files = machine.files,
                                .programFolder = QCoreApplication::applicationDirPath().toStdString(),
                                .warn = [&log](const std::string& words) { log(words); },
                                .report = tell});
    mainThread.emplace(machine.loop);
    drivers.emplace(cameras::DriverMachine{
        .queues = machine.queues, .loop = machine.loop, .clock = machine.clock, .report = tell});
    canon.emplace(cameras::CanonMachine{
        .driver = *drivers,
        .libraries = machine.libraries,
        .bus = machine.usb,
        .rivals = cameras::CameraRivals::of(*daemons, machine.usb, machine.processes,
                                            cameras::USBHolders::canonVendorID),
        .onMain = [&mainThread](const std::function<void()>& call) { return mainThread->run(call); }});
    const cameras::LumixMachine lumix{.drivers = *drivers,
                                      .children = machine.children,
                                      .programFolder = QCoreApplication::applicationDirPath().toStdString()};
    // A maker's family is a line here; the order among them is that of a detection.
    const rig::CameraDetector::Families families{
        std::make_shared<rig::CanonFamily>(*canon, settings),
        std::make_shared<rig::LumixFamily>(lumix, machine.usb, *daemons),
        std::make_shared<rig::SonyFamily>(rig::SonyFamily::Machine{
            .driver = *drivers,
            .libraries = machine.libraries,
            .daemons = *daemons,
            .rivals = cameras::CameraRivals::of(*daemons, machine.usb, machine.processes,
                                                cameras::USBHolders::sonyVendorID)}),
        std::make_shared<rig::GPhoto2Family>(*gphoto2, machine.usb),
    };
    rig::RigModel rig(machine.all, ZENKA_VERSION, families);
    // On every way out: from then on this thread waits for others, and nobody is to wait for it.
    const std::shared_ptr<void> atTheEnd(nullptr, [&mainThread](void*) { mainThread->close(); });
    services::ServiceDesk services(machine.all, machine.names, rig, ZENKA_VERSION);
    report = [&services](const auto& event, const auto& fields) { services.report(event, fields); };
    services::GlanceDesk glance(machine.all, machine.pages, rig);
    services::ModelStatsFetch statistics(machine.all, gphoto2->modelStats());
    statistics.primeModelStats();
    rig.time().checkClockSkew();
    log = [&rig](const std::string& words) { rig.log().pushLog("⚠️ " + words); };
    machine.usb.watch([&rig] {
        rig.reconnect().busChanged();
        rig.heldSessions().lookForGone();
    });
    const platform::QuitSignals quitSignals([] { QGuiApplication::exit(0); });
    ui::Window window(rig, machine.all, services, glance, QStringLiteral(ZENKA_VERSION));
    if (const auto damage = settings.damage())
        rig.log().pushLog("⚠️ " + *damage);
    if (!window.show())
        return 1;
    if (!file.isEmpty())
        window.openFile(file);
    instance.listen([&window](const QByteArray& path) { window.startedAgain(QString::fromUtf8(path)); });
    const int status = QGuiApplication::exec();
    machine.usb.watch({});
    mainThread->close();
    rig.handleAppWillTerminate();
    canon->releaseSDK();
    log = [](const std::string&) {};
    report = nullptr;
    return status;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const std::vector<std::string> arguments(argv, argv + argc);
    if (zenka::cli::runSwitch(arguments))
        return 0;
    if (!hasDisplay()) {
        std::fputs(
            "zenka: no display (DISPLAY, WAYLAND_DISPLAY and QT_QPA_PLATFORM are unset). To run a script's "
            "whole eclipse on simulated cameras: zenka --rehearse SCRIPT\n",
            stderr);
        return 1;
    }
    return runWindow(argc, argv);
}
