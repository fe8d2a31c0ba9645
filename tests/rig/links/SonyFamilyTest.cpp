#include "rig/links/SonyFamily.h"

#include "cameras/sony/sony_bridge.h"
#include "support/Drivers.h"
#include "support/FakeCrSDK.h"
#include "support/ScriptedFamily.h"
#include "support/ScriptedUsb.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

using namespace zenka;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr char dial[] =
    " Also set the drive dial to Single: on the universal driver I can't check it, and a continuous "
    "dial sprays a burst per press.";
constexpr char sawNone[] = "Native Sony SDK loaded but saw 0 cameras";
constexpr char stuck[] =
    "⚠️ The Sony connection layer is stuck (a camera scan never returned). Unplug and replug the "
    "Sony USB cables, or power-cycle the bodies; this state cannot be cleared in software.";

/// A rig with Sony's family before a universal one that lists the bus.
struct SonyFamilyTest : testing::Test {
    test::FakeCrSDK sdk;
    test::ScriptedProcessTable processes;
    std::shared_ptr<test::VirtualSonyWaits> waits;
    std::optional<cameras::CameraDaemons> daemons;
    std::vector<std::pair<std::string, cameras::DriverMachine::Fields>> reports;
    std::shared_ptr<rig::SonyFamily> family;
    std::shared_ptr<test::ScriptedFamily> universal = std::make_shared<test::ScriptedFamily>();

    test::VirtualRig rig{[this](platform::VirtualPorts& machine) { return familiesOn(machine); }};

    rig::CameraDetector::Families familiesOn(platform::VirtualPorts& machine) {
        waits = std::make_shared<test::VirtualSonyWaits>(machine.time);
        daemons.emplace(processes, machine.queues);
        cameras::DriverMachine driver = test::driversOn(machine);
        driver.report = [this](const std::string& event, const auto& fields) {
            reports.emplace_back(event, fields);
        };
        family = std::make_shared<rig::SonyFamily>(rig::SonyFamily::Machine{
            .driver = driver, .libraries = sdk, .daemons = *daemons, .rivals = {}, .waits = waits});
        return {family, universal};
    }
    ~SonyFamilyTest() override {
        waits->stuckWork = nullptr;
        for (const auto& camera : rig.model.roster().cameras())
            camera->shutDown(base::Seconds{2});
    }

    void plugIn(const std::string& listedAs, const std::string& serial, bool sony = true) {
        universal->bus.push_back({.model = listedAs,
                                  .port = "usb:001,00" + std::to_string(universal->bus.size() + 2),
                                  .serial = serial,
                                  .hub = {},
                                  .isSony = sony});
    }

    std::vector<std::string> detect() {
        rig.model.detector().detectCameras();
        rig.run(30);
        return drivers();
    }
    std::vector<std::string> drivers() {
        std::vector<std::string> all;
        for (const auto& camera : rig.model.roster().cameras())
            all.push_back(camera->backend() + " " + camera->model());
        return all;
    }
};

} // namespace

TEST_F(SonyFamilyTest, aSonyIsHeldByItsOwnSdkAndTheRestByTheUniversalDriver) {
    plugIn("Sony Alpha-A7 IV (Control)", "USB1");
    plugIn("Z8", "USB2", false);
    sdk.bodies = {{.model = "ILCE-1", .id = {0x11}}, {.model = "ILCE-7M4", .id = {0xAB}}};
    sdk.bodies[1].values[0x10E] = 0x00010000;
    EXPECT_THAT(detect(), ElementsAre("CrSDK Sony Alpha-A7 IV (Control)", "gphoto2 Z8"));
    const auto& sony = *rig.model.roster().cameras()[0];
    EXPECT_EQ(sony.serial(), "ab");
    EXPECT_TRUE(sony.driveModeBurst());
    EXPECT_EQ(sony.handshakeOK(), true);
    EXPECT_FALSE(rig.logged("fallback"));
    EXPECT_EQ(sdk.openSessions(), 1U) << "a body that the bus does not list is left alone";
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].first, "sony_connected");
    EXPECT_EQ(reports[0].second.at("fw"), "2.00");
    EXPECT_EQ(reports[0].second.at("ep"), "1>1");

    EXPECT_THAT(detect(), ElementsAre("CrSDK Sony Alpha-A7 IV (Control)", "gphoto2 Z8"));
    EXPECT_EQ(sdk.openSessions(), 1U) << "the session of before has been ended";
}

TEST_F(SonyFamilyTest, aSonyLeftToTheUniversalDriverIsExplained) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    const auto fallsBackWith = [&](const std::string& sentence) {
        rig.lines.clear();
        EXPECT_THAT(detect(), ElementsAre("gphoto2 Sony Alpha-A7 IV"));
        EXPECT_EQ(rig.countLines(sentence), 1) << sentence;
        EXPECT_EQ(rig.countLines(dial), 1);
        EXPECT_TRUE(rig.logged("⚠️ A Sony is on the fallback"));
    };
    sdk.installed = false;
    fallsBackWith("Sony CrSDK failed to initialize (the native SDK never loaded).");
    sdk.installed = true;
    sdk.initWorks = false;
    fallsBackWith("Sony CrSDK failed to initialize (the native SDK never loaded).");
    sdk.initWorks = true;
    fallsBackWith(sawNone);
    EXPECT_EQ(std::ranges::count(sdk.calls, "enumerate"), 2) << "it looks twice";
    sdk.bodies = {{.model = "ILCE-1", .id = {0x11}}};
    fallsBackWith(sawNone);
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0x11}, .connectError = 33290}};
    fallsBackWith("but couldn't open a control session (connect failed).");
    EXPECT_THAT(rig.model.detector().sonyFallbackReason().get(), testing::HasSubstr("(connect failed)"));
    EXPECT_EQ(family->lastSonyDiag(), "connect of ILCE-7M4 failed, last callback error none");
    EXPECT_THAT(family->reportFacts().at("sony_detect"), testing::StartsWith(family->lastSonyDiag()));
}

TEST_F(SonyFamilyTest, theCodesThatTheBridgeHasRecordedGoIntoTheReportOfARun) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0xAB}, .fireError = 0x8207}};
    detect();
    rig.model.roster().cameras()[0]->capture({.iso = 100, .shutterSec = 0.01}, [](const auto&) {});
    rig.run(5);
    EXPECT_THAT(family->reportFacts().at("sony_detect"),
                testing::StartsWith("enumerated 1 camera(s) fire=0x8207"));
}

TEST_F(SonyFamilyTest, aCancelledPassLetsGoOfWhatItHasConnected) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0xAB}}};
    detect();
    sdk.takeCalls();
    sdk.onEnumerate = [this] { rig.machine.loop.post([this] { rig.model.detector().cancelDetect(); }); };
    detect();
    sdk.onEnumerate = nullptr;
    rig.run(30);
    EXPECT_EQ(sdk.openSessions(), 1U);
    bool ok = false;
    rig.model.roster().cameras()[0]->capture({}, [&](const auto& outcome) { ok = outcome.ok; });
    rig.run(1);
    EXPECT_TRUE(ok) << "the driver of before has its body again";
}

TEST_F(SonyFamilyTest, aLostBodyComesBackByItsSerial) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0xAB}}};
    detect();
    const auto before = rig.model.roster().cameras()[0];
    const auto there = std::exchange(sdk.bodies[0].id, {0x77}); // another body stands in its place
    rig.model.reconnect().requestReconnect(before);
    rig.run(5);
    EXPECT_EQ(rig.model.roster().cameras()[0], before);
    sdk.bodies[0].id = there;
    sdk.bodies[0].values[0x10E] = 0x00040000;
    rig.run(5);
    const auto after = rig.model.roster().cameras()[0];
    ASSERT_NE(after, before);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED"));
    EXPECT_TRUE(after->driveModeBurst());
    EXPECT_EQ(after->serial(), "ab");
    EXPECT_EQ(sdk.openSessions(), 1U);
}

TEST_F(SonyFamilyTest, aStuckSdkIsToldOfAndNotAskedAgain) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0xAB}}};
    waits->stuck = true;
    EXPECT_THAT(detect(), ElementsAre("gphoto2 Sony Alpha-A7 IV")) << "the pass goes on without it";
    rig.run(30);
    waits->stuck = false;
    sdk.takeCalls();
    rig.lines.clear();
    detect();
    EXPECT_THAT(sdk.calls, IsEmpty());
    ASSERT_GE(rig.lines.size(), 2U);
    EXPECT_NE(rig.lines[0].find(stuck), std::string::npos);
    EXPECT_NE(rig.lines[1].find("Detecting cameras"), std::string::npos);
}

TEST_F(SonyFamilyTest, anIdleBodyWhoseLinkHasEndedIsMissedButNotOneThatTheSdkIsMending) {
    plugIn("Sony Alpha-A7 IV", "USB1");
    sdk.bodies = {{.model = "ILCE-7M4", .id = {0xAB}}};
    ASSERT_EQ(detect().size(), 1U);
    const auto look = [this] {
        rig.model.heldSessions().lookForGone();
        rig.run(1);
        return rig.logged("no longer on the USB bus");
    };
    EXPECT_FALSE(look());
    sdk.warn(0, 0x20002);
    EXPECT_FALSE(look());
    sdk.tell(0, [](const cameras::CrSDKEvents& events) { events.disconnected(events.context, 0); });
    EXPECT_TRUE(look());
    rig.run(10);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED"));
    EXPECT_EQ(sdk.openSessions(), 1U);
}
