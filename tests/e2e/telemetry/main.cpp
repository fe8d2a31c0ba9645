// Tracks usage events as fast as they come and prints the number of each, to be killed by its parent.
// Arguments: the folder for its files, the address of the service, and the number of the first event. Without
// a number it only sends what was left.

#include "platform/LinuxPorts.h"
#include "platform/virtual/VirtualMachine.h"
#include "services/ServiceAddress.h"
#include "services/Telemetry.h"
#include "support/TestFolders.h"

#include <QCoreApplication>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

int main(int argc, char** argv) {
    using namespace zenka;
    if (argc < 3)
        return 2;
    QCoreApplication application(argc, argv);
    platform::MemorySettings settings;
    settings.setText(services::serviceHostKey, argv[2]);
    settings.setFlag(services::telemetryAllowedKey, true);
    test::FoldersBelow folders(argv[1]);
    platform::LinuxPorts machine(settings, folders);
    services::Telemetry telemetry(machine.all, machine.names, "9.9");
    telemetry.start();
    // From the main thread and from others in turn.
    const auto track = [&telemetry](int number) {
        telemetry.track("test", {{"number", number}});
        std::printf("%d\n", number);
        std::fflush(stdout);
    };
    if (argc > 3)
        machine.loop.every(base::Seconds{0.004}, [&machine, track, number = std::stoi(argv[3])]() mutable {
            ++number;
            if (number % 2 == 0)
                track(number);
            else
                machine.queues.background([track, number] { track(number); });
        });
    return QCoreApplication::exec();
}
