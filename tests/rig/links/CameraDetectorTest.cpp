#include "rig/links/CameraDetector.h"

#include "support/ScriptedFamily.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Turn = rig::CameraFamily::Turn;

struct Detect : testing::Test {
    std::vector<std::string> calls;
    std::shared_ptr<test::ScriptedFamily> canon =
        std::make_shared<test::ScriptedFamily>("CanonEDSDK", Turn::alone);
    std::shared_ptr<test::ScriptedFamily> lumix =
        std::make_shared<test::ScriptedFamily>("LumixPTP", Turn::beforeOthers);
    std::shared_ptr<test::ScriptedFamily> universal = std::make_shared<test::ScriptedFamily>();
    test::VirtualRig rig{{canon, lumix, universal}};
    rig::CameraDetector& detector = rig.model.detector();
    rig::CameraRoster& roster = rig.model.roster();

    void SetUp() override {
        for (const auto& family : {canon, lumix, universal})
            family->shared = &calls;
        lumix->takesModel = "LUMIX";
    }
    void detect() {
        detector.detectCameras();
        rig.run(5);
        EXPECT_FALSE(detector.detecting().get());
        EXPECT_EQ(universal->holds, 0);
    }
    std::vector<std::string> bodies() {
        std::vector<std::string> list;
        for (const auto& camera : roster.cameras())
            list.push_back(camera->backend() + " " + camera->serial());
        return list;
    }
};

} // namespace

TEST_F(Detect, eachBodyGetsTheBestDriverThatCanHoldIt) {
    universal->plugIn("N1", "Nikon Z8");
    universal->plugIn("L1", "LUMIX GH6");
    universal->plugIn("L2", "LUMIX S5");
    lumix->refusing = {"L2"};
    lumix->fallback = "One LUMIX is on the universal driver.";
    roster.addPlanningCamera("Generic PTP");
    detect();
    EXPECT_THAT(bodies(), ElementsAre("LumixPTP L1", "gphoto2 N1", "gphoto2 L2", "sim "))
        << "planning bodies stay beside the real ones";
    EXPECT_THAT(calls, ElementsAre("CanonEDSDK enumerate", "gphoto2 enumerate", "LumixPTP enumerate",
                                   "LumixPTP connect L1", "LumixPTP connect L2", "gphoto2 connect N1",
                                   "gphoto2 connect L2"));
    EXPECT_TRUE(rig.logged("One LUMIX is on the universal driver."));
    EXPECT_TRUE(rig.logged("Detected 3: "));
    EXPECT_EQ(roster.cameraMode().get(), rig::CameraMode::live);
}

TEST_F(Detect, aBodyThatMustWorkAloneEndsThePass) {
    canon->plugIn("C1", "EOS R5");
    universal->plugIn("N1", "Nikon Z8");
    detect();
    EXPECT_THAT(bodies(), ElementsAre("CanonEDSDK C1"));
    EXPECT_TRUE(rig.logged("Canon claimed natively — skipping the universal-driver scan"));
    EXPECT_EQ(universal->count("enumerate"), 0);

    const auto before = canon->made.at("C1");
    canon->refusing = {"C1"};
    detect();
    EXPECT_THAT(bodies(), ElementsAre("gphoto2 N1")) << "one that could not be claimed is no reason to stop";
    EXPECT_TRUE(before->suspended);
    EXPECT_FALSE(before->connected());
}

TEST_F(Detect, labelsAndCountsFollowABodyByItsSerialNumber) {
    universal->plugIn("N1");
    universal->plugIn("N2");
    detect();
    roster.setLabel(*roster.cameras()[1], "WIDE");
    rig.load(rig.frameAt(0, "WIDE") + rig.frameAt(1, "WIDE"));
    rig.playFrom(-1);
    rig.run(5);
    rig.model.transport().togglePlay();
    const std::string before = roster.cameras()[1]->id();
    EXPECT_EQ(rig.model.outcomes().shotCounts().at(before), 2);
    std::ranges::reverse(universal->bus); // on other ports
    detect();
    EXPECT_EQ(roster.labelFor(*roster.cameras()[0]), "WIDE");
    EXPECT_EQ(rig.model.outcomes().shotCounts().at(roster.cameras()[0]->id()), 2);
    EXPECT_FALSE(rig.model.outcomes().shotCounts().contains(before));
}

TEST_F(Detect, twoBodiesOfOneSerialNumberAreToldAndKeepTwoLabels) {
    universal->plugIn("0001");
    universal->plugIn("0001");
    detect();
    EXPECT_TRUE(rig.logged("Two bodies report the serial number 0001"));
    roster.setLabel(*roster.cameras()[0], "A");
    roster.setLabel(*roster.cameras()[1], "B");
    EXPECT_EQ(roster.labelFor(*roster.cameras()[0]), "A");
}

TEST_F(Detect, aPassIsAloneCanBeCancelledAndLeavesTheListAsItWas) {
    universal->plugIn("N1");
    detect();
    universal->plugIn("N2");
    detector.detectCameras();
    detector.detectCameras();
    EXPECT_TRUE(rig.logged("Detect is running already"));
    rig.run(0.1);
    EXPECT_TRUE(universal->made.at("N1")->suspended);
    EXPECT_EQ(universal->holds, 0) << "not before the bus is listed";
    rig.run(0.6);
    EXPECT_EQ(universal->holds, 1);
    EXPECT_FALSE(detector.step().get().empty());
    detector.cancelDetect();
    detector.cancelDetect();
    EXPECT_EQ(rig.countLines("Stopping detect…"), 1);
    rig.run(5);
    EXPECT_FALSE(detector.detecting().get());
    EXPECT_TRUE(detector.step().get().empty());
    EXPECT_EQ(universal->holds, 0);
    EXPECT_THAT(bodies(), ElementsAre("gphoto2 N1"));
    EXPECT_EQ(universal->count("connect N2"), 0);
    EXPECT_FALSE(universal->made.at("N1")->suspended) << "it can be fired as before";
    EXPECT_TRUE(universal->made.at("N1")->connected());
}

TEST_F(Detect, aRunKeepsTheBodiesThatItHas) {
    universal->plugIn("N1");
    detect();
    rig.load(rig.frameAt(3000));
    rig.playFrom(0);
    detector.detectCameras();
    EXPECT_FALSE(detector.detecting().get());
    EXPECT_TRUE(rig.logged("Detect would take its cameras out of its hands"));
    EXPECT_FALSE(universal->made.at("N1")->suspended);
}

TEST_F(Detect, anEmptyBusIsToldWithWhatToDo) {
    detect();
    EXPECT_THAT(bodies(), IsEmpty());
    EXPECT_TRUE(rig.logged("No camera found. Connect a body in PC / PTP (tether) mode"));
    EXPECT_EQ(roster.cameraMode().get(), rig::CameraMode::simulated);
}

TEST_F(Detect, theRosterTellsWhoIsMissingAndWhoHasNothingToDo) {
    universal->plugIn("N1");
    universal->plugIn("N2");
    detect();
    roster.setLabel(*roster.cameras()[0], "CAM1");
    roster.setLabel(*roster.cameras()[1], "SPARE");
    const std::vector<std::string> script{"CAM1", "CAM2"};
    const auto missing = roster.missingCameras(script);
    ASSERT_EQ(missing.size(), 1U);
    EXPECT_EQ(missing[0].token, "CAM2");
    ASSERT_EQ(roster.unusedConnectedCameras(script).size(), 1U);
    EXPECT_EQ(roster.labelFor(*roster.unusedConnectedCameras(script)[0]), "SPARE");
    const auto entries = roster.cameraRoster(script);
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_TRUE(entries[0].connected);
    EXPECT_FALSE(entries[2].connected) << "those without a body come last";
    roster.setDisconnected(roster.cameras()[0]->id(), true);
    EXPECT_EQ(roster.missingCameras(script).size(), 2U);
}

TEST_F(Detect, aRunThatIsPickedUpGetsItsRealBodiesBackByName) {
    universal->plugIn("N1");
    detect();
    roster.setLabel(*roster.cameras()[0], "LONG");
    rig.load(rig.frameAt(4000, "LONG"));
    rig.model.transport().armRealEclipseTiming(true);
    rig.run(10);

    auto other = std::make_shared<test::ScriptedFamily>();
    other->plugIn("N1");
    test::VirtualRig next{{other}};
    next.files.contents = rig.files.contents;
    next.machine.time.setWall(rig.machine.time.now());
    next.model.bootstrap();
    next.model.keeper().resumeRun();
    EXPECT_TRUE(next.logged("Re-detecting cameras to rebind by serial…"));
    next.run(5);
    ASSERT_EQ(next.model.roster().camerasFor("LONG").size(), 1U);
    EXPECT_EQ(next.model.roster().camerasFor("LONG")[0]->serial(), "N1");
}

TEST_F(Detect, aLabelOutlivesTheSessionInTheLibrary) {
    universal->plugIn("N1", "Nikon Z8");
    detect();
    roster.setLabel(*roster.cameras()[0], "WIDE, left"); // a comma does no harm
    rig.run(1);
    auto later = std::make_shared<test::ScriptedFamily>();
    later->plugIn("N1", "Nikon Z8");
    test::VirtualRig next{{later}};
    next.files.contents = rig.files.contents;
    next.model.bootstrap();
    next.model.detector().detectCameras();
    next.run(5);
    EXPECT_EQ(next.model.roster().labelFor(*next.model.roster().cameras().at(0)), "WIDE, left");
}
