#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::refusal;
using test::silence;
using test::VirtualRig;

namespace {

constexpr std::size_t columnResult = 13;
constexpr std::size_t columnNote = 15;

struct FireLoop : testing::Test {
    VirtualRig rig;
    int flagged = 0;
    int reconnects = 0;

    FireLoop() {
        rig.model.outcomes().flagDisconnect().connect([this](const auto&) { ++flagged; });
        rig.model.outcomes().requestReconnect().connect([this](const auto&) { ++reconnects; });
    }

    /// A frame a second from clock 10 on.
    void loadFrames(int count, const std::string& camera = "CAM1") {
        std::string script;
        for (int i = 0; i < count; ++i)
            script += rig.frameAt(10 + i, camera);
        rig.load(script);
    }
};

} // namespace

TEST_F(FireLoop, aFrameLeavesAtItsInstantAndNotABeatLate) {
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10.0137));
    rig.playFrom(0);
    rig.run(10.0135);
    EXPECT_TRUE(body->shots.empty());
    rig.run(0.0003);
    ASSERT_EQ(body->shots.size(), 1U);
    EXPECT_EQ(body->shots[0].iso, 200);
    EXPECT_DOUBLE_EQ(body->shots[0].aperture, 8);
    EXPECT_DOUBLE_EQ(body->shots[0].shutterSec, 0.002);
    EXPECT_LT(rig.model.logbook().lateness().largest(), 0.01);
    EXPECT_TRUE(rig.logged("● CAM1  MAX −")) << "the label tells the moment";
    EXPECT_TRUE(rig.logged("ISO 200 f/8 1/500  ✓ 212ms"));
}

TEST_F(FireLoop, framesDueTogetherAreSpreadAndAPauseCancelsThoseStillToCome) {
    const auto first = rig.addBody("CAM1");
    const auto second = rig.addBody("CAM2");
    const auto third = rig.addBody("CAM3");
    rig.load(rig.frameAt(10, "CAM1") + rig.frameAt(10, "CAM2") + rig.frameAt(10, "CAM3"));
    rig.playFrom(0);
    rig.run(10.03);
    EXPECT_EQ(first->shots.size(), 1U);
    EXPECT_EQ(second->shots.size(), 0U);
    rig.run(0.05);
    EXPECT_EQ(second->shots.size(), 1U);
    rig.model.transport().togglePlay();
    rig.run(1);
    EXPECT_EQ(third->shots.size(), 0U);
}

TEST_F(FireLoop, bodiesOnOneBusTakeOneCaptureInTheirLaneAndBusZeroIsUnknown) {
    std::vector<std::shared_ptr<test::ScriptedCamera>> bodies;
    for (const std::optional<int> bus :
         {std::optional(2), std::optional(2), std::optional(0), std::optional<int>()})
        bodies.emplace_back(rig.addBody("CAM" + std::to_string(bodies.size())))->bus = bus;
    rig.load(rig.frameAt(10, "CAM")); // every label contains it
    rig.playFrom(0);
    rig.run(10.01);
    EXPECT_EQ(bodies[0]->shots.size(), 1U);
    EXPECT_EQ(bodies[1]->shots.size(), 0U);
    EXPECT_EQ(bodies[2]->shots.size(), 1U);
    EXPECT_EQ(bodies[3]->shots.size(), 1U);
    rig.run(0.36);
    EXPECT_EQ(bodies[1]->shots.size(), 1U);
    EXPECT_LT(rig.model.logbook().lateness().largest(), 0.01) << "a stagger is no lateness";
}

TEST_F(FireLoop, aDropIsFinalAndTheNextFrameGoesOutOnTime) {
    const auto body = rig.addBody("CAM1");
    body->outcomes = {refusal()};
    loadFrames(2);
    rig.playFrom(0);
    rig.run(12);
    EXPECT_EQ(body->shots.size(), 2U);
    EXPECT_TRUE(rig.logged("⚠️ DROPPED  CAM1  MAX"));
    EXPECT_EQ(rig.model.outcomes().drops().at("id-CAM1"), 1);
    EXPECT_EQ(rig.model.outcomes().shotCounts().at("id-CAM1"), 1);
    EXPECT_EQ(rig.model.outcomes().droppedSeqs().at("id-CAM1"), std::set{1});
    rig.playFrom(0); // pauses
    rig.playFrom(0); // and the frame comes good
    rig.run(12);
    EXPECT_TRUE(rig.model.outcomes().droppedSeqs().at("id-CAM1").empty());
}

TEST_F(FireLoop, aSilentThirdFrameFlagsTheBodyAndAnAnswerBetweenBeginsTheCountAnew) {
    const auto body = rig.addBody("CAM1");
    body->outcomes = {silence(), silence(), refusal(), silence(), silence()};
    loadFrames(8);
    rig.playFrom(0);
    rig.run(14.5);
    EXPECT_EQ(flagged, 0);
    body->outcomes = {silence()};
    rig.run(3);
    EXPECT_EQ(flagged, 1);
}

TEST_F(FireLoop, aBodyThatLeftTheBusIsAskedBackAtOnce) {
    const auto body = rig.addBody("CAM1");
    body->outcomes = {{.ok = false, .note = "gone", .deviceGone = true}};
    loadFrames(1);
    rig.playFrom(0);
    rig.run(11);
    EXPECT_EQ(reconnects, 1);
}

TEST_F(FireLoop, aBodyThatAnswersButDeliversNothingFor20SecondsIsAskedBack) {
    const auto body = rig.addBody("CAM1");
    loadFrames(30);
    body->outcomes.push_back({.ok = true, .responded = true});
    for (int i = 0; i < 29; ++i)
        body->outcomes.push_back(refusal());
    rig.playFrom(0);
    rig.run(30.5); // the frame 20 s after the good one
    EXPECT_EQ(reconnects, 0);
    rig.run(1);
    EXPECT_EQ(reconnects, 1);
    EXPECT_EQ(flagged, 0);
}

TEST_F(FireLoop, aMockBodysTroubleNeverLooksLikeARealOne) {
    rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"), "CAM1");
    loadFrames(3);
    rig.playFrom(0);
    rig.run(60);
    EXPECT_EQ(rig.countLines("(sim)"), 3);
    EXPECT_FALSE(rig.model.transport().playing().get());
    EXPECT_FALSE(rig.model.logbook().pendingSurvey().get()) << "no real body, no summary";
}

TEST_F(FireLoop, aFrameWithoutABodyIsLoggedAsSuch) {
    loadFrames(1, "NOBODY");
    rig.playFrom(0);
    rig.run(11);
    EXPECT_TRUE(rig.logged("● NOBODY  "));
    EXPECT_TRUE(rig.logged("(no camera, simulated)"));
    ASSERT_EQ(rig.rows().size(), 1U);
    EXPECT_EQ(rig.rows()[0][columnResult], "no-camera");
}

TEST_F(FireLoop, aSleepingMachineSkipsWhatIsStaleAndFiresTheNewestLate) {
    const auto body = rig.addBody("CAM1");
    rig.model.transport().armRealEclipseTiming(false);
    const double now = rig.model.transport().clock();
    rig.load(rig.frameAt(now + 5) + rig.frameAt(now + 20) + rig.frameAt(now + 40) + rig.frameAt(now + 90));
    rig.run(1);
    rig.machine.time.sleepFor(base::Seconds{60});
    rig.run(1);
    EXPECT_EQ(body->shots.size(), 1U);
    EXPECT_EQ(rig.model.fireLoop().skippedCount().get(), 2);
    EXPECT_TRUE(rig.logged("⏭ Clock leapt 60s (sleep/stall) — 2 frame(s) SKIPPED, not fired, firing the most "
                           "recent one late"));
    EXPECT_EQ(rig.countLines("⏭ SKIPPED (not fired): CAM1"), 2);
    ASSERT_EQ(rig.rows().size(), 3U);
    EXPECT_EQ(rig.rows()[0][columnResult], "skipped");
    EXPECT_EQ(rig.rows()[0][columnNote], "NOT FIRED: clock leapt 60s (sleep/stall). frame");
    EXPECT_GT(rig.model.logbook().lateness().largest(), 20000) << "a late frame is told as late";
    rig.run(40);
    EXPECT_EQ(body->shots.size(), 2U) << "what was still ahead goes out on time";
}

TEST_F(FireLoop, aShutterFarFromTheOneAskedForIsToldOnceABodyAndRun) {
    const auto body = rig.addBody("CAM1");
    const auto sent = [](const char* text) {
        return cameras::CaptureOutcome{.ok = true, .responded = true, .sentShutter = text};
    };
    body->outcomes = {sent("1/400"), sent("shutterspeed2=1/400"), sent("garbage"), sent("bulb")};
    loadFrames(6);
    rig.playFrom(0);
    rig.run(13.5);
    EXPECT_EQ(rig.countLines("SHUTTER MISMATCH"), 0) << "a third of a stop is rounding";
    body->outcomes = {sent("per-shot shutterspeed=1/125"), sent("1/8")};
    rig.run(2);
    EXPECT_EQ(rig.countLines("SHUTTER MISMATCH"), 1);
    EXPECT_TRUE(
        rig.logged("CAM1: asked for 1/500 but sent \"per-shot shutterspeed=1/125\" to the camera, which is "
                   "2.0 stops away."));
    EXPECT_TRUE(rig.model.outcomes().shutterMismatchWarning().get().has_value());
    rig.model.transport().togglePlay();
    EXPECT_FALSE(rig.model.outcomes().shutterMismatchWarning().get().has_value()) << "a new run warns anew";
}

TEST_F(FireLoop, cardWritingThatFallsBehindIsWarnedOfAtTenAndAtEachDoubling) {
    const auto body = rig.addBody("CAM1");
    body->confirmed = 0;
    loadFrames(50);
    rig.playFrom(0);
    rig.run(60);
    EXPECT_EQ(rig.countLines("card writing is"), 3) << "at 10, 20 and 40";
    EXPECT_TRUE(
        rig.logged("⚠️ CAM1: card writing is 10 frames behind the shutter (fired 10, stored 0)."));
    rig.run(40); // to the end of the run
    EXPECT_TRUE(rig.logged("⚠️ CAM1: 0 of 50 fired frames confirmed stored · 50 UNCONFIRMED"));
    ASSERT_TRUE(rig.model.logbook().pendingSurvey().get().has_value());
    EXPECT_EQ(rig.model.logbook().pendingSurvey().get()->frames, 50);
}
