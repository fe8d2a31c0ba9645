// Sessions with real child processes: a gphoto2 that misbehaves, and the distribution's own.
#include "cameras/GPhoto2Bench.h"
#include "platform/LinuxChildProcesses.h"
#include "platform/LinuxClock.h"
#include "support/Child.h"
#include "support/TempFolder.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

using namespace zenka;
using namespace zenka::cameras;
using base::Seconds;
namespace fs = std::filesystem;

namespace {

struct GPhoto2ProcessTest : testing::Test {
    test::GPhoto2Bench bench; // its loop, queues and settings
    platform::LinuxChildProcesses children;
    platform::LinuxClock clock;
    test::TempFolder made;
    fs::path root = made.path();

    ~GPhoto2ProcessTest() override {
        ::unsetenv("FAKE_GPHOTO2");
        EXPECT_TRUE(test::childless()) << "a child or a zombie is left";
    }

    GPhoto2Machine machine() {
        GPhoto2Machine base = bench.machine();
        GPhoto2Machine real{.children = children,
                            .daemons = bench.daemons,
                            .queues = bench.ports.queues,
                            .loop = bench.ports.loop,
                            .clock = clock,
                            .settings = bench.ports.settings,
                            .folders = bench.folders,
                            .files = bench.files};
        real.pause = base.pause;
        return real;
    }

    /// A program that plays a scenario, bundled beside an executable.
    GPhoto2Program fake(const char* scenario) {
        ::setenv("FAKE_GPHOTO2", scenario, 1);
        const fs::path bundle = root / "lib/zenka/gphoto2";
        fs::create_directories(bundle / "bin");
        for (const char* plugins : {"lib/libgphoto2/2.5.30", "lib/libgphoto2/2.5.31", "lib/libgphoto2/extra"})
            fs::create_directories(bundle / plugins);
        std::ofstream(bundle / "lib/libgphoto2/2.5.31/ptp2.so") << "x";
        if (!fs::exists(bundle / "bin/gphoto2"))
            fs::create_symlink(ZENKA_SOURCE_DIR "/tests/support/fake_gphoto2", bundle / "bin/gphoto2");
        GPhoto2Machine here = machine();
        here.programFolder = root / "bin";
        return GPhoto2Program(here);
    }

    static double seconds(const std::function<void()>& work) {
        const auto start = std::chrono::steady_clock::now();
        work();
        return Seconds(std::chrono::steady_clock::now() - start).count();
    }
};

constexpr Seconds startLimit{20}; // of a busy machine
constexpr Seconds shotLimit{1};

} // namespace

TEST_F(GPhoto2ProcessTest, aBundledProgramIsUsedWithItsPlugins) {
    GPhoto2Program program = fake("plain");
    const auto result = program.run("usb:001,004", {"--summary"}, startLimit);
    EXPECT_EQ(result.code, 0);
    const std::string plugins = (root / "lib/zenka/gphoto2/lib/libgphoto2/2.5.31").string();
    EXPECT_EQ(result.output.find("--port usb:001,004 --summary\nHOME="), 0U) << result.output;
    EXPECT_NE(result.output.find("COLUMNS=500\nLC_ALL=C\nCAMLIBS=" + plugins + "\n"), std::string::npos)
        << result.output;
}

TEST_F(GPhoto2ProcessTest, aSessionStartsFiresAnswersAndExitsInOrder) {
    for (const char* scenario : {"plain", "half", "slow-start", "flood"}) {
        GPhoto2Program program = fake(scenario);
        GPhoto2Session session(program, {.port = "usb:001,004"});
        ASSERT_TRUE(session.start(startLimit)) << scenario;
        for (int shot = 0; shot < 2; ++shot)
            EXPECT_EQ(session.capture({.iso = 100, .shutterSec = 0.01}, Seconds{20}).note, "") << scenario;
        EXPECT_EQ(session.getConfigChoices("shutterspeed", Seconds{20}).size(), 7U) << scenario;
        EXPECT_TRUE(session.ping()) << scenario;
        session.stop();
        EXPECT_FALSE(session.alive());
    }
}

TEST_F(GPhoto2ProcessTest, latinLettersOfABodyReadAsText) {
    GPhoto2Program program = fake("latin1");
    GPhoto2Session session(program, {.port = "usb:001,004"});
    ASSERT_TRUE(session.start(startLimit));
    EXPECT_EQ(session.getConfigCurrent("artist", startLimit), "André Müller");
}

TEST_F(GPhoto2ProcessTest, aHungShotTimesOutAndTheChildIsGoneAfterwards) {
    for (const char* scenario : {"hang", "loop", "overwrite"}) {
        GPhoto2Program program = fake(scenario);
        GPhoto2Session session(program, {.port = "usb:001,004"});
        ASSERT_TRUE(session.start(startLimit)) << scenario;
        const double took = seconds([&] {
            const auto fired = session.capture({.iso = 100}, shotLimit);
            EXPECT_TRUE(fired.softTimeout) << scenario << ": " << fired.note;
            session.stop();
        });
        EXPECT_LT(took, 10) << scenario;
        EXPECT_TRUE(test::childless()) << scenario;
    }
}

TEST_F(GPhoto2ProcessTest, aShotThatTimedOutLeavesTheNextOneItsOwnAnswer) {
    GPhoto2Program program = fake("late");
    GPhoto2Session session(program, {.port = "usb:001,004"});
    ASSERT_TRUE(session.start(startLimit));
    EXPECT_TRUE(session.capture({}, Seconds{0.3}).softTimeout);
    EXPECT_TRUE(session.capture({}, startLimit).ok);
    EXPECT_EQ(session.getConfigChoices("shutterspeed", startLimit).size(), 7U);
}

TEST_F(GPhoto2ProcessTest, aChildThatDiesMidShotIsToldAtOnce) {
    GPhoto2Program program = fake("die");
    GPhoto2Session session(program, {.port = "usb:001,004"});
    ASSERT_TRUE(session.start(startLimit));
    const auto fired = session.capture({}, Seconds{30});
    EXPECT_EQ(fired.note,
              "session died mid-shot (gphoto2 exited): trigger-capture\ntrigger-capture\nHalf a li");
    session.stop();
}

TEST_F(GPhoto2ProcessTest, noChildOutlivesItsSessionWhateverItDoes) {
    for (const char* scenario : {"stubborn", "deaf", "orphan"}) {
        GPhoto2Program program = fake(scenario);
        GPhoto2Session session(program, {.port = "usb:001,004"});
        ASSERT_TRUE(session.start(startLimit)) << scenario;
        EXPECT_LT(seconds([&] { session.stop(); }), 10) << scenario;
    }
    GPhoto2Program program = fake("no-prompt");
    GPhoto2Session session(program, {.port = "usb:001,004"});
    EXPECT_LT(seconds([&] { EXPECT_FALSE(session.start(Seconds{0.3})); }), 10);
}

TEST_F(GPhoto2ProcessTest, aWaitForTheChildIsCutShortFromAnotherThread) {
    GPhoto2Program program = fake("hang");
    GPhoto2Session session(program, {.port = "usb:001,004"});
    ASSERT_TRUE(session.start(startLimit));
    std::jthread killer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        session.kill();
    });
    EXPECT_LT(seconds([&] { EXPECT_TRUE(session.capture({}, Seconds{60}).sessionBroken); }), 20);
}

TEST_F(GPhoto2ProcessTest, singleRunsAreHeldToTheirLimitAndTriedAgainForAClaim) {
    GPhoto2Program hanging = fake("hang");
    const auto hung = hanging.runOnce("usb:001,004", {"--summary"}, Seconds{0.5});
    EXPECT_EQ(hung.code, -2);
    EXPECT_EQ(hung.errorText, "timed out after 0.5s, camera busy or unresponsive (skipped to recover)");

    ::setenv("FAKE_GPHOTO2_MARK", (root / "claimed once").c_str(), 1);
    EXPECT_TRUE(fake("claim").run("usb:001,004", {"--summary"}, startLimit).ok());

    const auto flood = fake("flood").runOnce("usb:001,004", {"--summary"}, startLimit);
    EXPECT_EQ(flood.code, 0);
    EXPECT_LT(flood.output.size(), std::size_t{5} << 20);
    EXPECT_NE(flood.output.find("\nthe end\n"), std::string::npos);
}

TEST_F(GPhoto2ProcessTest, theRealProgramWithoutACameraSaysWhatWeExpect) {
    if (!fs::exists("/usr/bin/gphoto2"))
        GTEST_SKIP() << "no gphoto2 on this machine; scripts/setup installs it";
    GPhoto2Program program(machine());
    // A machine with a camera plugged in lists it: what is sure is that nothing else is listed.
    for (const GPhoto2Text::Detected& body : program.autodetect())
        EXPECT_TRUE(body.port.starts_with("usb:")) << body.port;
    EXPECT_FALSE(program.runOnce("usb:099,099", {"--summary"}, startLimit).ok());

    GPhoto2Session unplugged(program, {.port = "usb:099,099"});
    EXPECT_FALSE(unplugged.start(startLimit));

    // A card reader's folder counts as a camera, and answers with real prompts.
    fs::create_directories(root / "DCIM");
    GPhoto2Session folder(program, {.port = "disk:" + root.string()});
    const double took = seconds([&] { ASSERT_TRUE(folder.start(startLimit)); });
    RecordProperty("secondsToFirstPrompt", std::to_string(took));
    EXPECT_EQ(folder.capture({.iso = 100, .shutterSec = 0.01}, startLimit).note,
              "Could not trigger capture.");
    EXPECT_EQ(folder.capture({.shutterSec = 0.1, .bulb = true}, startLimit).note,
              "Error (-6: 'Unsupported operation')");
    EXPECT_EQ(folder.getConfigCurrent("iso", startLimit), std::nullopt);
    EXPECT_TRUE(folder.ping());
    folder.stop();

    GPhoto2Session killed(program, {.port = "disk:" + root.string()});
    ASSERT_TRUE(killed.start(startLimit));
    killed.kill();
    EXPECT_TRUE(killed.capture({}, startLimit).sessionBroken);
}
