#include "cli/Switches.h"
#include "platform/LinuxFolders.h"
#include "platform/LinuxPorts.h"
#include "platform/QtSettings.h"
#include "platform/QuitSignals.h"
#include "rig/RigModel.h"
#include "ui/Window.h"

#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>
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

int runWindow(int argc, char** argv) {
    using namespace zenka;
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Zenka"));
    QGuiApplication::setApplicationVersion(QStringLiteral(ZENKA_VERSION));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Zenka"));
    QGuiApplication::setDesktopFileName(QStringLiteral("zenka"));
    platform::ThreadWorkQueues settingsQueues;
    platform::QtSettings settings(settingsQueues);
    platform::LinuxFolders folders;
    platform::LinuxPorts machine(settings, folders);
    rig::RigModel rig(machine.all, ZENKA_VERSION);
    const platform::QuitSignals quitSignals([] { QGuiApplication::exit(0); });
    ui::Window window(rig, machine.all, QStringLiteral(ZENKA_VERSION));
    if (const auto damage = settings.damage())
        rig.log().pushLog("⚠️ " + *damage);
    if (!window.show())
        return 1;
    const int status = QGuiApplication::exec();
    rig.handleAppWillTerminate();
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
