#include "rig/fire/ExposureControl.h"

#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using exposure::CompOffsets;
using exposure::CompRules;
using exposure::CompVariable;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Compensation : testing::Test {
    test::VirtualRig rig;
    rig::ExposureControl& control = rig.model.exposure();
    std::vector<std::string> spoken;
    double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    double c3 = rig.model.site().contactTHours().at("C3") * 3600;

    void SetUp() override {
        control.spoken().connect([this](const std::string& words) { spoken.push_back(words); });
    }
    script::Capture frame(double offset, const std::string& camera = "CAM1") {
        return {.seq = 7,
                .offsetSec = offset,
                .camera = camera,
                .shutterSec = 0.002,
                .aperture = 8,
                .iso = 200,
                .comment = "partial"};
    }
};

} // namespace

TEST_F(Compensation, aCameraWithoutRulesOfItsOwnIsNeverCompensated) {
    control.setOffsets("CAM1", {.enabled = true, .partials = 2, .totality = 2});
    EXPECT_EQ(control.compStops("CAM1", 0), 0);
    const auto as = control.compensated(frame(0));
    EXPECT_EQ(as.ev, 0);
    EXPECT_FALSE(as.result);
    control.rules().saveCompRules({}, "CAM1");
    EXPECT_TRUE(rig.logged("Exposure rules saved for CAM1: shutter, ISO, ISO 100–1600, shutter 1/8000–1/4"));
    const auto moved = control.compensated(frame(0));
    EXPECT_EQ(moved.ev, 2);
    EXPECT_EQ(moved.note, "+2: 1/500→1/125");
    EXPECT_EQ(moved.capture.shutterSec, 0.008);
    EXPECT_EQ(moved.capture.seq, 7);
    EXPECT_EQ(moved.capture.comment, "partial");
}

TEST_F(Compensation, totalityHasItsOwnStopsFromHalfAMinuteBeforeToHalfAMinuteAfter) {
    control.rules().saveCompRules({}, "CAM1");
    control.setOffsets("CAM1", {.enabled = true, .partials = 1, .totality = -2});
    EXPECT_EQ(control.compStops("CAM1", c2 - 30.001), 1);
    EXPECT_EQ(control.compStops("CAM1", c2 - 30), -2);
    EXPECT_EQ(control.compStops("CAM1", c3 + 30), -2);
    EXPECT_EQ(control.compStops("CAM1", c3 + 30.001), 1);
    control.setOffsets("CAM1", {.enabled = true, .partials = 1, .totality = -2, .linked = true});
    EXPECT_EQ(control.compStops("CAM1", c2), 1);
    control.setLeaveTotalityAlone(true);
    EXPECT_EQ(control.compStops("CAM1", c2), 0);
    control.setOffsets("CAM1", {.enabled = false, .partials = 1});
    EXPECT_EQ(control.compStops("CAM1", 0), 0);

    control.setLeaveTotalityAlone(false);
    control.setOffsets("CAM1", {.enabled = true, .partials = 1, .totality = -2});
    rig.model.site().setSite(
        {.lat = 48.86, .lon = 2.35, .elev = 35, .label = "Paris", .tzId = "Europe/Paris"});
    rig.model.recompute();
    EXPECT_EQ(control.compStops("CAM1", c2), 1) << "a partial site has no totality";
}

TEST_F(Compensation, rulesFollowTheBodyAndDamagedOnesCountAsNone) {
    CompRules rules;
    rules.order = {CompVariable::iso, CompVariable::aperture, CompVariable::shutter};
    rules.enabled = {CompVariable::aperture};
    rules.balanced = true;
    rules.isoMax = 6400;
    EXPECT_EQ(rig::decodeCompRules(rig::encodeCompRules(rules)), rules);
    for (
        const char* damaged :
        {"", "[]", "{}", R"({"order":[]})", R"({"order":["iso","iso"]})",
         R"({"order":["iso"],"enabled":[],"balanced":false,"isoMin":0,"isoMax":9,"shutterFastestSec":1,"shutterSlowestSec":2,"apertureWidest":1,"apertureNarrowest":2})"})
        EXPECT_FALSE(rig::decodeCompRules(damaged)) << damaged;

    const auto body = rig.addBody("CAM1");
    control.rules().saveCompRules(rules, "CAM1");
    EXPECT_TRUE(rig.machine.settings.text("eclipse.compRules.serial:SN-id-CAM1"));
    rig.model.roster().setLabel(*body, "LONG");
    EXPECT_EQ(control.rules().compRules("LONG"), rules);
    EXPECT_FALSE(control.rules().hasSavedCompRules("CAM1"));
    control.rules().saveCompRules({}, "WIDE");
    EXPECT_TRUE(rig.machine.settings.text("eclipse.compRules.token:WIDE"));
    rig.machine.settings.setText("eclipse.compRules.token:OLD", "{");
    EXPECT_FALSE(control.rules().hasSavedCompRules("OLD"));
    EXPECT_EQ(control.rules().compRules("OLD"), CompRules());
}

TEST_F(Compensation, nudgesMoveTheCamerasWithRulesAndABurstIsSpokenOnce) {
    rig.load(rig.frameAt(100, "CAM1") + rig.frameAt(200, "CAM2"));
    control.nudgeAllComp(1);
    EXPECT_FALSE(rig.logged("⟲")) << "no camera has rules";
    control.rules().saveCompRules({}, "CAM1");
    control.nudgeAllComp(1);
    control.nudgeAllComp(1);
    EXPECT_TRUE(rig.logged("⟲ Exposure compensation: CAM1 +2 for every camera"));
    EXPECT_THAT(spoken, IsEmpty());
    rig.run(1);
    EXPECT_THAT(spoken, ElementsAre("all cameras plus 2 stops"));
    EXPECT_FALSE(control.compOffsets().get().contains("CAM2"));
    for (int i = 0; i < 9; ++i)
        control.nudgeAllComp(1);
    rig.run(1);
    EXPECT_EQ(spoken.back(), "all cameras plus 6 stops");
    EXPECT_EQ(control.compSummary(), "CAM1 +6");
    control.nudgeAllComp(-5);
    control.nudgeAllComp(-1);
    rig.run(1);
    EXPECT_TRUE(rig.logged("⟲ Exposure compensation: back to zero"));
    EXPECT_EQ(spoken.back(), "exposure reset");
    control.setOffsets("CAM1", {.enabled = true, .partials = -1, .totality = 3});
    EXPECT_EQ(control.compSummary(), "CAM1 -1/+3");
    rig.run(1);
    EXPECT_EQ(spoken.back(), "CAM1 partials minus 1 stop, totality plus 3 stops");
    control.resetExposureComp(true);
    EXPECT_EQ(control.compSummary(), "0");
    EXPECT_FALSE(control.compActive());
}

TEST_F(Compensation, theGapToTheNextFrameLimitsTheShutterByScriptProfileOrDefault) {
    EXPECT_EQ(control.compGaps("CAM1"), (exposure::CompGaps{.same = 0.5, .change = 1, .source = "default"}));
    const auto body = rig.addBody("CAM1");
    EXPECT_EQ(control.compGaps("CAM1"),
              (exposure::CompGaps{.same = 0.2, .change = 0.5, .source = "profile"}));
    rig.machine.settings.setNumber("eclipse.measuredFloor." + body->model(), 0.8);
    EXPECT_EQ(control.compGaps("CAM1").change, 0.8);
    EXPECT_DOUBLE_EQ(control.compGaps("CAM1").same, 0.32);
    rig.load("CAMSET,CAM1,gap_same=0.3,gap_change=0.6\n" + rig.frameAt(100) + rig.frameAt(101));
    EXPECT_EQ(control.compGaps("CAM1"), (exposure::CompGaps{.same = 0.3, .change = 0.6, .source = "script"}));
    const auto neighbor = control.compNeighbor(rig.model.script().captures().at(0));
    ASSERT_TRUE(neighbor);
    EXPECT_NEAR(neighbor->spacing, 1, 1e-6);
    EXPECT_TRUE(neighbor->same);
    EXPECT_FALSE(control.compNeighbor(rig.model.script().captures().at(1)));
}

TEST_F(Compensation, aRunBeginsAtZeroAndWhatIsNudgedInItReachesBodyAndLog) {
    const auto body = rig.addBody("CAM1");
    CompRules rules;
    rules.enabled = {CompVariable::iso};
    control.rules().saveCompRules(rules, "CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(20) + rig.frameAt(90));
    control.nudgeAllComp(3);
    rig.playFrom(0);
    EXPECT_FALSE(control.compActive());
    EXPECT_TRUE(rig.logged("⟲ Exposure compensation reset to 0 for every camera"));
    rig.run(11);
    control.nudgeAllComp(1);
    rig.run(11);
    ASSERT_EQ(body->shots.size(), 2U);
    EXPECT_EQ(body->shots[1].iso, body->shots[0].iso * 2);
    const auto rows = rig.rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0][16], "0");
    EXPECT_EQ(rows[1][16], "1");
    EXPECT_EQ(rows[1][17], "+1: ISO 200→400");
    EXPECT_TRUE(rig.logged("⟲ +1: ISO 200→400"));
    const std::string csv = rig.files.only(".csv");
    EXPECT_NE(csv.find("exposure compensation: CAM1 +1 for every camera"), csv.npos);
}
