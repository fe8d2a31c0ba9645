#include "support/ScriptedFamily.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace zenka;
using test::VirtualRig;

namespace {

const cameras::CaptureOutcome notYet{
    .ok = false, .note = "ERROR: Could not trigger capture", .responded = true};
constexpr cameras::Shot shot{.iso = 100, .aperture = 8, .shutterSec = 0.002};

struct TestShotsTest : testing::Test {
    std::shared_ptr<test::ScriptedFamily> family = std::make_shared<test::ScriptedFamily>();
    VirtualRig rig{{family}};
    rig::TestShots& tests = rig.model.testShots();

    std::string lastFire(const std::string& id) { return rig.model.outcomes().lastFire().at(id); }
    /// Fires behind the operator's back, to see what comes of it.
    std::vector<cameras::CaptureOutcome> outcomes;
    void fireManual(const rig::CameraRoster::Camera& camera) {
        rig.model.manualFire().fireManual(camera, shot,
                                          [this](const auto& outcome) { outcomes.push_back(outcome); });
    }
};

} // namespace

TEST_F(TestShotsTest, oneThatTheBodyRefusesTwiceGoesThroughAndIsToldOnCardAndInTheLog) {
    const auto body = rig.addBody("CAM1");
    body->outcomes = {notYet, notYet, {.ok = true, .latencyMs = 212, .sentShutter = "shutterspeed2=1/500"}};
    EXPECT_EQ(tests.fire(body, shot), "");
    EXPECT_TRUE(tests.firing("id-CAM1"));
    EXPECT_EQ(lastFire("id-CAM1"), "waiting for camera…");
    EXPECT_EQ(tests.fire(body, shot), "A test shot of CAM1 is under way. Wait for its result.");
    rig.run(2.9);
    EXPECT_TRUE(tests.firing("id-CAM1")) << "1.5 s between the attempts";
    rig.run(0.2);
    EXPECT_FALSE(tests.firing("id-CAM1"));
    ASSERT_EQ(body->shots.size(), 3U);
    EXPECT_EQ(body->shots[2].shutterSec, 0.002);
    ASSERT_TRUE(tests.result("id-CAM1").has_value());
    EXPECT_TRUE(tests.result("id-CAM1")->ok);
    EXPECT_EQ(tests.result("id-CAM1")->sentShutter, "1/500");
    EXPECT_EQ(lastFire("id-CAM1"), "✓ 212ms");
    EXPECT_EQ(rig.lines.back(), "● CAM1  test  ISO 100 f/8 1/500  ✓ 212ms");
    EXPECT_TRUE(rig.model.outcomes().shotCounts().empty()) << "no frame of the script";
}

TEST_F(TestShotsTest, aBodyThatNeverHandsOverIsGivenUpAfter25SecondsWithAdvice) {
    const auto body = rig.addBody("CAM1");
    for (int i = 0; i < 100; ++i)
        body->outcomes.push_back(notYet);
    tests.fire(body, {});
    rig.run(24.9);
    EXPECT_TRUE(tests.firing("id-CAM1"));
    rig.run(1.5);
    const auto result = tests.result("id-CAM1");
    ASSERT_TRUE(result.has_value());
    EXPECT_EQ(body->shots.size(), 18U) << "the first attempt at or after 25 s is the last";
    EXPECT_FALSE(result->ok);
    EXPECT_EQ(result->phrase, "camera not in PC mode yet");
    EXPECT_EQ(result->note, "ERROR: Could not trigger capture");
    EXPECT_TRUE(
        result->advice.value_or("").starts_with("CAM1: the camera has not switched into PC mode yet"));
    EXPECT_EQ(lastFire("id-CAM1"), "Test: camera not in PC mode yet");
    EXPECT_EQ(rig.lines.back(),
              "⚠️ TEST FAILED  CAM1  ISO auto f/auto auto  ERROR: Could not trigger capture");
    EXPECT_TRUE(rig.model.outcomes().drops().empty());
    rig.run(60);
    EXPECT_EQ(body->shots.size(), 18U);
}

TEST_F(TestShotsTest, inALiveRunOneThatCouldCostTheBodyAFrameIsRefusedAndNoneIsInTheRunsLog) {
    const double clock = rig.model.transport().clock();
    rig.load(rig.frameAt(clock + 100) + rig.frameAt(clock + 2000, "CAM2"));
    const auto body = rig.addBody("CAM1");
    const auto other = rig.addBody("CAM2");
    rig.model.transport().armRealEclipseTiming(true);
    const double ahead = 100 + clock - rig.model.transport().clockNow();
    ASSERT_GT(ahead, 61);
    EXPECT_EQ(tests.nextCapture(*other)->camera, "CAM2");

    rig.run(ahead - 31);
    EXPECT_EQ(tests.fire(body, shot), "");
    EXPECT_THAT(tests.fire(body, {.shutterSec = 10}),
                testing::HasSubstr("The live run fires CAM1 in 31 s, and a test shot could cost that frame."))
        << "a long exposure ends within the 30 s";
    rig.run(2);
    EXPECT_THAT(tests.fire(body, shot), testing::HasSubstr("in 29 s"));
    EXPECT_EQ(body->shots.size(), 1U);
    EXPECT_EQ(tests.fire(other, shot), "") << "its own frame is far away";
    rig.run(30);
    EXPECT_EQ(body->shots.size(), 2U) << "the script's frame";
    EXPECT_EQ(tests.fire(body, shot), "") << "none is left";
    rig.model.handleAppWillTerminate();
    const auto rows = rig.rows();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0][4], "CAM1");
}

TEST_F(TestShotsTest, theDesktopsServicesAreKeptOffForAsLongAsTheBodyIsTried) {
    const auto body = rig.addBody("CAM1");
    body->outcomes = {notYet, notYet};
    body->onCapture = [&](const auto&) { EXPECT_EQ(family->holds, 1); };
    fireManual(body);
    rig.run(2);
    EXPECT_EQ(family->holds, 1) << "between the attempts, too";
    rig.run(2);
    EXPECT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(family->holds, 0);

    body->onCapture = [&](const auto&) { EXPECT_EQ(family->holds, 0); };
    rig.model.transport().togglePlay();
    fireManual(body);
    rig.model.transport().togglePlay();
    const auto canon = rig.addBody("EOS");
    canon->family = "CanonEDSDK";
    fireManual(body);
    EXPECT_EQ(outcomes.size(), 3U) << "while a run plays or beside a Canon session they are left alone";
}

TEST_F(TestShotsTest, aBodyThatGoesMeanwhileCompletesOnceAndLetsTheServicesOn) {
    const auto body = rig.addBody("CAM1");
    body->holdCompletions = true;
    fireManual(body);
    EXPECT_EQ(family->holds, 1);
    rig.model.roster().removeCamera("id-CAM1");
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes[0].ok);
    EXPECT_EQ(outcomes[0].note, "the camera was removed or connected anew");
    EXPECT_EQ(family->holds, 0);
    body->complete();
    EXPECT_EQ(outcomes.size(), 1U) << "its own answer comes too late";

    const auto waiting = rig.addBody("CAM2"); // between two attempts
    waiting->outcomes = {notYet};
    tests.fire(waiting, shot);
    const auto again = std::make_shared<test::ScriptedCamera>("new-id");
    again->serialNumber = waiting->serialNumber;
    rig.model.roster().replace("id-CAM2", again);
    EXPECT_FALSE(tests.firing("id-CAM2"));
    rig.run(3);
    EXPECT_EQ(waiting->shots.size(), 1U);

    rig.model.roster().setDisconnected("new-id", true);
    tests.fire(again, shot);
    EXPECT_TRUE(again->shots.empty()) << "one that is down is not troubled";
    EXPECT_EQ(tests.result("new-id")->phrase, "dropped, camera disconnected");
}

TEST_F(TestShotsTest, theResultGoesWithABodyThatGetsAnotherDriver) {
    family->plugIn("77");
    rig.model.detector().detectCameras();
    rig.run(5);
    const auto before = rig.model.roster().cameras().at(0);
    tests.fire(before, shot);
    rig.model.detector().detectCameras();
    rig.run(5);
    const auto after = rig.model.roster().cameras().at(0);
    ASSERT_NE(after->id(), before->id());
    EXPECT_TRUE(tests.result(after->id()).has_value());
    EXPECT_EQ(lastFire(after->id()), "✓ 212ms");
}

TEST_F(TestShotsTest, aSimulatedBodyAnswersToo) {
    const auto body = rig.model.roster().addPlanningCamera("Z8");
    EXPECT_EQ(tests.fire(body, shot), "");
    EXPECT_TRUE(tests.result(body->id())->ok);
    EXPECT_EQ(lastFire(body->id()), "(sim)");
    EXPECT_EQ(rig.lines.back(), "● Z8  test  ISO 100 f/8 1/500  (sim)");
}
