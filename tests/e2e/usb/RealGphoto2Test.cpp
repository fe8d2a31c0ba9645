// The whole rig with the distribution's gphoto2 on an emulated bus: the program, its library, PTP and usbfs
// are real, the bodies are not.
#include "UsbCameras.h"
#include "base/CivilTime.h"
#include "cameras/gphoto2/GPhoto2Program.h"
#include "platform/LinuxPorts.h"
#include "platform/Waiting.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/RigModel.h"
#include "rig/links/GPhoto2Family.h"
#include "support/Child.h"
#include "support/PortsBut.h"
#include "support/ScriptedUsb.h"
#include "support/TempFolder.h"
#include "support/TestFolders.h"
#include "support/WatchedLoop.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <unistd.h>

using namespace zenka;
using test::serveUntil;
using testing::Contains;
using testing::Not;

namespace {

constexpr int nikon = 0x04b0;
constexpr int fujifilm = 0x04cb;

/// A folder for programs with a gphoto2 of its own beside it.
std::filesystem::path programsBelow(const std::filesystem::path& root) {
    const auto bundle = root / "lib/zenka/gphoto2/bin";
    std::filesystem::create_directories(bundle);
    std::filesystem::create_symlink(ZENKA_SOURCE_DIR "/tests/support/gphoto2_apart", bundle / "gphoto2");
    return root / "bin";
}

struct RealGphoto2 : testing::Test {
    test::UsbCameras bus;
    test::TempFolder root;
    platform::MemorySettings settings;
    test::FoldersBelow folders{root.path()};
    platform::LinuxPorts machine{settings, folders};
    test::WatchedLoop loop{machine.loop};
    test::ScriptedProcessTable nobody; // the desktop of who runs the test is left alone
    cameras::CameraDaemons daemons{nobody, machine.queues};
    cameras::GPhoto2Program program{cameras::GPhoto2Machine{.children = machine.children,
                                                            .daemons = daemons,
                                                            .queues = machine.queues,
                                                            .loop = loop,
                                                            .clock = machine.clock,
                                                            .settings = settings,
                                                            .folders = folders,
                                                            .files = machine.files,
                                                            .programFolder = programsBelow(root.path())}};
    ports::Ports ports = test::portsBut(machine.all, loop);
    rig::RigModel rig{ports, "9.9", {std::make_shared<rig::GPhoto2Family>(program, machine.usb)}};
    std::vector<std::string> lines;

    void SetUp() override {
        rig.log().lineAdded().connect([this](const std::string& line) { lines.push_back(line); });
        machine.usb.watch([this] {
            rig.reconnect().busChanged();
            rig.heldSessions().lookForGone();
        });
        rig.site().choose("2100-09-04", rig.site().site()); // far ahead, so that a run is not over
        rig.recompute();
        rig.fireClock().startClock();
    }
    void TearDown() override {
        machine.usb.watch({});
        rig.handleAppWillTerminate();
        EXPECT_TRUE(serveUntil([] { return test::childless(); }));
        for (const auto& camera : rig.roster().cameras())
            bus.pull(camera->serial());
        if (HasFailure())
            for (const std::string& line : lines)
                std::printf("  %s\n", line.c_str());
    }

    bool logged(const std::string& part) const {
        return std::ranges::any_of(lines, [&](const auto& line) { return line.find(part) != line.npos; });
    }
    rig::CameraRoster::Camera body(const std::string& serial) {
        const auto& cameras = rig.roster().cameras();
        const auto found = std::ranges::find(cameras, serial, [](const auto& one) { return one->serial(); });
        return found == cameras.end() ? nullptr : *found;
    }
    void detect(std::size_t bodies) {
        rig.detector().detectCameras();
        ASSERT_TRUE(serveUntil([&] { return !rig.detector().detecting().get(); }));
        ASSERT_EQ(rig.roster().cameras().size(), bodies);
    }
    /// A live run with a frame a second on each label.
    void arm(const std::vector<std::string>& labels, int frames) {
        const base::Instant first = machine.clock.now() + base::Seconds{2};
        const std::string when = base::formatTime("%Y-%m-%d %H:%M:%S", first, absl::UTCTimeZone());
        std::string script = absl::StrFormat("FOR,(INTERVALOMETER),0,1,%d\n", frames);
        for (const std::string& label : labels)
            script += "TAKEPIC,A " + when + ",+,00:00," + label + ",1/500,8.0,200,0.000,RAW,None,Y,live\n";
        rig.script().load(script + "ENDFOR\n", "live");
        rig.recompute();
        rig.transport().armRealEclipseTiming(true);
    }
    static std::string read(const std::filesystem::path& path) {
        std::ifstream file(path);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// The gphoto2 processes that are held open here; another test beside this one may have its own.
    static std::vector<pid_t> sessions() {
        const std::string childOfOurs = " " + std::to_string(::getpid()) + " ";
        std::vector<pid_t> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            const std::string words = read(entry.path() / "cmdline");
            if (words.find("gphoto2") == words.npos || words.find("--shell") == words.npos)
                continue;
            const std::string state = read(entry.path() / "stat"); // "7 (name) S 5 ...", 5 the parent
            const std::size_t name = state.rfind(')');
            if (name != state.npos && state.compare(name + 3, childOfOurs.size(), childOfOurs) == 0)
                found.push_back(std::stoi(entry.path().filename()));
        }
        return found;
    }
    /// How many rows of the run log a body has with a result, and a note that says such a thing.
    int rows(const std::string& serial, const std::string& result, const std::string& note = "") {
        rig.logbook().drain(base::Seconds{5});
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folders.runLogs())) {
            std::ifstream file(entry.path());
            for (std::string line; entry.path().extension() == ".csv" && std::getline(file, line);)
                count += line.find("," + serial + ",gphoto2,") != line.npos &&
                         line.find("," + result + ",") != line.npos && line.find(note) != line.npos;
        }
        return count;
    }
};

} // namespace

TEST_F(RealGphoto2, aPulledBodyIsBackByItselfWhileTheOtherGoesOnFiring) {
    bus.plug("6012345", "NIKON", "NIKON DSC Z 8", nikon, 5);
    bus.plug("F77", "FUJIFILM", "X-T5", fujifilm, 6);
    detect(2);
    ASSERT_TRUE(body("6012345") && body("F77"));
    EXPECT_EQ(body("6012345")->model(), "Nikon DSC Z 8");
    EXPECT_EQ(body("F77")->model(), "Fujifilm X-T5");
    rig.roster().setLabelOfSerial("6012345", "CAM1");
    rig.roster().setLabelOfSerial("F77", "CAM2");
    const std::string held = body("6012345")->id();
    ASSERT_TRUE(serveUntil([&] { return rig.modes().of(held).batteryPercent == 84; }));
    EXPECT_EQ(rig.modes().of(held).modeName, "M");

    arm({"CAM1", "CAM2"}, 40);
    ASSERT_TRUE(serveUntil([&] { return rows("6012345", "ok") >= 3 && rows("F77", "ok") >= 3; }));
    EXPECT_EQ(bus.tell("6012345", "iso"), 200);
    EXPECT_EQ(bus.tell("6012345", "fNumber"), 800);
    EXPECT_EQ(bus.tell("6012345", "time"), 20);
    EXPECT_EQ(bus.tell("F77", "iso"), 200);
    EXPECT_EQ(bus.tell("F77", "time"), 20);

    const int before = bus.tell("6012345", "shots");
    bus.pull("6012345");
    ASSERT_TRUE(serveUntil([&] { return logged("🔌 Reconnecting CAM1"); }));
    const int others = bus.tell("F77", "shots");
    ASSERT_TRUE(serveUntil([&] { return bus.tell("F77", "shots") >= others + 4; }));
    EXPECT_TRUE(logged("🛑 CAMERA DISCONNECTED: CAM1"));
    EXPECT_TRUE(rig.reconnect().showDisconnectAlarm().get());

    bus.plug("6012345", "NIKON", "NIKON DSC Z 8", nikon, 9);
    ASSERT_TRUE(serveUntil([&] { return logged("✅ RECONNECTED CAM1"); }));
    EXPECT_EQ(body("6012345")->port(), "usb:001,009");
    EXPECT_FALSE(rig.reconnect().showDisconnectAlarm().get());
    ASSERT_TRUE(serveUntil([&] { return bus.tell("6012345", "shots") >= 3; }));
    EXPECT_EQ(bus.tell("6012345", "iso"), 200) << "the first frame sends all settings";
    EXPECT_EQ(bus.tell("6012345", "fNumber"), 800);
    EXPECT_EQ(bus.tell("6012345", "time"), 20);

    rig.transport().useSimulatedTiming();
    EXPECT_TRUE(serveUntil([&] {
        return rows("6012345", "ok") == before + bus.tell("6012345", "shots") &&
               rows("F77", "ok") == bus.tell("F77", "shots");
    })) << "each frame that the bodies took is a row, and no other";
    // A loaded machine may need longer than a second for a frame, which costs the next one and nothing else.
    EXPECT_EQ(rows("F77", "dropped"), rows("F77", "dropped", "camera busy"));
    EXPECT_GE(rows("6012345", "dropped"), 3);
}

TEST_F(RealGphoto2, aBodyThatHangsIsResetAndTakenBack) {
    bus.plug("F77", "FUJIFILM", "X-T5", fujifilm, 11);
    detect(1);
    rig.roster().setLabelOfSerial("F77", "CAM1");
    cameras::CaptureOutcome first; // behind it nobody reads the body any more
    body("F77")->capture({.iso = 200}, [&](const cameras::CaptureOutcome& came) { first = came; });
    ASSERT_TRUE(serveUntil([&] { return first.ok; })) << first.note;
    bus.silence("F77");
    rig.reconnect().requestReconnect(body("F77"));
    ASSERT_TRUE(serveUntil([&] { return logged("✅ RECONNECTED CAM1"); }));
    EXPECT_TRUE(logged("CAM1: its USB link was stuck and has been reset."));
    cameras::CaptureOutcome outcome;
    body("F77")->capture({.iso = 400}, [&](const cameras::CaptureOutcome& came) { outcome = came; });
    EXPECT_TRUE(serveUntil([&] { return outcome.ok; })) << outcome.note;
    EXPECT_EQ(bus.tell("F77", "shots"), 2);
    EXPECT_EQ(bus.tell("F77", "iso"), 400);
}

TEST_F(RealGphoto2, aKilledSessionCostsSomeFramesAndNoMore) {
    bus.plug("6012345", "NIKON", "NIKON DSC Z 8", nikon, 12);
    detect(1);
    rig.roster().setLabelOfSerial("6012345", "CAM1");
    arm({"CAM1"}, 40);
    ASSERT_TRUE(serveUntil([&] { return rows("6012345", "ok") >= 2; })); // and no frame is under way
    const auto held = sessions();
    ASSERT_EQ(held.size(), 1U);
    ASSERT_EQ(::kill(held.front(), SIGKILL), 0);
    const int before = bus.tell("6012345", "shots");
    ASSERT_TRUE(serveUntil([&] { return bus.tell("6012345", "shots") >= before + 3; }));
    EXPECT_THAT(sessions(), Not(Contains(held.front())));
    rig.transport().useSimulatedTiming();
    EXPECT_TRUE(serveUntil([&] { return rows("6012345", "ok") == bus.tell("6012345", "shots"); }));
}

TEST_F(RealGphoto2, aBodyThatNeverAnswersHoldsUpNeitherDetectNorTheEnd) {
    bus.plug("6012345", "NIKON", "NIKON DSC Z 8", nikon, 13);
    bus.silence("6012345");
    detect(1);
    ASSERT_TRUE(serveUntil([&] { return !sessions().empty(); }));
    const auto begin = std::chrono::steady_clock::now();
    detect(1);
    rig.handleAppWillTerminate();
    EXPECT_TRUE(serveUntil([] { return test::childless(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)) << "its start has 12 s";
}
