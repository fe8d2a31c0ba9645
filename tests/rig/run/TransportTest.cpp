#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using rig::TimingMode;
using test::VirtualRig;

TEST(Transport, aSimulationEndsThirtySecondsAfterItsLastFrameAndPlayBeginsItAnew) {
    VirtualRig rig;
    rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(20));
    rig.playFrom(0);
    rig.run(49.9);
    EXPECT_TRUE(rig.model.transport().playing().get());
    rig.run(0.2);
    EXPECT_FALSE(rig.model.transport().playing().get());
    EXPECT_DOUBLE_EQ(rig.model.transport().clock(), 50) << "the clock is held at the end";
    EXPECT_TRUE(rig.model.logbook().pendingSurvey().get()) << "completed";
    rig.model.transport().togglePlay();
    EXPECT_NEAR(rig.model.transport().clock(), -20, 1e-9);
}

TEST(Transport, withoutCapturesTheTimelineSpansTheContacts) {
    VirtualRig rig;
    auto& transport = rig.model.transport();
    transport.scrubTo(rig.model.site().tC4() + 600);
    transport.togglePlay();
    EXPECT_DOUBLE_EQ(transport.clock(), rig.model.site().tC1() - 600);
}

TEST(Transport, aSiteThatSeesNothingHasAWorkingTimeline) {
    VirtualRig rig;
    rig.model.site().setSite(
        {.lat = -41, .lon = 174, .elev = 0, .label = "Wellington", .tzId = "Pacific/Auckland"});
    rig.model.recompute();
    EXPECT_DOUBLE_EQ(rig.model.site().tC1(), -7200);
    EXPECT_DOUBLE_EQ(rig.model.site().tC4(), 7200);
    EXPECT_EQ(rig.model.site().curve().size(), 241U);
    rig.model.transport().togglePlay();
    rig.run(1);
    EXPECT_NEAR(rig.model.transport().clock(), -7199, 0.06);
}

TEST(Transport, jumpsToContactsAndLocalTimesOnlyInSimulation) {
    VirtualRig rig;
    auto& transport = rig.model.transport();
    const auto& contacts = rig.model.site().contactTHours();
    transport.jump("C2");
    EXPECT_DOUBLE_EQ(transport.clock(), contacts.at("C2") * 3600);
    transport.jump("C9");
    EXPECT_DOUBLE_EQ(transport.clock(), contacts.at("C2") * 3600) << "an unknown contact does nothing";

    EXPECT_TRUE(transport.jumpToLocalTime(" 20:05 "));
    EXPECT_NEAR(transport.clock(), rig.model.site().clockAt({1786557900}), 1e-6); // 18:05 UTC
    EXPECT_TRUE(transport.jumpToLocalTime("20:05:30"));
    EXPECT_NEAR(transport.clock(), rig.model.site().clockAt({1786557930}), 1e-6);
    EXPECT_TRUE(transport.jumpToLocalTime("03:00"));
    EXPECT_DOUBLE_EQ(transport.clock(), rig.model.site().tC1() - 600) << "clamped to the timeline";
    for (const char* bad : {"24:00", "14:60", "14", "", "14:-5", "+1:05", "14:5x", "1:2:3:4", "14:00:60"})
        EXPECT_FALSE(transport.jumpToLocalTime(bad)) << bad;

    transport.armRealEclipseTiming(false);
    const double before = transport.clock();
    transport.jump("C2");
    EXPECT_FALSE(transport.jumpToLocalTime("20:05"));
    transport.scrubTo(0);
    EXPECT_DOUBLE_EQ(transport.clock(), before);
    EXPECT_EQ(rig.countLines("Timeline jumps are disabled in LIVE timing"), 2);
}

TEST(Transport, aLiveClockFollowsRealTimeAndNotTheWallClock) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    auto& transport = rig.model.transport();
    const double now = rig.model.site().clockAt(rig.machine.time.now());
    rig.load(rig.frameAt(now - 5) + rig.frameAt(now + 5) + rig.frameAt(now + 6));
    transport.armRealEclipseTiming(false);
    EXPECT_TRUE(rig.logged("Timing: LIVE. Armed to real eclipse UTC clock"));
    EXPECT_EQ(transport.timingStatus().get(), "LIVE · real eclipse clock");
    EXPECT_NEAR(transport.clock(), now, 1e-6);
    rig.machine.time.setWall(rig.machine.time.now() + base::Seconds{1000}); // somebody sets the clock
    rig.run(5.5);
    EXPECT_NEAR(transport.clock(), now + 5.5, 0.06);
    EXPECT_EQ(body->shots.size(), 1U) << "arming fires only what is still ahead";
    EXPECT_EQ(rig.countLines("SKIPPED"), 0);
    transport.useSimulatedTiming();
    EXPECT_DOUBLE_EQ(transport.clock(), rig.model.site().tC1());
    EXPECT_FALSE(transport.runActive());
    rig.run(1);
    EXPECT_NE(rig.files.only(".json").find("\"run_kind\": \"real\""), std::string::npos);
}

TEST(Transport, aSiteOrEclipseChangedInALiveRunLeavesTheClockWithRealTime) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    auto& transport = rig.model.transport();
    const double now = rig.model.site().clockAt(rig.machine.time.now());
    rig.load(rig.frameAt(now - 500) + rig.frameAt(now - 5) + rig.frameAt(now + 500));
    transport.armRealEclipseTiming(false);
    rig.model.recompute();
    rig.run(1);
    EXPECT_NEAR(transport.clock(), now + 1, 0.06);
    EXPECT_EQ(rig.countLines("SKIPPED"), 0);
    EXPECT_TRUE(body->shots.empty());
    rig.model.site().selectEclipse("2027-08-02");
    rig.run(1);
    EXPECT_NEAR(transport.clock(), rig.model.site().clockAt(rig.machine.time.now()), 0.06);
}

TEST(Transport, theSimulatedClockComesBackForItsEclipseAndWithinItsTimeline) {
    VirtualRig rig;
    rig.load(rig.frameAt(100));
    auto& transport = rig.model.transport();
    auto& settings = rig.machine.settings;
    transport.scrubTo(85.25);
    EXPECT_EQ(settings.text(rig::settingsKeys::simClock), "2026-08-12|85.25");
    transport.playing(); // standing still
    for (const char* ignored :
         {"2027-08-02|90.0", "2026-08-12|131.0", "2026-08-12|69.0", "2026-08-12|x", "", "|"}) {
        settings.setText(rig::settingsKeys::simClock, ignored);
        transport.restoreSimClock();
        EXPECT_DOUBLE_EQ(transport.clock(), 85.25) << ignored;
    }
    settings.setText(rig::settingsKeys::simClock, "2026-08-12|90.5");
    transport.restoreSimClock();
    EXPECT_DOUBLE_EQ(transport.clock(), 90.5);
}

TEST(Transport, keepAwakeFollowsTheRun) {
    VirtualRig rig;
    auto& transport = rig.model.transport();
    transport.togglePlay();
    transport.armRealEclipseTiming(false);
    transport.useSimulatedTiming();
    EXPECT_EQ(
        rig.countLines("☕︎ Keep-awake ON. Display + system idle-sleep disabled while armed/running."), 1);
    EXPECT_EQ(rig.countLines(
                  "☕︎ Keep-awake ON. Display + system idle-sleep disabled while armed/running · timers "
                  "latency-critical (live)."),
              1);
    EXPECT_EQ(rig.countLines("☕︎ Keep-awake off. Idle sleep allowed again."), 1);
}

TEST(RenderPace, redrawsMoreOftenTheNearerTheNextEventIs) {
    VirtualRig rig;
    rig.load(rig.frameAt(100));
    auto& pace = rig.model.renderPace();
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 2.0);
    rig.playFrom(0);
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 0.5);
    rig.run(80);
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 1.0 / 3);
    rig.run(17);
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 0.125);
    pace.setThermalState(ports::ThermalState::critical);
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 0.5);
    pace.setThermalState(ports::ThermalState::nominal);
    const auto before = pace.renderTick().get();
    rig.run(1);
    EXPECT_NEAR(static_cast<double>(pace.renderTick().get() - before), 7, 1);
    pace.setSheetCoveringDashboard(true);
    EXPECT_DOUBLE_EQ(pace.renderInterval(), 0.5);
}
