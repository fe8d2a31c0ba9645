// What the window costs on the software renderer, with the real adapters: time from the start of the process
// to the first picture, resident memory, and the share of one core when idle and while a simulation plays.

#include "platform/LinuxPorts.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/RigModel.h"
#include "services/GlanceDesk.h"
#include "services/ServiceDesk.h"
#include "support/TestFolders.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <absl/strings/str_format.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

namespace {

double clockSeconds(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Seconds since the process was started, as the kernel knows it (in hundredths).
double processAge() {
    std::ifstream file("/proc/self/stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::string rest = text.substr(text.rfind(')') + 2);
    std::size_t at = 0;
    for (int field = 3; field < 22; ++field)
        at = rest.find(' ', at) + 1;
    const double started = std::stod(rest.substr(at)) / static_cast<double>(sysconf(_SC_CLK_TCK));
    return clockSeconds(CLOCK_BOOTTIME) - started;
}

double residentMB() {
    std::ifstream file("/proc/self/statm");
    long total = 0;
    long resident = 0;
    file >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

void print(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    using namespace zenka;
    qputenv("QT_QUICK_BACKEND", "software");
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto folder = std::filesystem::temp_directory_path() / "zenka window cost";
    std::filesystem::remove_all(folder);
    test::FoldersBelow folders(folder);
    platform::MemorySettings settings;
    settings.setFlag("zenka.welcomeSeen", true);
    platform::LinuxPorts machine(settings, folders);
    rig::RigModel rig(machine.all, "0");
    services::ServiceDesk services(machine.all, machine.names, rig, "0");
    services::GlanceDesk glance(machine.all, machine.pages, rig);
    ui::Window window(rig, machine.all, services, glance, QStringLiteral("0"));
    if (!window.show())
        return 1;

    constexpr double spanSec = 10;
    double cpuBefore = 0;
    bool shown = false;
    const auto share = [&] { return (clockSeconds(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore) / spanSec * 100; };
    QObject::connect(window.quickWindow(), &QQuickWindow::frameSwapped, &application, [&] {
        if (std::exchange(shown, true))
            return;
        print(absl::StrFormat("first picture   %.0f ms after the start of the process", processAge() * 1000));
        machine.loop.after(base::Seconds{2}, [&] {
            print(absl::StrFormat("resident        %.0f MB", residentMB()));
            cpuBefore = clockSeconds(CLOCK_PROCESS_CPUTIME_ID);
            machine.loop.after(base::Seconds{spanSec}, [&] {
                print(absl::StrFormat("idle            %.2f %% of a core", share()));
                rig.script().load("FOR,(INTERVALOMETER),-60,1,200\n"
                                  "TAKEPIC,MAX,+,00:00,CAM1,1/500,8,200,0,RAW,None,N,a\nENDFOR\n",
                                  "cost");
                rig.script().compile();
                rig.roster().setLabel(*rig.roster().addPlanningCamera("Generic PTP"), "CAM1");
                rig.transport().jump("MAX");
                rig.transport().togglePlay();
                cpuBefore = clockSeconds(CLOCK_PROCESS_CPUTIME_ID);
                machine.loop.after(base::Seconds{spanSec}, [&] {
                    print(absl::StrFormat("simulation      %.2f %% of a core", share()));
                    QGuiApplication::quit();
                });
            });
        });
    });
    const int status = QGuiApplication::exec();
    rig.handleAppWillTerminate();
    std::filesystem::remove_all(folder);
    return status;
}
