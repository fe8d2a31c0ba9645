#include "GPhoto2Bench.h"

using namespace zenka;
using namespace zenka::cameras;
using base::Seconds;
using test::fullAnswer;
using test::GPhoto2Bench;
using test::totality;
using Answer = test::ScriptedChildren::Answer;

namespace {

const std::string wholeShot = "set-config-value iso=200\nset-config-value f-number=f/8\n"
                              "set-config-value shutterspeed=1/500\ntrigger-capture\n";

struct SessionTest : testing::Test {
    GPhoto2Bench bench;
    GPhoto2Session session{bench.program, {.port = "usb:001,004"}};

    void start() { ASSERT_TRUE(session.start(Seconds{12})); }
    GPhoto2Session::Fired shoot(const Shot& shot = totality) { return session.capture(shot, Seconds{12}); }
    const std::string& lastWrite() { return bench.children.writes.back(); }
    double now() { return bench.ports.time.continuousSeconds(); }
};

} // namespace

TEST_F(SessionTest, exposureAndFireGoOutInOneWriteAndOnlyChangesAreSent) {
    start();
    const auto writes = bench.children.writes.size();
    EXPECT_TRUE(shoot().ok);
    EXPECT_EQ(bench.children.writes.size(), writes + 1);
    EXPECT_EQ(lastWrite(), wholeShot);
    EXPECT_EQ(session.lastSentShutter(), "shutterspeed=1/500");

    EXPECT_TRUE(shoot().ok);
    EXPECT_EQ(lastWrite(), "trigger-capture\n");
    EXPECT_TRUE(shoot({.iso = 200, .aperture = 8, .shutterSec = 0.004, .expComp = -1.5}).ok);
    EXPECT_EQ(lastWrite(), "set-config-value exposurecompensation=-1.5\nset-config-value shutterspeed=1/250\n"
                           "trigger-capture\n");
    EXPECT_TRUE(shoot({}).ok);
    EXPECT_EQ(lastWrite(), "trigger-capture\n");
    EXPECT_TRUE(shoot({.shutterSec = 2.5, .bulb = true}).ok);
    EXPECT_EQ(lastWrite(), "wait-event 2500ms\n");

    session.forget();
    EXPECT_TRUE(shoot().ok);
    EXPECT_EQ(lastWrite(), wholeShot);
}

TEST_F(SessionTest, aSettingThatABusyBodyRefusedIsSentAgainWithTheNextShot) {
    bench.children.answer = [](const std::string& command) {
        return command.find("iso=") == command.npos
                   ? Answer{}
                   : Answer{.text = "\n*** Error ***              \nbusy\n*** Error (-110: 'I/O in "
                                    "progress') ***\n"};
    };
    start();
    EXPECT_TRUE(shoot().ok);
    EXPECT_TRUE(shoot().ok);
    EXPECT_EQ(lastWrite(), "set-config-value iso=200\ntrigger-capture\n");
}

TEST_F(SessionTest, aRefusedFireForgetsWhatWasSent) {
    start();
    ASSERT_TRUE(shoot().ok);
    bench.children.answer = [](const std::string& command) {
        return command == "trigger-capture" ? Answer{.text = "ERROR: Could not trigger capture.\n"}
                                            : Answer{};
    };
    EXPECT_EQ(shoot(), (GPhoto2Session::Fired{.note = "Could not trigger capture."}));
    bench.children.answer = fullAnswer;
    EXPECT_TRUE(shoot().ok);
    EXPECT_EQ(lastWrite(), wholeShot);
}

TEST_F(SessionTest, promptsThatComeLateAreNotTakenForThoseOfTheNextShot) {
    start();
    int fires = 0;
    bench.children.answer = [&](const std::string& command) -> Answer {
        if (command != "trigger-capture")
            return {};
        ++fires;
        return fires == 1 ? Answer{.seconds = 15}
                          : Answer{.text = "ERROR: Could not trigger capture.\n", .seconds = 1};
    };
    const auto first = shoot();
    EXPECT_EQ(first.note, "timed out after 12s, camera busy or unresponsive (skipped to recover)");
    EXPECT_TRUE(first.sessionBroken && first.softTimeout);
    // Its prompt comes within this one's time, which then waits for its own answer.
    EXPECT_EQ(shoot().note, "Could not trigger capture.");
}

TEST_F(SessionTest, aChildThatDiesInAShotIsToldWithItsLastWords) {
    start();
    bench.children.answer = [](const std::string&) {
        return Answer{.text = "PTP I/O Error\n", .dies = true};
    };
    const auto fired = shoot({});
    EXPECT_EQ(fired.note,
              "session died mid-shot (gphoto2 exited): trigger-capture\ntrigger-capture\nPTP I/O Error");
    EXPECT_TRUE(fired.sessionBroken);
    EXPECT_FALSE(fired.softTimeout);
    EXPECT_EQ(shoot({}).note, "session not running");
    EXPECT_EQ(session.runRaw("summary", Seconds{1}), "<session not alive>");
}

TEST_F(SessionTest, aChildThatTakesNoInputBreaksTheSession) {
    start();
    bench.children.takesInput = false;
    EXPECT_EQ(session.runRaw("summary", Seconds{1}), "<write failed>");
    const auto fired = shoot();
    EXPECT_EQ(fired.note, "write failed: gphoto2 takes no input");
    EXPECT_TRUE(fired.sessionBroken);
}

TEST_F(SessionTest, everyWaitForTheChildEndsAtItsLimit) {
    bench.children.promptless = true;
    GPhoto2Session silent(bench.program, {.port = "usb:001,005"});
    double before = now();
    EXPECT_FALSE(silent.start(Seconds{12}));
    EXPECT_LT(now() - before, 12.6);
    EXPECT_EQ(bench.children.living, 0);
    bench.children.promptless = false;

    start();
    bench.children.answer = [](const std::string&) { return Answer{.hangs = true}; };
    before = now();
    EXPECT_EQ(session.runRaw("summary", Seconds{5}), "<timed out after 5s>");
    EXPECT_FALSE(session.ping());
    EXPECT_NEAR(now() - before, 11, 0.01);
    before = now();
    session.stop(); // it heeds neither "exit" nor the first signal
    EXPECT_LT(now() - before, 0.5);
    EXPECT_EQ(bench.children.killed, 1);
    EXPECT_EQ(bench.children.living, 0);
}

TEST(GPhoto2Session, eachBrandIsHeldInItsOwnWay) {
    GPhoto2Bench bench;
    bench.children.answer = [](const std::string& command) {
        return command.find("controlmode") == command.npos ? Answer{} : Answer{.text = "ERROR: no\n"};
    };
    GPhoto2Session nikon(bench.program, GPhoto2Session::setupFor("usb:001,004", "Nikon DSC D750", 8, {}));
    ASSERT_TRUE(nikon.start(Seconds{12}));
    EXPECT_EQ(bench.children.commands,
              (std::vector<std::string>{"set-config-value /main/actions/controlmode=1",
                                        "set-config capturetarget=1", "set-config-value f-number=f/8"}));
    EXPECT_EQ(nikon.tookControl(), false);
    nikon.stop();

    bench.children.commands.clear();
    bench.children.answer = fullAnswer;
    GPhoto2Session olympus(bench.program, GPhoto2Session::setupFor("usb:001,004", "OM-1", 8, {}));
    ASSERT_TRUE(olympus.start(Seconds{12}));
    EXPECT_TRUE(olympus.capture({}, Seconds{12}).ok);
    bench.children.answer = [](const std::string&) { return Answer{}; };
    EXPECT_EQ(olympus.capture({}, Seconds{12}).note,
              "fired but no frame was stored (capture produced no file)");
    EXPECT_EQ(bench.children.commands,
              (std::vector<std::string>{"set-config capturetarget=1", "capture-image", "capture-image"}));
    EXPECT_EQ(olympus.tookControl(), std::nullopt);
}

TEST(GPhoto2Session, theChildGetsAHomeOfItsOwnAndAWideTerminal) {
    GPhoto2Bench bench;
    const ports::ChildStart start = bench.program.startOf("usb:001,004", {"--shell"});
    EXPECT_EQ(start.arguments, (std::vector<std::string>{"--port", "usb:001,004", "--shell"}));
    EXPECT_EQ(start.environment.at("COLUMNS"), "500");
    EXPECT_EQ(start.environment.at("LC_ALL"), "C");
    EXPECT_EQ(start.environment.at("HOME"), bench.folders.applicationSupport() / "gphoto2" / "usb-001-004");
}
