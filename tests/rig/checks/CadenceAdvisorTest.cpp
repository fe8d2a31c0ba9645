#include "rig/checks/CadenceAdvisor.h"

#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace zenka;
using test::ScriptedCamera;
using test::VirtualRig;
namespace keys = rig::settingsKeys;

namespace {

struct CadenceAdvisor : testing::Test {
    VirtualRig rig;
    rig::MeasuredFloors floors{rig.machine.settings};
    rig::CadenceAdvisor advisor{rig.model.log(), rig.model.roster(), rig.model.script(), floors};

    std::shared_ptr<ScriptedCamera> add(const std::string& label, const std::string& family,
                                        const std::string& model) {
        const auto camera = std::make_shared<ScriptedCamera>("id-" + label, model);
        camera->family = family;
        rig.model.roster().add(camera);
        rig.model.roster().setLabel(*camera, label);
        return camera;
    }

    /// Two frames a body, so far apart.
    void scriptWith(const std::vector<std::pair<std::string, double>>& gaps) {
        const double clock = rig.model.transport().clock() + 5000;
        std::string text;
        for (const auto& [label, gap] : gaps)
            text += rig.frameAt(clock, label) + rig.frameAt(clock + gap, label);
        rig.load(text);
    }
};

} // namespace

TEST_F(CadenceAdvisor, aFloorIsTheMeasuredOneWithAMarginButNotUnderWhatItsLinkHolds) {
    const auto sony = add("A", "CrSDK", "a1");
    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*sony), 0.4);
    EXPECT_EQ(advisor.floorLabel(*sony), "400ms floor");
    floors.saveMeasuredFloor("a1", 0.2, false);
    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*sony), 0.4);
    floors.saveMeasuredFloor("a1", 0.5, false);
    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*sony), 0.65);
    EXPECT_EQ(advisor.floorLabel(*sony), "650ms measured");
    floors.saveSustainedFloor("a1", 0.3);
    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*sony), 0.3) << "held through a burst, it beats all";

    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*add("B", "gphoto2", "Z8")), 1.3);
    EXPECT_DOUBLE_EQ(advisor.bodyFloorSec(*add("C", "LumixICC", "S5")), 0.5);
    const auto canon = add("D", "CanonEDSDK", "EOS R5");
    floors.saveSustainedFloor("EOS R5", 2);
    EXPECT_EQ(advisor.bodyFloorSec(*canon), 0);
    EXPECT_EQ(advisor.bodyFloorSec(*rig.model.roster().addPlanningCamera("a1")), 0);
}

TEST_F(CadenceAdvisor, spansReadAsMillisecondsUnderASecond) {
    EXPECT_EQ(rig::fmtSecs(0.999), "999 ms");
    EXPECT_EQ(rig::fmtSecs(1.0), "1.0 s");
}

TEST_F(CadenceAdvisor, theSuggestedSpacingSuitsTheSlowestConnectedBody) {
    EXPECT_DOUBLE_EQ(advisor.suggestedMinSpacingSec(), 0.5);
    EXPECT_DOUBLE_EQ(advisor.suggestedSameGapSec(), 0.2);
    const auto sony = add("A", "CrSDK", "a1");
    EXPECT_DOUBLE_EQ(advisor.suggestedMinSpacingSec(), 0.4);
    const auto nikon = add("B", "gphoto2", "Z8");
    floors.saveMeasuredFloor("Z8", 2, false);
    floors.saveSustainedFloor("a1", 9);
    EXPECT_DOUBLE_EQ(advisor.suggestedMinSpacingSec(), 2.6);
    EXPECT_DOUBLE_EQ(advisor.suggestedSameGapSec(), 1.04);
    floors.saveMeasuredFloor("a1", 0.15, true);
    EXPECT_DOUBLE_EQ(advisor.suggestedSameGapSec(), 0.15);

    EXPECT_DOUBLE_EQ(advisor.spacingFloor({}), 0.5);
    EXPECT_DOUBLE_EQ(advisor.spacingFloor({"b"}), 2.6);
    EXPECT_DOUBLE_EQ(advisor.spacingFloor({"Z8"}), 2.6) << "by its model";
    EXPECT_DOUBLE_EQ(advisor.spacingFloor({"A", "B"}), 9);
    nikon->disconnect();
    EXPECT_DOUBLE_EQ(advisor.spacingFloor({"B"}), 0.5);
    EXPECT_DOUBLE_EQ(advisor.suggestedMinSpacingSec(), 0.4);
}

TEST_F(CadenceAdvisor, armingIsHeldUpByABodyThatWasMeasuredAndOnlyThenByAHair) {
    const auto nikon = add("CAM1", "gphoto2", "Z8");
    EXPECT_FALSE(advisor.cadenceAlertForArm());
    rig.load(rig.frameAt(rig.model.transport().clock() + 5000));
    EXPECT_FALSE(advisor.tightestGap(*nikon)) << "one frame has no gap";

    scriptWith({{"CAM1", 1.8}});
    const auto guess = advisor.cadenceAlertForArm();
    ASSERT_TRUE(guess);
    EXPECT_TRUE(guess->estimated);
    EXPECT_EQ(guess->pct, 1) << "within the margin of an estimate";
    EXPECT_FALSE(advisor.holdsArming());
    scriptWith({{"CAM1", 1.9}});
    EXPECT_FALSE(advisor.cadenceAlertForArm());

    floors.saveMeasuredFloor("Z8", 2, false); // the floor is 2.6
    scriptWith({{"CAM1", 2.56}});
    EXPECT_FALSE(advisor.holdsArming());
    scriptWith({{"CAM1", 2.5}});
    EXPECT_TRUE(advisor.holdsArming());
    scriptWith({{"CAM1", 1.3}});
    EXPECT_TRUE(advisor.holdsArming());
    const auto& alert = advisor.tooTightWarning().get();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->cameraName, "CAM1");
    EXPECT_EQ(alert->pct, 50);
    EXPECT_NEAR(alert->scriptGapSec, 1.3, 1e-6);
    EXPECT_DOUBLE_EQ(alert->bodyFloorSec, 2.6);
    EXPECT_EQ(rig.lines.back(),
              "Timing: arm paused — script is faster than CAM1 can shoot (~50% would drop).");

    std::vector<rig::CadenceChoice> chosen;
    advisor.chosen().connect([&](rig::CadenceChoice choice) { chosen.push_back(choice); });
    advisor.resolveTooTightWarning(rig::CadenceChoice::measure);
    EXPECT_FALSE(advisor.tooTightWarning().get());
    EXPECT_EQ(chosen, std::vector{rig::CadenceChoice::measure});
}

TEST_F(CadenceAdvisor, theWorstBodyIsTheOneThatIsNamed) {
    add("CAM1", "CrSDK", "a1");
    add("CAM2", "gphoto2", "Z8");
    rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("S5"), "SIM");
    scriptWith({{"CAM1", 0.3}, {"CAM2", 0.3}, {"SIM", 0.001}});
    EXPECT_EQ(advisor.cadenceAlertForArm()->cameraName, "CAM2");
    scriptWith({{"SIM", 0.001}});
    EXPECT_FALSE(advisor.cadenceAlertForArm()) << "a simulated body has no limit";
}

TEST_F(CadenceAdvisor, theTransportArmsOnlyWhenItIsNotHeldUpOrForced) {
    auto& transport = rig.model.transport();
    transport.setArmCheck([this] { return advisor.holdsArming(); });
    add("CAM1", "gphoto2", "Z8");
    floors.saveMeasuredFloor("Z8", 2, false);
    scriptWith({{"CAM1", 1.3}});
    transport.armRealEclipseTiming(false);
    EXPECT_FALSE(transport.live());
    EXPECT_TRUE(advisor.tooTightWarning().get());
    transport.armRealEclipseTiming(true);
    EXPECT_TRUE(transport.live());
}

TEST_F(CadenceAdvisor, dropsAreExplainedWhereTheScriptWasTooTight) {
    add("CAM1", "CrSDK", "a1");
    add("CAM2", "gphoto2", "Z8");
    scriptWith({{"CAM1", 30}, {"CAM2", 0.65}});
    int explained = 0;
    advisor.explained().connect([&] { ++explained; });
    advisor.explainDrops({{"CAM1", 50, 0}, {"CAM2", 50, 0}});
    EXPECT_FALSE(advisor.dropExplainer().get()) << "nothing was dropped";
    advisor.explainDrops({{"CAM1", 10, 40}, {"CAM2", 40, 10}});
    EXPECT_FALSE(advisor.dropExplainer().get()) << "the worst had time enough";
    advisor.explainDrops({{"CAM1", 50, 1}, {"CAM2", 40, 10}});
    const auto alert = advisor.dropExplainer().get();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->cameraName, "CAM2");
    EXPECT_EQ(alert->frames, 50);
    EXPECT_EQ(alert->dropped, 10);
    EXPECT_EQ(alert->pct, 50);
    advisor.resolveDropExplainer(rig::CadenceChoice::close);
    EXPECT_FALSE(advisor.dropExplainer().get());
    EXPECT_EQ(explained, 1);
}

TEST_F(CadenceAdvisor, aRunThatIsCompletedTellsHowItsBodiesDid) {
    std::vector<rig::BodyTally> told;
    auto& logbook = rig.model.logbook();
    logbook.completed().connect([&](const std::vector<rig::BodyTally>& bodies) { told = bodies; });
    const auto body = rig.addBody("CAM1");
    body->outcomes = {test::refusal()};
    const double clock = rig.model.transport().clock();
    rig.load(rig.frameAt(clock + 10) + rig.frameAt(clock + 20));
    rig.playFrom(clock + 5);
    rig.run(30);
    logbook.endRunLog(true, false);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].label, "CAM1");
    EXPECT_EQ(told[0].ok, 1);
    EXPECT_EQ(told[0].dropped, 1);
}

TEST_F(CadenceAdvisor, whatIsNoMeasurementReadsAsNone) {
    auto& settings = rig.machine.settings;
    settings.setNumber(std::string(keys::measuredFloorPrefix) + "Z8", 0);
    settings.setText(std::string(keys::sustainedFloorPrefix) + "Z8", "quick");
    settings.setNumber(std::string(keys::burstDepthPrefix) + "Z8", 12);
    EXPECT_FALSE(floors.measuredFloor("Z8"));
    EXPECT_FALSE(floors.sustainedFloor("Z8"));
    EXPECT_FALSE(floors.burstDepth("Z8")) << "no cadence";
    settings.setNumber(std::string(keys::burstCadencePrefix) + "Z8", 0.5);
    EXPECT_EQ(floors.burstDepth("Z8"), (rig::MeasuredFloors::BurstDepth{.frames = 12, .cadenceSec = 0.5}));
    settings.setNumber(std::string(keys::burstDepthPrefix) + "Z8", 1e30);
    EXPECT_FALSE(floors.burstDepth("Z8"));
    const std::string longKey = std::string(keys::longFrameFloorPrefix) + "Z8";
    for (const char* damaged : {"", "[]", R"({"shutter":2})", R"({"shutter":"2","cadence":3,"held":true})",
                                R"({"shutter":2,"cadence":-3,"held":true})"}) {
        settings.setText(longKey, damaged);
        EXPECT_FALSE(floors.longFrameFloor("Z8")) << damaged;
    }
    floors.saveLongFrameFloor("Z8", 2, 2.5, true);
    EXPECT_EQ(floors.longFrameFloor("Z8"), (rig::MeasuredFloors::LongFrameFloor{2, 2.5, true}));
}

TEST_F(CadenceAdvisor, measurementsOfEarlierVersionsAreThrownAwayOnce) {
    const std::vector<std::string> olympus{"OLYMPUS E-M1X", "OM System OM-1", "omsystem", "E-M1 Mark III",
                                           "OM-5"};
    const auto saveAll = [&](const std::string& model) {
        floors.saveMeasuredFloor(model, 0.4, false);
        floors.saveMeasuredFloor(model, 0.4, true);
        floors.saveSustainedFloor(model, 0.4);
        floors.saveBurstDepth(model, 9, 0.4);
        floors.saveLongFrameFloor(model, 2, 2.5, true);
    };
    const auto stored = [&](const std::string& model) {
        return std::ranges::count_if(rig.machine.settings.keysBeginningWith("eclipse."),
                                     [&](const std::string& key) { return key.ends_with("." + model); });
    };
    for (const std::string& model : olympus)
        saveAll(model);
    saveAll("Z8");
    saveAll("TOM-1");
    floors.discardOlympusTriggerEraMeasurements();
    for (const std::string& model : olympus)
        EXPECT_EQ(stored(model), 0) << model;
    EXPECT_EQ(stored("Z8"), 6);
    EXPECT_EQ(stored("TOM-1"), 6);
    saveAll("OM-5");
    floors.discardOlympusTriggerEraMeasurements();
    EXPECT_EQ(stored("OM-5"), 6) << "measured since then";

    rig.machine.settings.setText(keys::scriptText, "kept");
    floors.discardFabricatedCadenceMeasurements();
    EXPECT_EQ(stored("Z8") + stored("OM-5"), 0);
    EXPECT_EQ(rig.machine.settings.text(keys::scriptText), "kept");
    saveAll("Z8");
    floors.discardFabricatedCadenceMeasurements();
    EXPECT_EQ(stored("Z8"), 6);
}
