#include "GPhoto2Bench.h"

#include <algorithm>

using namespace zenka;
using namespace zenka::cameras;
using test::fullAnswer;
using test::GPhoto2Bench;
using test::totality;
using Answer = test::ScriptedChildren::Answer;

namespace {

struct GPhoto2CameraTest : testing::Test {
    GPhoto2Bench bench;
    std::string refusal; // of every fire while it is not empty

    GPhoto2CameraTest() {
        bench.children.answer = [this](const std::string& command) -> Answer {
            if (command.starts_with("trigger-capture") && !refusal.empty())
                return {.text = refusal};
            return fullAnswer(command);
        };
    }
    std::size_t shellsStarted() const { return bench.children.starts.size(); }
};

} // namespace

TEST_F(GPhoto2CameraTest, aWarmBodyFiresThroughItsHeldSession) {
    const auto camera = bench.body();
    EXPECT_FALSE(camera->armed());
    camera->warmUp();
    bench.run(1);
    EXPECT_TRUE(camera->armed());
    EXPECT_EQ(camera->tookControl(), true);
    EXPECT_EQ(camera->exposureChoices().shutterFraction.size(), 7U);
    bench.sent();

    const CaptureOutcome outcome = bench.shoot(*camera, totality);
    EXPECT_TRUE(outcome.ok && outcome.responded);
    EXPECT_EQ(outcome.sentShutter, "shutterspeed2=1/500");
    EXPECT_NEAR(outcome.latencyMs, 8, 0.5) << "four commands of 2 ms";
    EXPECT_EQ(camera->shotCount(), 1);
    EXPECT_EQ(shellsStarted(), 1U);
    EXPECT_EQ(bench.sent(),
              (std::vector<std::string>{"set-config-value iso=200", "set-config-value f-number=f/8",
                                        "set-config-value shutterspeed2=1/500", "trigger-capture"}));
    camera->forceFullExposureNextFrame();
    EXPECT_TRUE(bench.shoot(*camera, totality).ok);
    EXPECT_EQ(bench.sent().size(), 4U);

    camera->disconnect();
    EXPECT_EQ(bench.shoot(*camera).note, "the camera was let go");
    EXPECT_FALSE(camera->armed());
    EXPECT_EQ(bench.children.living, 0);
}

TEST_F(GPhoto2CameraTest, aSecondShotIsRefusedWhileOneIsInHand) {
    const auto camera = bench.body();
    std::vector<CaptureOutcome> outcomes;
    const auto keep = [&](const CaptureOutcome& outcome) { outcomes.push_back(outcome); };
    camera->capture(totality, keep);
    camera->capture(totality, keep);
    EXPECT_TRUE(outcomes.empty());
    bench.run(1);
    ASSERT_EQ(outcomes.size(), 2U);
    const bool firstRefused = outcomes[0].note == "dropped, camera busy";
    EXPECT_TRUE(outcomes[firstRefused ? 1 : 0].ok);
    EXPECT_EQ(outcomes[firstRefused ? 0 : 1],
              (CaptureOutcome{.note = "dropped, camera busy", .responded = true}));
    EXPECT_TRUE(bench.shoot(*camera).ok);
}

TEST_F(GPhoto2CameraTest, aShotCompletesOnceThoughItsCameraIsGone) {
    auto camera = bench.body();
    int completions = 0;
    camera->capture(totality, [&](const CaptureOutcome&) { ++completions; });
    camera.reset();
    bench.run(30);
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(bench.children.living, 0);
}

TEST_F(GPhoto2CameraTest, aSuspendedBodyHoldsNothingAndGoesOnAfterwardsWithAllItsSettings) {
    const auto camera = bench.body();
    camera->warmUp();
    bench.run(1);
    EXPECT_TRUE(bench.shoot(*camera, totality).ok);
    bench.sent();
    camera->suspend();
    bench.run(1);
    EXPECT_EQ(bench.children.living, 0);
    EXPECT_EQ(bench.shoot(*camera, totality).note, "the camera was let go");
    camera->resume();
    bench.run(5);
    EXPECT_TRUE(camera->armed());
    bench.sent();
    EXPECT_TRUE(bench.shoot(*camera, totality).ok);
    EXPECT_EQ(bench.sent().size(), 4U);
    camera->disconnect();
    camera->resume();
    bench.run(5);
    EXPECT_FALSE(camera->armed()) << "one that was let go of for good stays so";
}

TEST_F(GPhoto2CameraTest, backOffGrowsFasterForABodyThatHasFired) {
    EXPECT_EQ(GPhoto2Worker::backOffSec(0, true), 0);
    EXPECT_EQ(GPhoto2Worker::backOffSec(1, true), 4);
    EXPECT_EQ(GPhoto2Worker::backOffSec(3, true), 16);
    EXPECT_EQ(GPhoto2Worker::backOffSec(6, true), 90);
    EXPECT_EQ(GPhoto2Worker::backOffSec(5000, true), 90);
    EXPECT_EQ(GPhoto2Worker::backOffSec(3, false), 4.5);
    EXPECT_EQ(GPhoto2Worker::backOffSec(5, false), 6);
}

TEST_F(GPhoto2CameraTest, aSessionThatCannotBeBuiltIsTriedAgainOnlyAfterItsBackOff) {
    const auto camera = bench.body();
    bench.children.launchFault = "No such file";
    const CaptureOutcome unclaimed = bench.shoot(*camera);
    EXPECT_EQ(unclaimed.note, "couldn't claim the camera (session rebuild failed)");
    EXPECT_FALSE(unclaimed.responded);
    EXPECT_NEAR(unclaimed.latencyMs, 150, 0.1);
    const CaptureOutcome held = bench.shoot(*camera);
    EXPECT_EQ(held.note, "camera recovering — backing off 1.5s to avoid wedging it");
    EXPECT_FALSE(held.responded);
    bench.children.launchFault.clear();
    bench.run(1.5);
    EXPECT_TRUE(bench.shoot(*camera).ok);
}

TEST_F(GPhoto2CameraTest, aBodyThatCannotBeClaimedIsToldWithWhatMayHoldIt) {
    const auto camera = bench.body();
    bench.processes.list = {{.id = 16, .name = "darktable", .mine = true}};
    bench.children.launchFault = "No such file";
    camera->warmUp();
    bench.run(3);
    EXPECT_TRUE(bench.warnings.empty()) << "it is tried three times";
    bench.run(3);
    EXPECT_EQ(bench.warnings,
              std::vector<std::string>{"Nikon DSC D750: the camera could not be claimed. These "
                                       "programs take hold of cameras: darktable. Quit them, "
                                       "then Detect again."});
    EXPECT_TRUE(bench.processes.ended.empty());
}

TEST_F(GPhoto2CameraTest, aFreshSessionMaySettleAndOneThatHasFiredMayNot) {
    const auto camera = bench.body();
    refusal = "ERROR: Could not trigger capture.\n";
    for (int shot = 1; shot <= 40; ++shot)
        EXPECT_EQ(bench.shoot(*camera).note, "Could not trigger capture.") << shot;
    EXPECT_EQ(shellsStarted(), 1U);
    EXPECT_FALSE(camera->armed()) << "dropped at the fortieth";

    refusal.clear();
    bench.run(10);
    EXPECT_TRUE(bench.shoot(*camera).ok);
    EXPECT_EQ(shellsStarted(), 2U);
    refusal = "ERROR: Could not trigger capture.\n";
    bench.shoot(*camera);
    EXPECT_TRUE(camera->armed());
    bench.shoot(*camera);
    EXPECT_FALSE(camera->armed()) << "dropped at the second";
    EXPECT_EQ(bench.shoot(*camera).note.substr(0, 43), "camera recovering — backing off 8s to avo");
}

TEST_F(GPhoto2CameraTest, aBodyBusyWithItsCardKeepsItsSessionForEightTimeouts) {
    const auto camera = bench.body();
    ASSERT_TRUE(bench.shoot(*camera).ok);
    bench.children.answer = [](const std::string&) { return Answer{.seconds = 1000}; };
    for (int shot = 1; shot <= 8; ++shot) {
        EXPECT_NEAR(bench.shoot(*camera).latencyMs, 12000, 1);
        EXPECT_TRUE(camera->armed()) << shot;
    }
    bench.shoot(*camera);
    EXPECT_FALSE(camera->armed());
    EXPECT_EQ(bench.children.living, 0);
}

TEST_F(GPhoto2CameraTest, aBodyThatNeverFiredLosesItsSessionAtTheFirstTimeout) {
    const auto camera = bench.body();
    bench.children.answer = [](const std::string& command) {
        return command == "trigger-capture" ? Answer{.hangs = true} : fullAnswer(command);
    };
    EXPECT_FALSE(bench.shoot(*camera).responded);
    EXPECT_FALSE(camera->armed());
    EXPECT_EQ(bench.children.living, 0);
}

TEST_F(GPhoto2CameraTest, warmUpTriesThreeTimesTwoSecondsApart) {
    const auto camera = bench.body();
    bench.children.promptless = true;
    camera->warmUp();
    bench.run(60);
    EXPECT_EQ(shellsStarted(), 3U);
    EXPECT_FALSE(camera->armed());
    bench.children.promptless = false;
    camera->warmUp();
    bench.run(1);
    EXPECT_TRUE(camera->armed());
    EXPECT_TRUE(bench.shoot(*camera).ok) << "no back-off after a warm-up";
}

TEST_F(GPhoto2CameraTest, otherBrandsFireByARunOfTheProgramForEachShot) {
    const auto camera = bench.body("Canon EOS R5");
    std::vector<std::vector<std::string>> runs;
    test::ScriptedChildren::Single result;
    bench.children.single = [&](const std::vector<std::string>& arguments) {
        runs.push_back(arguments);
        return result;
    };
    const CaptureOutcome good = bench.shoot(*camera, {.iso = 400, .shutterSec = 0.5, .expComp = 1});
    EXPECT_TRUE(good.ok);
    EXPECT_EQ(good.sentShutter, "per-shot shutterspeed=1/2");
    EXPECT_EQ(runs.back(),
              (std::vector<std::string>{"--port", "usb:001,004", "--set-config-value", "iso=400",
                                        "--set-config-value", "exposurecompensation=1", "--set-config-value",
                                        "shutterspeed=1/2", "--trigger-capture"}));
    result = {.code = 1,
              .err = "\n*** Error ***              \nCould not detect any camera\n"
                     "*** Error (-105: 'Unknown model') ***       \n\n"};
    const CaptureOutcome gone = bench.shoot(*camera, {.shutterSec = 3, .bulb = true});
    EXPECT_EQ(runs.back().back(), "--wait-event=3000ms");
    EXPECT_EQ(gone.note, "*** Error (-105: 'Unknown model') ***");
    EXPECT_TRUE(gone.deviceGone && !gone.responded);

    result = {.code = 1, .err = "Could not claim the USB device\n"};
    runs.clear();
    EXPECT_TRUE(bench.shoot(*camera).deviceGone);
    EXPECT_EQ(runs.size(), 2U) << "a claim is tried twice";
    result = {.code = 3};
    EXPECT_EQ(bench.shoot(*camera).note, "gphoto2 error 3");
    result = {.seconds = 100};
    EXPECT_EQ(bench.shoot(*camera).note,
              "timed out after 12s, camera busy or unresponsive (skipped to recover)");
    EXPECT_EQ(bench.children.living, 0);
}

TEST_F(GPhoto2CameraTest, choicesAreRememberedByModelAndALyingListIsForgotten) {
    const std::string model = "Nikon DSC D750";
    {
        const auto camera = bench.body();
        EXPECT_EQ(camera->readExposureChoices().shutter.size(), 7U);
        EXPECT_EQ(camera->lastProfileError(), "");
        bench.run(1);
    }
    const auto again = bench.body();
    EXPECT_EQ(again->exposureChoices().shutter.size(), 7U);
    EXPECT_TRUE(again->exposureChoices().aperture.empty()) << "they are the lens's";
    EXPECT_TRUE(bench.body("Nikon Z 9")->exposureChoices().empty());

    bench.ports.settings.setText("eclipse.choices.shutter." + model, R"(["1/60"])");
    EXPECT_TRUE(bench.body()->exposureChoices().empty());
    EXPECT_EQ(bench.events, (std::vector<std::string>{"poisoned_shutter_cache count=1 model=" + model}));
    EXPECT_EQ(bench.ports.settings.number("eclipse.choices.v." + model), std::nullopt);
}

TEST_F(GPhoto2CameraTest, aLadderOfOneIsReportedAndNotBelieved) {
    bench.children.answer = [](const std::string& command) -> Answer {
        return command == "get-config shutterspeed" ? Answer{.text = "Choice: 0 1/60\n"}
                                                    : fullAnswer(command);
    };
    bench.program.modelStats().set({{"Nikon DSC D750", 53}});
    const auto camera = bench.body();
    camera->warmUp();
    bench.run(1);
    ASSERT_EQ(bench.warnings.size(), 1U);
    EXPECT_TRUE(bench.warnings[0].starts_with("Nikon DSC D750: the camera reported only 1 shutter speed(s)"));
    EXPECT_EQ(bench.events,
              (std::vector<std::string>{"degenerate_shutter_ladder count=1 known=53 model=Nikon DSC D750"}));
    EXPECT_NE(bench.files.only(".txt").find("--- list-config"), std::string::npos);
    EXPECT_EQ(bench.shoot(*camera, totality).sentShutter, "shutterspeed=1/500") << "as written";

    // After the third time it is not asked again.
    for (int read = 0; read < 2; ++read)
        camera->readExposureChoices();
    EXPECT_EQ(camera->lastProfileError(),
              "The camera claimed but returned no value lists (this body driver doesn't expose them).");
    bench.run(1);
    const auto later = bench.body();
    bench.children.commands.clear();
    later->warmUp();
    bench.run(1);
    EXPECT_EQ(std::ranges::count(bench.children.commands, "get-config shutterspeed"), 0);
}

TEST_F(GPhoto2CameraTest, probesAnswerOnTheMainThreadAndNilWithoutASession) {
    const auto camera = bench.body();
    std::map<std::string, std::string> values;
    bench.children.answer = [&](const std::string& command) -> Answer {
        const auto found = values.find(command.substr(command.find(' ') + 1));
        return found == values.end() ? Answer{} : Answer{.text = "Current: " + found->second + "\n"};
    };
    const auto probeISO = [&] {
        AutoIsoStatus got;
        camera->probeAutoISO([&](const AutoIsoStatus& status) {
            EXPECT_TRUE(bench.ports.loop.onMainThread());
            got = status;
        });
        bench.settle();
        return std::pair(got.isAuto, got.detail);
    };
    using Got = std::pair<std::optional<bool>, std::optional<std::string>>;
    EXPECT_EQ(probeISO(), Got());
    camera->warmUp();
    bench.run(1);
    EXPECT_EQ(probeISO(), Got());
    values = {{"autoiso", "On"}, {"iso", "200"}};
    EXPECT_EQ(probeISO(), Got(true, "Auto-ISO on"));
    values = {{"autoiso", "Off"}, {"iso", "Auto"}};
    EXPECT_EQ(probeISO(), Got(true, "ISO set to Auto"));
    values = {{"autoiso", "Off"}, {"iso", "200"}};
    EXPECT_EQ(probeISO(), Got(false, "Auto-ISO off"));
    values = {{"iso", "200"}, {"expprogram", "A"}, {"batterylevel", "80%"}};
    EXPECT_EQ(probeISO(), Got(false, "ISO 200"));
    CameraStatus status;
    camera->probe([&](const CameraStatus& said) { status = said; });
    bench.settle();
    EXPECT_EQ(status.isManual, false);
    EXPECT_EQ(status.modeName, "A");
    EXPECT_EQ(status.batteryPercent, 80);
    for (const char* unknown : {"Low", "", "-1%", "101%", "80 of 100"}) {
        values["batterylevel"] = unknown;
        camera->probe([&](const CameraStatus& said) { status = said; });
        bench.settle();
        EXPECT_EQ(status.batteryPercent, std::nullopt) << unknown;
    }
}

TEST_F(GPhoto2CameraTest, aSessionWithoutASignOfLifeIsDroppedAndReportedOnce) {
    const auto camera = bench.body();
    for (int round = 0; round < 2; ++round) {
        bench.children.answer = fullAnswer;
        camera->warmUp();
        bench.run(1);
        ASSERT_TRUE(camera->armed());
        camera->keepAlive();
        bench.run(1);
        EXPECT_TRUE(camera->armed());
        bench.children.answer = [](const std::string&) { return Answer{.hangs = true}; };
        camera->keepAlive();
        bench.run(1);
        EXPECT_FALSE(camera->armed());
    }
    EXPECT_EQ(bench.events, (std::vector<std::string>{"error kind=gp_ping_failed model=Nikon DSC D750"}));
    EXPECT_EQ(bench.children.living, 0);
}

TEST(GPhoto2Program, aWedgedPortIsResetOnceAMinute) {
    GPhoto2Bench bench;
    std::vector<std::string> verbs;
    bool wedged = true;
    bench.children.single = [&](const std::vector<std::string>& arguments) {
        verbs.push_back(arguments.back());
        if (arguments.back() == "--reset")
            wedged = false;
        return test::ScriptedChildren::Single{.code = wedged ? 1 : 0};
    };
    auto alive = bench.program.aliveWithWedgeRecovery("usb:001,004");
    EXPECT_TRUE(alive.alive && alive.resetRevived);
    EXPECT_EQ(verbs, (std::vector<std::string>{"--summary", "--reset", "--summary"}));
    wedged = true;
    verbs.clear();
    EXPECT_FALSE(bench.program.aliveWithWedgeRecovery("usb:001,004").alive);
    EXPECT_EQ(verbs.size(), 1U);
    EXPECT_TRUE(bench.program.shouldAttemptUSBReset("usb:001,009", base::Seconds{60}));
    bench.run(60);
    alive = bench.program.aliveWithWedgeRecovery("usb:001,004");
    EXPECT_TRUE(alive.alive && alive.resetRevived);
    alive = bench.program.aliveWithWedgeRecovery("usb:001,004");
    EXPECT_TRUE(alive.alive && !alive.resetRevived);
}

TEST(CameraDaemons, onlyTheUsersOwnAreEndedAndTheHoldsAreCounted) {
    GPhoto2Bench bench;
    bench.processes.list = {{.id = 11, .name = "gvfs-gphoto2-volume-monitor", .mine = true},
                            {.id = 12, .name = "gvfsd-gphoto2", .mine = false},
                            {.id = 13, .name = "gvfs-gphoto2-vo", .mine = true},
                            {.id = 14, .name = "gvfsd-mtp", .mine = true},
                            {.id = 15, .name = "kio_camera", .mine = true},
                            {.id = 16, .name = "darktable", .mine = true}};
    bench.daemons.killCameraDaemons();
    EXPECT_EQ(bench.processes.ended, (std::vector<int>{11, 13, 15}));
    EXPECT_EQ(bench.daemons.cameraGrabbingProcesses()->size(), 5U);

    bench.processes.scans = 0;
    bench.daemons.stopDaemonSuppressor(); // one too many
    bench.daemons.startDaemonSuppressor();
    bench.daemons.startDaemonSuppressor();
    bench.run(0.31);
    EXPECT_EQ(bench.processes.scans, 3) << "at once and every 150 ms, one timer for all";
    bench.daemons.stopDaemonSuppressor();
    bench.run(0.15);
    EXPECT_EQ(bench.processes.scans, 4);
    bench.daemons.stopDaemonSuppressor();
    bench.run(5);
    EXPECT_EQ(bench.processes.scans, 4);
    bench.daemons.startDaemonSuppressor();
    bench.run(0);
    EXPECT_EQ(bench.processes.scans, 5);
    bench.daemons.stopDaemonSuppressor();

    bench.processes.list = std::nullopt;
    EXPECT_EQ(bench.daemons.cameraGrabbingProcesses(), std::nullopt);
}
