// How late frames leave: a live clock for a minute, 600 frames on two simulated bodies, through the real
// timer, loop and queues, with one core kept busy beside it. Prints the lateness of the call to the
// camera behind the frame's instant and stagger.
// --idle measures without the busy core, too; --minutes N for so long, beside whatever else runs.

#include "support/LiveRun.h"

#include <QCoreApplication>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <thread>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    constexpr double interval = 0.2;
    constexpr int framesOfAMinute = 300; // on each body
    const auto folder = std::filesystem::temp_directory_path() / "zenka fire lateness";
    std::filesystem::remove_all(folder);

    const auto measure = [&](const char* title, int busyThreads, int minutes) {
        const int frames = framesOfAMinute * minutes;
        std::atomic<bool> stop = false;
        std::vector<std::jthread> busy;
        for (int i = 0; i < busyThreads; ++i)
            busy.emplace_back([&stop] {
                while (!stop) {
                }
            });
        zenka::test::LiveRun run(folder, {"CAM1", "CAM2"}, frames, interval);
        run.machine.loop.after(zenka::base::Seconds{3 + frames * interval}, [&] {
            const auto& lateness = run.model.logbook().lateness();
            std::puts(absl::StrFormat(
                          "%-24s %4d frames   p50 %.3f ms   p99 %.3f ms   p99.9 %.3f ms   largest %.3f ms",
                          title, 2 * frames, lateness.quantile(0.5), lateness.quantile(0.99),
                          lateness.quantile(0.999), lateness.largest())
                          .c_str());
            run.model.transport().useSimulatedTiming();
            std::puts(run.model.log().lines()[2].c_str());
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
        stop = true;
    };
    const std::string_view wanted = argc > 1 ? argv[1] : "";
    if (wanted == "--minutes" && argc > 2) {
        measure("the machine as it is", 0, std::max(1, std::atoi(argv[2])));
    } else {
        if (wanted == "--idle")
            measure("an idle machine", 0, 1);
        measure("one core kept busy", 1, 1);
    }
    std::filesystem::remove_all(folder);
}
