#include "rig/links/CanonFamily.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"
#include "support/Drivers.h"
#include "support/ScriptedFamily.h"
#include "support/ScriptedUsb.h"
#include "support/VirtualRig.h"
#include "support/fake_edsdk/EdsdkLibrary.h"

#include <gmock/gmock.h>

using namespace zenka;
using base::Seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A rig with Canon's SDK beside the universal driver, which sees a Nikon.
struct CanonFamilyTest : testing::Test {
    test::EdsdkLibrary library;
    test::FakeEdsdk& fake = library.fake();
    test::ScriptedUsbBus bus;
    test::ScriptedProcessTable processes;
    std::optional<cameras::CameraDaemons> daemons;
    std::optional<cameras::DriverMachine> driver;
    std::optional<cameras::CanonEDSDK> sdk;
    std::shared_ptr<rig::CanonFamily> canon;
    std::shared_ptr<test::ScriptedFamily> universal = std::make_shared<test::ScriptedFamily>();
    std::vector<std::string> events;

    test::VirtualRig rig{[this](platform::VirtualPorts& machine) { return familiesOn(machine); }};

    rig::CameraDetector::Families familiesOn(platform::VirtualPorts& machine) {
        daemons.emplace(processes, machine.queues);
        driver.emplace(test::driversOn(machine));
        driver->report = [this](const std::string& event, const cameras::DriverMachine::Fields& fields) {
            events.push_back(event);
            for (const auto& [key, value] : fields)
                if (key != "diag")
                    events.back().append(" ").append(key).append("=").append(value);
        };
        sdk.emplace(test::canonOn(*driver, library, bus, processes, *daemons));
        canon = std::make_shared<rig::CanonFamily>(*sdk, machine.settings);
        universal->plugIn("6001", "Nikon Z 8");
        return {canon, universal};
    }

    void plugIn(const std::string& model, const std::string& serial) {
        fake.bodies.push_back({.model = model, .serial = serial});
        bus.plugged->push_back({.product = "Canon Digital Camera",
                                .vendor = {},
                                .serial = {},
                                .vid = 0x04a9,
                                .pid = 0x32f7,
                                .busNumber = 1,
                                .address = 9,
                                .hub = {}});
    }
    void pull() {
        fake.events.emplace_back(0x301, fake.bodies.front().model);
        fake.bodies.erase(fake.bodies.begin());
        bus.plugged->pop_back();
    }

    std::vector<std::string> detected() {
        rig.lines.clear();
        rig.model.detector().detectCameras();
        rig.run(30);
        EXPECT_FALSE(rig.model.detector().detecting().get());
        std::vector<std::string> list;
        for (const auto& camera : rig.model.roster().cameras())
            list.push_back(camera->model() + " " + camera->serial() + " " + camera->backend());
        return list;
    }
};

} // namespace

TEST_F(CanonFamilyTest, aClaimedCanonIsAloneOnTheBusAndNoServiceIsEndedUnderIt) {
    plugIn("Canon EOS R5", "0123");
    plugIn("Canon EOS R6", "0124");
    EXPECT_THAT(detected(), ElementsAre("Canon EOS R5 0123 CanonEDSDK", "Canon EOS R6 0124 CanonEDSDK"));
    EXPECT_TRUE(rig.logged("Canon claimed natively — skipping the universal-driver scan"));
    EXPECT_THAT(universal->calls, IsEmpty());
    EXPECT_EQ(universal->holds, 0);

    EXPECT_EQ(detected().size(), 2U) << "sessions of before are closed for the next pass";
    EXPECT_EQ(fake.sessions(), 2);
}

TEST_F(CanonFamilyTest, aCanonThatCannotBeClaimedGoesToTheUniversalDriverWithTheReason) {
    EXPECT_THAT(detected(), ElementsAre("Nikon Z 8 6001 gphoto2"));
    EXPECT_THAT(fake.calls, IsEmpty()) << "no Canon on the bus: the SDK sleeps on";

    plugIn("Canon EOS R5", "0123");
    library.installed = false;
    EXPECT_THAT(detected(), ElementsAre("Nikon Z 8 6001 gphoto2"));
    EXPECT_TRUE(rig.logged("libEDSDK.so is not installed"));
    library.installed = true;
    fake.results["open"] = {0xC0};
    EXPECT_THAT(detected(), ElementsAre("Nikon Z 8 6001 gphoto2"));
    EXPECT_TRUE(rig.logged("the native driver could not claim it (the computer grabbed the body first)"));
    EXPECT_EQ(canon->lastCanonDiag(), "OpenSession err=0xc0");
    EXPECT_EQ(canon->reportFacts().at("canon_detect"), "OpenSession err=0xc0");

    rig.machine.settings.setFlag(rig::settingsKeys::canonNativeDriver, false);
    fake.calls.clear();
    EXPECT_THAT(detected(), ElementsAre("Nikon Z 8 6001 gphoto2"));
    EXPECT_TRUE(rig.logged("Canon native driver is OFF (eclipse.canonNativeDriver)."));
    EXPECT_THAT(fake.calls, IsEmpty());
    EXPECT_THAT(events, Contains("edsdk_enumerated native=off usb=1"));
}

TEST_F(CanonFamilyTest, aBodyThatEndsTheLinkAMomentLaterIsToldOfWithWhatToDo) {
    plugIn("Canon EOS R5", "0123");
    driver->pause = [this](Seconds span) {
        rig.machine.time.sleepFor(span);
        fake.events.emplace_back(0x301, "Canon EOS R5");
    };
    EXPECT_THAT(detected(), ElementsAre("Nikon Z 8 6001 gphoto2"));
    EXPECT_TRUE(rig.logged("Canon EOS R5: the camera ended the USB link a moment after connecting"));
    EXPECT_THAT(events, Contains("canon_session_died_after_detect model=Canon EOS R5"));
    EXPECT_EQ(fake.sessions(), 0);
}

TEST_F(CanonFamilyTest, anSdkThatSeesNothingOfABodyOnTheBusIsWokenAnewOnce) {
    plugIn("Canon EOS R5", "0123");
    fake.results["list"] = {0x5};
    EXPECT_THAT(detected(), ElementsAre("Canon EOS R5 0123 CanonEDSDK"));
    EXPECT_EQ(std::ranges::count(fake.calls, "init"), 2);
}

TEST_F(CanonFamilyTest, aPulledBodyComesBackInTheRunAndSendsAllItsSettings) {
    plugIn("Canon EOS R5", "0123");
    rig.model.roster().setLabelOfSerial("0123", "CAM1");
    ASSERT_EQ(detected().size(), 1U);
    std::string script;
    for (int frame = 0; frame < 12; ++frame)
        script += rig.frameAt(frame * 2.0);
    rig.load(base::replacedAll(script, ",N,", ",Y,")); // which lets the driver leave out what stays
    rig.playFrom(-1);
    rig.run(3);
    pull();
    rig.run(8);
    EXPECT_TRUE(rig.model.reconnect().showDisconnectAlarm().get());
    plugIn("Canon EOS R5", "0123");
    fake.calls.clear();
    rig.run(14);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1"));
    EXPECT_FALSE(rig.model.reconnect().showDisconnectAlarm().get());
    EXPECT_EQ(std::ranges::count(fake.calls, "set 402=50"), 1) << "sent anew, once";
    EXPECT_EQ(rig.rows().size(), 12U);
    EXPECT_EQ(fake.sessions(), 1);
}

TEST_F(CanonFamilyTest, anIdleBodyThatLeavesTheBusIsMissedAndTheEndClosesAllSessions) {
    plugIn("Canon EOS R5", "0123");
    ASSERT_EQ(detected().size(), 1U);
    rig.model.heldSessions().lookForGone();
    rig.run(1);
    EXPECT_FALSE(rig.logged("no longer on the USB bus"));
    pull();
    rig.model.heldSessions().lookForGone();
    rig.run(1);
    EXPECT_TRUE(rig.logged("no longer on the USB bus — reconnecting…"));
    plugIn("Canon EOS R5", "0123");
    rig.run(5);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED"));
    rig.model.handleAppWillTerminate();
    EXPECT_EQ(fake.sessions(), 0);
    sdk->releaseSDK();
    EXPECT_EQ(fake.references, 0);
}
