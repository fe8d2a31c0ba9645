#include "rig/links/LumixFamily.h"

#include "cameras/usb/USBCameraNames.h"
#include "support/Drivers.h"
#include "support/ScriptedFamily.h"
#include "support/ScriptedHelpers.h"
#include "support/ScriptedUsb.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace zenka;
using testing::ElementsAre;
using testing::HasSubstr;
using HelperSaid = test::ScriptedHelpers::Answer;

namespace {

struct LumixFamilyTest : testing::Test {
    test::ScriptedUsbBus bus;
    test::ScriptedProcessTable processes;
    test::TempFolder root;
    std::optional<test::ScriptedHelpers> helpers;
    std::optional<cameras::CameraDaemons> daemons;
    std::shared_ptr<test::ScriptedFamily> universal = std::make_shared<test::ScriptedFamily>();
    bool silent = false;
    test::VirtualRig rig{[this](platform::VirtualPorts& machine) -> rig::CameraDetector::Families {
        helpers.emplace(machine.time);
        daemons.emplace(processes, machine.queues);
        const cameras::LumixMachine here{.drivers = test::driversOn(machine),
                                         .children = *helpers,
                                         .programFolder = root.path(),
                                         .environment = [](const std::string&) { return std::nullopt; }};
        return {std::make_shared<rig::LumixFamily>(here, bus, *daemons), universal};
    }};

    void SetUp() override {
        std::ofstream(root.path() / "zenka-lumix-helper") << "x";
        helpers->answer = [this, usual = helpers->answer](const auto& request) {
            return silent ? HelperSaid{.words = {{"fired", false}, {"responded", false}}, .seconds = 5}
                          : usual(request);
        };
    }
    void plugIn(const std::string& model, const std::string& serial, int address) {
        bus.plugged->push_back(
            {.product = model, .serial = serial, .vid = 0x04da, .busNumber = 3, .address = address});
        universal->plugIn(serial, model, cameras::USBCameraNames::gphotoPort(bus.plugged->back()));
    }
    void detect() {
        rig.model.detector().detectCameras();
        rig.run(30);
        ASSERT_FALSE(rig.model.detector().detecting().get());
    }
    rig::CameraRoster::Camera body(std::size_t index = 0) { return rig.model.roster().cameras().at(index); }
};

} // namespace

TEST_F(LumixFamilyTest, bodiesThatReadLumixAreHeldAndFireAndTheRestIsLeft) {
    plugIn("Panasonic LUMIX DC-G9M2", "S1", 7);
    plugIn("Nikon DSC Z 8", "N1", 8);
    detect();
    ASSERT_EQ(rig.model.roster().cameras().size(), 2U);
    EXPECT_EQ(body(1)->backend(), "gphoto2");
    EXPECT_THAT(universal->calls, ElementsAre("enumerate", "connect N1"));
    EXPECT_THAT(helpers->starts.at(0).arguments, ElementsAre("--bus", "3", "--address", "7"));
    EXPECT_EQ(body()->backend(), "LumixPTP");
    EXPECT_EQ(body()->port(), "usb:003,007");
    EXPECT_EQ(body()->usbBus(), 3);
    rig.model.roster().setLabelOfSerial("S1", "CAM1");
    rig.load(rig.frameAt(0) + rig.frameAt(2));
    rig.playFrom(-1);
    rig.run(6);
    EXPECT_EQ(body()->shotCount(), 2);
    EXPECT_EQ(body()->confirmedFrames(), 2);
    rig.model.transport().togglePlay();
    rig.model.logbook().endRunLog(true, false);
    EXPECT_TRUE(rig.logged("✓ CAM1: 2 of 2 fired frames confirmed stored"));
}

TEST_F(LumixFamilyTest, aBodyThatDoesNotGetThroughIsLeftToTheUniversalDriverWithAWordOnWhy) {
    plugIn("Panasonic LUMIX DC-GH5", "S1", 7);
    silent = true;
    detect();
    EXPECT_EQ(body()->backend(), "gphoto2");
    EXPECT_TRUE(rig.logged("LUMIX detect — Panasonic LUMIX DC-GH5 on USB wouldn't connect (stuck)."));
    EXPECT_TRUE(rig.logged("(or restart the computer)"));
    EXPECT_EQ(helpers->living, 0) << "which would find it held";

    silent = false;
    helpers->complaint = "zenka-lumix-helper: the body cannot be opened: Access denied\n";
    detect();
    EXPECT_TRUE(rig.logged("the body cannot be opened: Access denied"));
    helpers->complaint.clear();
    std::filesystem::remove(root.path() / "zenka-lumix-helper");
    detect();
    EXPECT_TRUE(rig.logged("zenka-lumix-helper, is not installed"));
    EXPECT_EQ(body()->backend(), "gphoto2");
}

TEST_F(LumixFamilyTest, aBodyOutsideOfPcModeIsHeldWithAWarning) {
    plugIn("Panasonic LUMIX DC-GH5", "S1", 7);
    helpers->answer = [](const auto&) { return HelperSaid{.words = {{"pc_mode", false}}}; };
    detect();
    EXPECT_EQ(rig.model.roster().cameras().size(), 1U);
    EXPECT_TRUE(rig.logged("Panasonic LUMIX DC-GH5: could not switch the camera into PC mode"));
}

TEST_F(LumixFamilyTest, aBodyThatWasPulledIsBackAtAnotherAddressAndSendsAllItsSettings) {
    plugIn("Panasonic LUMIX DC-S5M2", "S1", 7);
    detect();
    rig.model.roster().setLabelOfSerial("S1", "CAM1");
    rig.model.reconnect().requestReconnect(body());
    rig.run(1);
    bus.plugged->clear();
    rig.run(10);
    EXPECT_FALSE(rig.logged("✅ RECONNECTED")) << "it is not there";
    plugIn("Panasonic LUMIX DC-S5M2", "S1", 12);
    rig.run(6);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1"));
    EXPECT_EQ(body()->port(), "usb:003,012");
    EXPECT_EQ(helpers->living, 1);
    helpers->sent();
    body()->capture({.iso = 100}, [](const auto&) {});
    rig.run(1);
    EXPECT_THAT(helpers->sent(), ElementsAre(HasSubstr(R"("full":true)")));
}

TEST_F(LumixFamilyTest, aBodyWhoseHelperHasEndedIsFlaggedByTheNextLookAtItsBattery) {
    plugIn("Panasonic LUMIX DC-S5M2", "S1", 7);
    detect();
    rig.model.roster().setLabelOfSerial("S1", "CAM1");
    rig.model.batteries().startBatteryHeartbeat();
    rig.run(46);
    EXPECT_EQ(rig.model.modes().of(body()->id()).batteryPercent, 84);
    helpers->answer = [](const auto&) { return HelperSaid{.dies = true}; };
    rig.run(50);
    EXPECT_TRUE(rig.logged("🛑 CAMERA DISCONNECTED: CAM1"));
}

TEST_F(LumixFamilyTest, aCancelledDetectGivesTheBodyBack) {
    plugIn("Panasonic LUMIX DC-S5M2", "S1", 7);
    detect();
    rig.model.detector().detectCameras();
    rig.run(0.1);
    EXPECT_EQ(helpers->living, 0) << "the listing finds it free";
    rig.model.detector().cancelDetect();
    rig.run(5);
    bool ok = false;
    body()->capture({}, [&](const auto& outcome) { ok = outcome.ok; });
    rig.run(1);
    EXPECT_TRUE(ok);
}
