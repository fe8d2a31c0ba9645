#include "rig/shots/GapProfiler.h"

#include "support/ScriptedFamily.h"
#include "support/TimedCamera.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace zenka;
using rig::GapProfileMode;
using rig::GapSettingsMode;
using test::TimedCamera;
using test::VirtualRig;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

struct GapProfilerTest : testing::Test {
    std::shared_ptr<test::ScriptedFamily> family = std::make_shared<test::ScriptedFamily>();
    VirtualRig rig{{family}};
    rig::MeasuredFloors& floors = rig.model.floors();
    rig::GapProfiler& profiler = rig.model.gapProfiler();

    std::shared_ptr<TimedCamera> add(const TimedCamera::Behave& behave) {
        auto body = std::make_shared<TimedCamera>(rig.machine.loop, rig.machine.time, behave);
        rig.model.roster().add(body);
        rig.model.roster().setLabel(*body, "CAM1");
        return body;
    }

    const std::string& verdict() const { return profiler.gapProfileVerdict().get(); }
    /// To the end of a profile.
    const std::string& profile(const std::string& id = "timed") {
        EXPECT_EQ(profiler.runGapProfile(id), "");
        rig.machine.time.runUntil([&] { return !profiler.gapProfileRunning().get(); }, base::Seconds{2000});
        EXPECT_FALSE(profiler.gapProfileRunning().get());
        return verdict();
    }
    bool nothingStored() const {
        return std::ranges::all_of(
            std::array{"measured", "sustained", "burst", "longFrame"}, [&](const char* kind) {
                return rig.machine.settings.keysBeginningWith(std::string("eclipse.") + kind).empty();
            });
    }
    const std::vector<rig::GapProfileRow>& rows() const { return profiler.gapProfileRows().get(); }

    int linkChecks = 0;
    void answerLinkCheckWith(const rig::LinkState& link) {
        profiler.setCheckLink([this, link](const rig::CameraRoster::Camera&, const auto& done) {
            ++linkChecks;
            rig.machine.loop.after(base::Seconds{6}, [done, link] { done(link); });
        });
    }
};

/// Frames closer than this are dropped.
TimedCamera::Behave dropsUnder(double spacing) {
    return [spacing](double since, int) {
        return TimedCamera::Reply{.afterSec = 0.05, .ok = since > spacing - 1e-6};
    };
}
TimedCamera::Behave takes(double seconds) {
    return [seconds](double, int) { return TimedCamera::Reply{.afterSec = seconds}; };
}
TimedCamera::Behave falls(int silentFrom) {
    return [silentFrom](double, int number) {
        return TimedCamera::Reply{.afterSec = number < silentFrom ? 0.05 : TimedCamera::never};
    };
}

} // namespace

TEST_F(GapProfilerTest, aBodyThatDropsBelowFourTenthsHasItsFloorThere) {
    const auto body = add(dropsUnder(0.4));
    EXPECT_EQ(profile(), "Clean floor 0.4s · drops begin at 0.33s");
    EXPECT_EQ(rig.lines.back(), "⏱ Gap profile CAM1: " + verdict());
    EXPECT_EQ(floors.measuredFloor("Z8"), 0.4);
    EXPECT_FALSE(floors.measuredSameFloor("Z8"));
    ASSERT_EQ(rows().size(), 6U);
    EXPECT_EQ(rows()[0].ok, 6);
    EXPECT_NEAR(rows()[0].avgLatencyMs, 50, 1e-6);
    EXPECT_NEAR(rows()[0].achievedSec.value_or(0), 1.0, 1e-9);
    EXPECT_EQ(rows()[5].intervalSec, 0.33);
    EXPECT_EQ(rows()[5].dropped, 5) << "the first of a rung comes after a rest";
    for (std::size_t i = 1; i < body->shots.size(); ++i) {
        EXPECT_NE(body->shots[i].iso, body->shots[i - 1].iso);
        EXPECT_NE(body->shots[i].aperture, body->shots[i - 1].aperture);
        EXPECT_NE(body->shots[i].shutterSec, body->shots[i - 1].shutterSec);
    }
    EXPECT_EQ(profiler.history()->size(), 1U);
}

TEST_F(GapProfilerTest, identicalFramesHaveAFloorOfTheirOwn) {
    const auto body = add(takes(0.05));
    profiler.setGapSettingsMode(GapSettingsMode::same);
    EXPECT_EQ(profile(), "Clean to 0.1s (fastest tested) · the body may go faster still");
    EXPECT_EQ(floors.measuredSameFloor("Z8"), 0.1);
    EXPECT_FALSE(floors.measuredFloor("Z8"));
    EXPECT_EQ(rows().size(), 11U);
    for (const cameras::Shot& shot : body->shots)
        EXPECT_EQ(shot.iso, 400);
}

TEST_F(GapProfilerTest, aBodyThatPacesHasItsPaceForAFloor) {
    add(takes(0.45));
    EXPECT_EQ(profile(), "Clean floor 0.45s · that is as fast as this body will answer, so it is a real "
                         "floor, not a lower bound");
    EXPECT_NEAR(floors.measuredFloor("Z8").value_or(0), 0.45, 1e-9);
    EXPECT_TRUE(rows().back().complete());
    EXPECT_FALSE(rows().back().clean());
}

TEST_F(GapProfilerTest, aPaceThatTheLastCleanRungDidNotShowIsToldAsAnAnswer) {
    add(takes(0.32));
    EXPECT_EQ(profile(), "Asked for 0.25s and the body answered at 0.32s instead. Nothing was dropped; this "
                         "is simply as fast as it goes.");
    EXPECT_NEAR(floors.measuredFloor("Z8").value_or(0), 0.32, 1e-9);
}

TEST_F(GapProfilerTest, aRungAtThirteenTenthsOfItsIntervalIsNotClean) {
    add(takes(1.3));
    EXPECT_THAT(profile(), StartsWith("Asked for 1.0s and the body answered at 1.3s instead."));
    ASSERT_EQ(rows().size(), 2U) << "and the first slow one is";
    EXPECT_FALSE(rows()[0].clean());
    EXPECT_NEAR(floors.measuredFloor("Z8").value_or(0), 1.3, 1e-9);
}

TEST_F(GapProfilerTest, aSonyThatSlowsHasLostNothing) {
    const auto body = add(takes(0.45));
    body->modelName = "ILCE-7M4";
    EXPECT_EQ(profile(), "Paces cleanly to 0.45s · command pacing slows past 0.33s. On Sony this is cadence "
                         "headroom, not lost photos (no per-frame save confirmation over USB) — budget "
                         "~0.45s between frames.");
    EXPECT_TRUE(profiler.gapProfileBodyIsSony().get());
}

TEST_F(GapProfilerTest, aSlowBodyIsTriedSlowerUntilItHolds) {
    add(dropsUnder(2.0));
    EXPECT_EQ(profile(), "This body needs a SLOW cadence: clean at 2.0s, dropped at every faster step. "
                         "Budget at least 2.0s between frames in your script.");
    EXPECT_EQ(floors.measuredFloor("Z8"), 2.0);
    EXPECT_EQ(rows().size(), 3U);
}

TEST_F(GapProfilerTest, aBodyThatHoldsNothingHasNoFloor) {
    add([](double, int) { return TimedCamera::Reply{.afterSec = 0.05, .ok = false}; });
    EXPECT_EQ(profile(), "Dropped even at 5.0s · this body could not hold any tested cadence. Check the "
                         "cable/USB mode, or try a vendor-recommended tether setting.");
    EXPECT_EQ(rows().size(), 7U);
    EXPECT_TRUE(nothingStored());
}

TEST_F(GapProfilerTest, aLinkThatWedgesOnTheWayIsNoCadenceResult) {
    answerLinkCheckWith({.alive = false});
    const auto body = add(falls(13)); // the third rung
    EXPECT_EQ(profile(), "The camera's connection wedged during profiling and didn't come back on its own. "
                         "Power-cycle the body (or replug it), then run the profile again — this isn't a "
                         "cadence result.");
    EXPECT_EQ(rows().size(), 3U);
    EXPECT_EQ(rows()[2].noResp, 6) << "refusals behind a silent frame are no answers";
    EXPECT_EQ(body->suspends, 1);
    EXPECT_EQ(body->resumes, 1);
    EXPECT_EQ(family->holds, 0);
    EXPECT_TRUE(nothingStored());
}

TEST_F(GapProfilerTest, aSilentBodyWhoseLinkLivesIsTriedOn) {
    answerLinkCheckWith({.alive = true, .meanLatencyMs = 400});
    add([](double, int) { return TimedCamera::Reply{.afterSec = 0.1, .ok = false, .responded = false}; });
    EXPECT_THAT(profile(), StartsWith("Dropped even at 5.0s"));
    EXPECT_EQ(linkChecks, 7) << "after each rung";
    answerLinkCheckWith({.alive = true, .meanLatencyMs = 1500});
    EXPECT_THAT(profile(), HasSubstr("wedged")) << "a link that slow does not work";
}

TEST_F(GapProfilerTest, eachFrameIsWaitedForEightSecondsAndAFamilyWithoutThatCheckGoesOn) {
    answerLinkCheckWith({.alive = false});
    const auto body = add(falls(1));
    body->family = "LumixPTP";
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    rig.run(7.9);
    EXPECT_EQ(profiler.gapProfileRung()->value().frames, 0);
    rig.run(0.2);
    EXPECT_EQ(profiler.gapProfileRung()->value().noResp, 2) << "the driver refuses the next";
    EXPECT_NE(rig.model.testShots().fire(body, {.shutterSec = 0.01}), "") << "the body is being measured";
    rig.machine.time.runUntil([&] { return !profiler.gapProfileRunning().get(); }, base::Seconds{600});
    EXPECT_THAT(verdict(), StartsWith("Dropped even at 5.0s"));
    EXPECT_EQ(linkChecks, 0);
}

TEST_F(GapProfilerTest, aSimulatedBodyIsWalkedThroughAndMeasuresNothing) {
    const auto mock = rig.model.roster().addPlanningCamera("Z8");
    EXPECT_EQ(profile(mock->id()), "Simulated camera: no real cadence limits. Connect a body to measure.");
    EXPECT_EQ(rows().size(), 11U);
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    EXPECT_EQ(profile(mock->id()), "Simulated camera: no real buffer limits. Connect a body to measure.");
    EXPECT_EQ(profiler.gapBurst()->value().fired, 40);
    EXPECT_TRUE(nothingStored());
}

TEST_F(GapProfilerTest, stoppingEndsItAfterTheFrameUnderWayAndStoresNothing) {
    const auto body = add(takes(0.5));
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    EXPECT_EQ(family->holds, 1);
    rig.run(1.2); // the second frame is under way
    profiler.stop();
    EXPECT_TRUE(profiler.gapProfileRunning().get());
    rig.run(0.4);
    EXPECT_FALSE(profiler.gapProfileRunning().get());
    EXPECT_EQ(verdict(), "Profile stopped.");
    EXPECT_EQ(family->holds, 0);
    EXPECT_EQ(body->shots.size(), 2U);
    ASSERT_EQ(rows().size(), 1U);
    EXPECT_EQ(rows()[0].frames, 2);

    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    rig.run(15); // between frames, with clean rungs behind
    profiler.stop();
    rig.run(0.6);
    EXPECT_EQ(verdict(), "Profile stopped.");
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    rig.run(3);
    profiler.stop();
    rig.run(1);
    EXPECT_EQ(verdict(), "Burst stopped.");
    EXPECT_EQ(rig.lines.back(), "⏱ Sustained burst CAM1: Burst stopped.");
    EXPECT_TRUE(nothingStored());
}

TEST_F(GapProfilerTest, stoppingWhileTheLinkIsCheckedDoesNotWaitForIt) {
    answerLinkCheckWith({.alive = true});
    const auto body = add(falls(1));
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    rig.machine.time.runUntil([&] { return linkChecks == 1; }, base::Seconds{100});
    profiler.stop();
    EXPECT_EQ(verdict(), "Profile stopped.");
    EXPECT_EQ(body->resumes, 1);
    rig.run(10);
    EXPECT_EQ(rows().size(), 1U) << "the check's answer comes too late";
}

TEST_F(GapProfilerTest, oneThatWouldCostARunFramesIsRefusedAndARunEndsOne) {
    const auto body = add(takes(0.05));
    EXPECT_EQ(profiler.runGapProfile("nobody"), "This camera is not connected.");
    rig.model.transport().togglePlay();
    EXPECT_THAT(profiler.runGapProfile("timed"), StartsWith("A run is on"));
    rig.model.transport().togglePlay();
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    EXPECT_THAT(profiler.runGapProfile("timed"), StartsWith("A profile is running."));
    rig.run(3);
    rig.model.transport().togglePlay();
    EXPECT_EQ(verdict(), "Profile stopped. A run has begun.");
    rig.model.transport().togglePlay();
    const auto fired = body->shots.size();
    rig.run(5);
    EXPECT_EQ(body->shots.size(), fired);
}

TEST_F(GapProfilerTest, aBodyThatGoesEndsIt) {
    add(falls(3));
    EXPECT_EQ(profiler.runGapProfile("timed"), "");
    rig.run(4);
    rig.model.roster().removeCamera("timed");
    EXPECT_THAT(verdict(), StartsWith("Profile stopped. The camera was removed"));
    EXPECT_FALSE(profiler.gapProfileRunning().get());
    EXPECT_TRUE(nothingStored());
    rig.run(20);
}

TEST_F(GapProfilerTest, aBufferWallIsFoundWhereTheFirstFrameIsMissing) {
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    add([](double, int number) { return TimedCamera::Reply{.afterSec = 0.05, .ok = number <= 12}; });
    EXPECT_EQ(profile(), "Buffer wall: 12 clean frames at 0.5s, then dropped (3 of 15).");
    EXPECT_EQ(profiler.gapBurst()->value().fired, 15) << "three in a row are enough";
    const auto depth = floors.burstDepth("Z8");
    ASSERT_TRUE(depth);
    EXPECT_EQ(depth->frames, 12);
    EXPECT_NEAR(depth->cadenceSec, 0.5, 1e-9);
    EXPECT_FALSE(floors.sustainedFloor("Z8"));
}

TEST_F(GapProfilerTest, aBurstThatIsHeldGivesASustainedFloor) {
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    add(takes(0.05));
    EXPECT_EQ(profile(), "Held all 40 frames at 0.5s. No buffer wall in this test.");
    EXPECT_NEAR(floors.sustainedFloor("Z8").value_or(0), 0.5, 1e-9);
    floors.saveMeasuredFloor("Z8", 0.4, false);
    EXPECT_EQ(profile(), "Held all 40 frames at 0.4s. No buffer wall in this test.");
}

TEST_F(GapProfilerTest, aBurstThatIsHeldAtItsOwnPaceSaysSo) {
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    profiler.setGapBurstTargetCadence(0.5);
    add(takes(0.75));
    EXPECT_EQ(profile(), "Held all 40 frames at 0.75s, not the 0.5s asked for (the body cannot answer "
                         "faster than this)");
    EXPECT_NEAR(floors.sustainedFloor("Z8").value_or(0), 0.75, 1e-9);
}

TEST_F(GapProfilerTest, longFramesAreKeptByThemselves) {
    profiler.setGapProfileMode(GapProfileMode::sustainedBurst);
    profiler.setGapBurstShutter(2);
    const auto body = add([](double since, int number) {
        return TimedCamera::Reply{.afterSec = 2.1, .ok = number <= 20 || since > 2.7};
    });
    EXPECT_EQ(profile(), "Held all 2s frames at 2.5s: long-frame occupancy fits this cadence.");
    EXPECT_EQ(body->shots.size(), 20U);
    EXPECT_EQ(body->shots[1].shutterSec, 2);
    EXPECT_EQ(floors.longFrameFloor("Z8").value_or(rig::MeasuredFloors::LongFrameFloor{}).held, true);
    EXPECT_FALSE(floors.sustainedFloor("Z8")) << "short frames need not be so far apart";

    rig.run(10);
    EXPECT_EQ(profile(), "2s frames dropped: 1 clean at 2.5s, then 3 of 4. A 2s frame needs more room than "
                         "2.5s.");
    EXPECT_EQ(floors.longFrameFloor("Z8").value_or(rig::MeasuredFloors::LongFrameFloor{.held = true}).held,
              false);
}

TEST(SustainedBurst, theCadenceLeavesRoomForTheExposure) {
    const auto target = [](double shutter, double wish, std::optional<double> floor) {
        return rig::SustainedBurst::targetCadence(
            {.shutterSec = shutter, .targetSec = wish, .measuredFloorSec = floor});
    };
    EXPECT_DOUBLE_EQ(target(0, 0, std::nullopt), 0.5);
    EXPECT_DOUBLE_EQ(target(0, 0, 0.1), 0.2);
    EXPECT_DOUBLE_EQ(target(2, 0, std::nullopt), 2.5);
    EXPECT_DOUBLE_EQ(target(2, 0, 0.1), 2.3);
    EXPECT_DOUBLE_EQ(target(2, 0.5, 0.8), 2.2);
    EXPECT_DOUBLE_EQ(target(0, 0.3, 0.8), 0.3);
}

// What hears of a change may end the profile at any place.
TEST_F(GapProfilerTest, stoppingFromWithinAChangeIsTakenWell) {
    add(takes(0.05));
    int changes = 0;
    int stopAt = 0;
    const auto stopThere = [&](const auto&) {
        if (++changes == stopAt)
            profiler.stop();
    };
    profiler.gapProfileRung().changed().connect(stopThere);
    profiler.gapProfileRows().changed().connect(stopThere);
    for (stopAt = 1; stopAt < 12; ++stopAt) {
        changes = 0;
        EXPECT_EQ(profile(), "Profile stopped.") << stopAt;
        EXPECT_LE(rows().size(), 2U);
    }
    EXPECT_TRUE(nothingStored());
}
