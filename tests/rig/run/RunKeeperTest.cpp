#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using rig::RunState;
using test::VirtualRig;

namespace {

/// What a process leaves behind when it is killed, taken over by the next one.
void takeOver(VirtualRig& next, const VirtualRig& killed) {
    next.files.contents = killed.files.contents;
    next.machine.time.setWall(killed.machine.time.now());
}

std::filesystem::path stateFile(const VirtualRig& rig) {
    return rig.folders.applicationSupport() / "run-state.json";
}

} // namespace

TEST(RunState, survivesJsonAndADamagedOneIsNone) {
    RunState state{.eclipseId = "2026-08-12",
                   .lat = 41.65,
                   .lon = -0.88,
                   .tzId = "Europe/Madrid",
                   .siteLabel = "A \"hill\"",
                   .scriptText = "# two\n# lines\n",
                   .armKind = RunState::ArmKind::real,
                   .anchorWall = {1786559343.25},
                   .anchorClock = 1234.5,
                   .tC4 = 7000,
                   .lastSeen = {1786559400.5},
                   .liveCameras = true,
                   .cameras = {{.serial = "1", .label = "CAM1", .model = "GH6"}},
                   .appVersion = "9.9"};
    const std::string json = toJson(state);
    EXPECT_EQ(rig::runStateFromJson(json), state);
    for (std::size_t length = 0; length + 2 < json.size(); length += 7)
        EXPECT_FALSE(rig::runStateFromJson(std::string_view(json).substr(0, length)));
    EXPECT_FALSE(rig::runStateFromJson("{}"));
    rig::RunStateWriter writer;
    for (const char* script : {"", "\"É\"\t# one\n", "# two\n# lines\n"}) {
        state.scriptText = script;
        EXPECT_EQ(rig::runStateFromJson(writer.toJson(state)), state) << script;
    }
    std::string other = json;
    other.replace(other.find("\"real\""), 6, "\"fake\"");
    EXPECT_FALSE(rig::runStateFromJson(other));
}

TEST(RunState, agesAfterTwoDaysAndARealRunEndsTenMinutesAfterLastContact) {
    RunState state{.armKind = RunState::ArmKind::simulation, .lastSeen = {1000}};
    EXPECT_TRUE(state.isResumable({1000 + 47 * 3600.0}));
    EXPECT_FALSE(state.isResumable({1000 + 48 * 3600.0}));
    EXPECT_FALSE(state.isComplete({1e9}));
    state = {.armKind = RunState::ArmKind::real,
             .anchorWall = {1000},
             .anchorClock = 50,
             .tC4 = 500,
             .lastSeen = {1000}};
    EXPECT_TRUE(state.isResumable({1000 + 1049}));
    EXPECT_FALSE(state.isComplete({1000 + 1049}));
    EXPECT_TRUE(state.isComplete({1000 + 1050}));
    EXPECT_FALSE(state.isResumable({1000 + 1050}));
}

TEST(RunKeeper, aKilledLiveRunIsPickedUpWhereItsClockIsNow) {
    VirtualRig killed;
    killed.addBody("CAM1");
    const double now = killed.model.site().clockAt(killed.machine.time.now());
    const std::string script = killed.frameAt(now + 5) + killed.frameAt(now + 100) +
                               killed.frameAt(now + 400) + killed.frameAt(now + 800);
    killed.load(script);
    killed.model.transport().armRealEclipseTiming(false);
    killed.run(20);

    VirtualRig next;
    takeOver(next, killed);
    next.machine.time.setWall(next.machine.time.now() + base::Seconds{600}); // ten minutes later
    const auto body = next.addBody("CAM1");
    next.model.bootstrap();
    ASSERT_TRUE(next.model.keeper().resumableRun().get());
    next.model.keeper().resumeRun();
    EXPECT_TRUE(next.model.transport().live());
    EXPECT_EQ(next.model.transport().timingStatus().get(), "LIVE · real eclipse clock · resumed");
    EXPECT_EQ(next.model.script().scriptText().get(), script);
    EXPECT_NEAR(next.model.transport().clock(), now + 620, 1e-3);
    EXPECT_TRUE(next.logged("3 past captures skipped, continuing from the next."));
    next.run(200);
    EXPECT_EQ(body->shots.size(), 1U) << "nothing late, and what is ahead on time";
    EXPECT_EQ(next.countLines("SKIPPED"), 0);
    EXPECT_EQ(next.files.count(".csv"), 2) << "the old log stands, and a new one begins";
}

TEST(RunKeeper, aRunThatIsOverIsForgotten) {
    VirtualRig killed;
    killed.model.transport().armRealEclipseTiming(false);
    killed.run(6);
    VirtualRig next;
    takeOver(next, killed);
    next.machine.time.setWall(next.machine.time.now() + base::Seconds{40 * 3600});
    next.model.bootstrap();
    EXPECT_FALSE(next.model.keeper().resumableRun().get());
    next.run(0.1);
    EXPECT_FALSE(next.files.contents.contains(stateFile(next)));
}

TEST(RunKeeper, aKilledSimulationIsOfferedAndWaitsForPlay) {
    VirtualRig killed;
    killed.load(killed.frameAt(100) + killed.frameAt(200));
    killed.playFrom(80);
    killed.run(37.5);
    VirtualRig next;
    takeOver(next, killed);
    next.model.bootstrap();
    ASSERT_TRUE(next.model.keeper().resumableRun().get());
    next.model.keeper().resumeRun();
    EXPECT_NEAR(next.model.transport().clock(), 117.5, 5.1) << "at most five seconds are unknown";
    EXPECT_FALSE(next.model.transport().runActive());
    EXPECT_TRUE(next.logged("▶︎ RESUMED simulation. Clock at "));
    next.run(0.1);
    EXPECT_FALSE(next.files.contents.contains(stateFile(next)));
    next.model.transport().togglePlay();
    next.run(0.1);
    EXPECT_TRUE(next.files.contents.contains(stateFile(next)));
}

TEST(RunKeeper, anOrderlyQuitKeepsARealRunAndForgetsASimulation) {
    VirtualRig simulated;
    simulated.model.transport().togglePlay();
    simulated.run(1);
    simulated.model.handleAppWillTerminate();
    EXPECT_FALSE(simulated.files.contents.contains(stateFile(simulated)));

    VirtualRig real;
    real.model.transport().armRealEclipseTiming(false);
    real.run(1);
    real.model.handleAppWillTerminate();
    EXPECT_TRUE(real.files.contents.contains(stateFile(real)));
}

TEST(RunKeeper, pauseAndTheEndOfALiveRunForgetIt) {
    VirtualRig rig;
    rig.model.transport().togglePlay();
    rig.run(1);
    EXPECT_TRUE(rig.files.contents.contains(stateFile(rig)));
    rig.model.transport().togglePlay();
    rig.run(0.1);
    EXPECT_FALSE(rig.files.contents.contains(stateFile(rig)));
    rig.model.transport().armRealEclipseTiming(false);
    rig.run(4 * 3600); // far past last contact: it stays live, but is not kept any more
    EXPECT_TRUE(rig.model.transport().live());
    EXPECT_FALSE(rig.files.contents.contains(stateFile(rig)));
}

TEST(RunKeeper, aDamagedStateFileIsNoRunAndIsToldOfAndRemoved) {
    VirtualRig live;
    live.model.transport().armRealEclipseTiming(true);
    live.run(1);
    const std::string whole = live.files.contents.at(stateFile(live));
    const auto changed = [&](const std::string& from, const std::string& to) {
        std::string json = whole;
        EXPECT_NE(json.find(from), json.npos) << from;
        return json.replace(json.find(from), from.size(), to);
    };
    for (const std::string& json : {whole.substr(0, 60), changed("\"2026-08-12\"", "\"2026-08-99\""),
                                    changed("\"lat\": 41.65", "\"lat\": 4165"), whole}) {
        VirtualRig rig;
        rig.files.contents[stateFile(rig)] = json;
        rig.machine.time.setWall(live.machine.time.now());
        rig.model.bootstrap();
        rig.run(0.1);
        EXPECT_EQ(rig.model.keeper().resumableRun().get().has_value(), json == whole);
        EXPECT_EQ(rig.files.contents.contains(stateFile(rig)), json == whole);
        EXPECT_EQ(rig.logged("⚠️ The record of the last run could not be read"), json != whole);
    }
}

TEST(RunKeeper, theDayOfAnEclipseIsToldOnceADayAndItIsSelected) {
    VirtualRig rig;
    rig.model.site().selectEclipse("2027-08-02");
    rig.model.keeper().checkEclipseDay(); // the machine's clock is at the eclipse of 2026
    EXPECT_TRUE(rig.model.keeper().showEclipseDay().get());
    EXPECT_EQ(rig.model.site().eclipseId(), "2026-08-12");
    EXPECT_TRUE(rig.logged("📅 It's eclipse day: Total Solar Eclipse of 2026 August 12."));
    rig.model.keeper().dismissEclipseDay();
    rig.model.keeper().checkEclipseDay();
    EXPECT_FALSE(rig.model.keeper().showEclipseDay().get());
    EXPECT_EQ(
        rig.machine.settings.text(std::string(rig::settingsKeys::eclipseDayPromptedPrefix) + "2026-08-12"),
        "2026-08-12");

    rig.model.keeper().eclipseDayLiveNudge();
    rig.model.keeper().eclipseDayLiveNudge();
    EXPECT_EQ(rig.countLines("Timing is still SIMULATED"), 1);
    rig.run(1800);
    rig.model.keeper().eclipseDayLiveNudge();
    EXPECT_EQ(rig.countLines("Timing is still SIMULATED"), 2);
    rig.model.transport().armRealEclipseTiming(false);
    rig.run(1800);
    rig.model.keeper().eclipseDayLiveNudge();
    EXPECT_EQ(rig.countLines("Timing is still SIMULATED"), 2);
}
