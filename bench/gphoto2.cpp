// What the gphoto2 driver adds to gphoto2's own time: from capture() to the batch in the child's input, how
// long capture() holds its caller, and how long a Detect takes on a bus with no camera. The bodies' child is
// the tests' fake, Detect runs the distribution's own gphoto2 and ends the desktop's camera services as the
// program does.

#include "cameras/gphoto2/GPhoto2Camera.h"
#include "platform/LinuxPorts.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/RigModel.h"
#include "rig/links/GPhoto2Family.h"
#include "support/TempFolder.h"
#include "support/TestFolders.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using namespace zenka;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

QCoreApplication& application() {
    static int count = 1;
    static char name[] = "bench";
    static char* words[] = {name, nullptr};
    static QCoreApplication instance(count, words);
    return instance;
}

/// Serves the event loop of the main thread, which sleeps until there is something to do.
template <typename Holds>
void serveUntil(Holds holds) {
    while (!holds())
        application().processEvents(QEventLoop::WaitForMoreEvents);
}

/// Children that note when they were last told to fire.
class TimedChildren final : public ports::ChildProcesses {
public:
    std::atomic<Clock::time_point> firedAt{Clock::time_point()};

    Started start(const ports::ChildStart& start) override {
        Started started = children_.start(start);
        if (started.child)
            started.child = std::make_unique<Child>(*this, std::move(started.child));
        return started;
    }

private:
    class Child final : public ports::ChildProcess {
    public:
        Child(TimedChildren& owner, std::unique_ptr<ports::ChildProcess> child)
            : owner_(owner), child_(std::move(child)) {}
        bool write(std::string_view bytes, base::Seconds limit) override {
            const bool taken = child_->write(bytes, limit);
            if (bytes.find("trigger-capture") != bytes.npos)
                owner_.firedAt = Clock::now();
            return taken;
        }
        Output read(base::Seconds limit) override { return child_->read(limit); }
        bool running() override { return child_->running(); }
        std::optional<int> waitForEnd(base::Seconds limit) override { return child_->waitForEnd(limit); }
        void terminate() override { child_->terminate(); }
        void kill() override { child_->kill(); }

    private:
        TimedChildren& owner_;
        std::unique_ptr<ports::ChildProcess> child_;
    };

    platform::LinuxChildProcesses children_;
};

double quantileUs(std::vector<double> seconds, double part) {
    std::ranges::sort(seconds);
    return 1e6 * seconds[static_cast<std::size_t>(part * static_cast<double>(seconds.size() - 1))];
}

/// A machine for the driver, with a program folder that has the fake in it.
struct Bench {
    test::TempFolder made;
    test::FoldersBelow folders{made.path()};
    platform::MemorySettings settings;
    platform::LinuxPorts machine{settings, folders};
    TimedChildren children;
    cameras::CameraDaemons daemons{machine.processes, machine.queues};

    cameras::GPhoto2Program program(const fs::path& programFolder) {
        return cameras::GPhoto2Program({.children = children,
                                        .daemons = daemons,
                                        .queues = machine.queues,
                                        .loop = machine.loop,
                                        .clock = machine.clock,
                                        .settings = settings,
                                        .folders = folders,
                                        .files = machine.files,
                                        .programFolder = programFolder});
    }
    fs::path withTheFake() {
        fs::create_directories(made.path() / "lib/zenka/gphoto2/bin");
        fs::create_symlink(ZENKA_SOURCE_DIR "/tests/support/fake_gphoto2",
                           made.path() / "lib/zenka/gphoto2/bin/gphoto2");
        return made.path() / "bin";
    }
};

/// Shots with a new shutter each, through a held session, to a body that rests in between. The argument is
/// the number of threads that keep cores busy beside it.
void captureToWrite(benchmark::State& state) {
    application();
    ::setenv("FAKE_GPHOTO2", "plain", 1);
    Bench bench;
    cameras::GPhoto2Program program = bench.program(bench.withTheFake());
    cameras::GPhoto2Camera camera(
        program, {.id = "gp", .model = "Nikon DSC D750", .port = "usb:001,004", .serial = {}});
    camera.warmUp();
    bool ready = false;
    camera.probe([&ready](const cameras::CameraStatus&) { ready = true; });
    serveUntil([&] { return ready; });
    if (!camera.armed()) {
        state.SkipWithError("the fake does not answer");
        return;
    }
    std::atomic<bool> stop = false;
    std::vector<std::jthread> busy;
    for (int i = 0; i < state.range(0); ++i)
        busy.emplace_back([&stop] {
            while (!stop) {
            }
        });
    std::vector<double> toWrite;
    std::vector<double> inCall;
    for (auto _ : state) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        bool done = false;
        bool ok = false;
        const double shutterSec = toWrite.size() % 2 == 0 ? 0.002 : 0.004;
        const auto begin = Clock::now();
        camera.capture({.iso = 200, .aperture = 8, .shutterSec = shutterSec},
                       [&](const cameras::CaptureOutcome& outcome) {
                           ok = outcome.ok;
                           done = true;
                       });
        const auto back = Clock::now();
        serveUntil([&] { return done; });
        if (!ok) {
            state.SkipWithError("a shot failed");
            break;
        }
        toWrite.push_back(std::chrono::duration<double>(bench.children.firedAt.load() - begin).count());
        inCall.push_back(std::chrono::duration<double>(back - begin).count());
        state.SetIterationTime(toWrite.back());
    }
    stop = true;
    if (!toWrite.empty())
        state.counters = {{"write_p50_us", quantileUs(toWrite, 0.5)},
                          {"write_p99_us", quantileUs(toWrite, 0.99)},
                          {"call_p50_us", quantileUs(inCall, 0.5)},
                          {"call_p99_us", quantileUs(inCall, 0.99)}};
    camera.shutDown(base::Seconds{2});
}
BENCHMARK(captureToWrite)->Arg(0)->Arg(1)->ArgName("busy")->UseManualTime()->Iterations(1000);

/// A whole pass of the rig, from the click to its end.
void detectOnAnEmptyBus(benchmark::State& state) {
    application();
    Bench bench;
    cameras::GPhoto2Program program = bench.program({});
    rig::RigModel model(bench.machine.all, "bench",
                        {std::make_shared<rig::GPhoto2Family>(program, bench.machine.usb)});
    std::vector<double> passes;
    for (auto _ : state) {
        const auto begin = Clock::now();
        model.detector().detectCameras();
        serveUntil([&] { return !model.detector().detecting().get(); });
        if (!model.roster().cameras().empty() || !model.log().lines().front().ends_with("then Detect.")) {
            state.SkipWithError("no gphoto2 here, or a camera is plugged in");
            break;
        }
        passes.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
        state.SetIterationTime(passes.back());
    }
    if (!passes.empty())
        state.counters = {{"p50_ms", quantileUs(passes, 0.5) / 1000},
                          {"largest_ms", quantileUs(passes, 1) / 1000}};
}
BENCHMARK(detectOnAnEmptyBus)->UseManualTime()->Iterations(9)->Unit(benchmark::kMillisecond);

} // namespace
