#include "cameras/sony/SonyBench.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace zenka;
using namespace zenka::cameras;
using test::code250;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

struct SonyBridge : testing::Test, test::SonyBench {
    using Calls = std::vector<std::string>;

    /// One exposure; what was sent for it.
    Calls exposed(std::int64_t handle, int iso, double aperture, double shutterSec, double expComp = 0) {
        sdk.takeCalls();
        EXPECT_EQ(zenka_sony_set_exposure(handle, iso, aperture, shutterSec, expComp), 1);
        return sdk.takeCalls();
    }
};

} // namespace

TEST_F(SonyBridge, withoutTheSdkThereIsNoCamera) {
    const auto nothing = [] {
        std::array<char, 256> names{};
        std::array<char, 256> ids{};
        EXPECT_EQ(zenka_sony_init(), 0);
        EXPECT_EQ(zenka_sony_sdk_version(), 0U);
        EXPECT_EQ(zenka_sony_enumerate(names.data(), ids.data(), 2, 128), 0);
        EXPECT_EQ(zenka_sony_connect(0), 0);
        EXPECT_THAT(SonyCRSDK::enumerate(), IsEmpty());
        EXPECT_EQ(zenka_sony_set_exposure(7, 100, 8, 1, 0), 0);
        EXPECT_EQ(zenka_sony_health_ping(7), 0);
        zenka_sony_disconnect(7);
        zenka_sony_release();
    };
    sdk.installed = false;
    nothing();
    sdk.installed = true;
    sdk.version = crsdkTableVersion + 1; // a module of another time
    nothing();
    zenka_sony_set_up(nullptr);
    nothing();
    EXPECT_THAT(sdk.calls, IsEmpty());
}

TEST_F(SonyBridge, anEnumerationTellsModelsAndIdsCutToTheirRoom) {
    sdk.bodies.push_back({.model = "", .id = {0x00, 0x0F, 0xA0, 0xFF}});
    EXPECT_THAT(SonyCRSDK::enumerate(),
                ElementsAre(SonyCRSDK::Found{.model = "ILCE-7M4", .serial = "ab01", .index = 0},
                            SonyCRSDK::Found{.model = "Sony", .serial = "000fa0ff", .index = 1}));
    std::array<char, 10> names{};
    std::array<char, 10> ids{};
    EXPECT_EQ(zenka_sony_enumerate(names.data(), ids.data(), 2, 5), 2);
    EXPECT_STREQ(names.data(), "ILCE");
    EXPECT_STREQ(ids.data() + 5, "000f");
    EXPECT_EQ(zenka_sony_enumerate(names.data(), ids.data(), 1, 5), 1) << "no more than there is room for";
}

TEST_F(SonyBridge, aConnectionTakesControlOfTheBody) {
    auto& body = sdk.bodies[0];
    body.values = {{0x105, 3}, {0x119, 1}, {0x11A, 1}};
    SonyCRSDK::enumerate();
    sdk.takeCalls();
    const std::int64_t handle = zenka_sony_connect(0);
    EXPECT_THAT(sdk.takeCalls(), ElementsAre("connect 0", "set 119=2", "set 11a=2", "set 105=1"));
    EXPECT_EQ(zenka_sony_priority_before(), 1U);
    EXPECT_EQ(zenka_sony_priority_after(), 2U);
    EXPECT_EQ(zenka_sony_exposure_program_before(), 3U);
    EXPECT_EQ(zenka_sony_exposure_program_after(), 1U);
    EXPECT_EQ(zenka_sony_last_handshake_ok(), 1);
    EXPECT_EQ(zenka_sony_connect(0), 0) << "the body is held already";
    EXPECT_EQ(zenka_sony_connect(1), 0) << "beyond the list";
    EXPECT_EQ(zenka_sony_connect(-1), 0);
    EXPECT_EQ(SonyCRSDK::stateDump(handle), "pk=2 ep=1 sd=2");
    EXPECT_EQ(SonyCRSDK::firmware(handle), "2.00");
    EXPECT_THAT(SonyCRSDK::exposureChoices(handle).shutter, ElementsAre("1", "1/250", "1/500", "1/10"));
}

TEST_F(SonyBridge, aBodyThatKeepsItsSettingsIsAskedOnlySoOften) {
    sdk.bodies[0].values = {{0x105, 2}, {0x119, 1}, {0x11A, 1}};
    sdk.bodies[0].refuses = {0x105, 0x119, 0x11A};
    sdk.bodies[0].refusal = 0;
    SonyCRSDK::enumerate();
    const double began = now();
    EXPECT_NE(zenka_sony_connect(0), 0);
    EXPECT_EQ(std::ranges::count(sdk.calls, "set 119=2"), 6);
    EXPECT_EQ(std::ranges::count(sdk.calls, "set 11a=2"), 4);
    EXPECT_EQ(std::ranges::count(sdk.calls, "set 105=1"), 4);
    EXPECT_NEAR(now() - began, 5 * 0.3 + 8 * 0.3, 1e-6);
    EXPECT_EQ(zenka_sony_priority_after(), 1U);
}

TEST_F(SonyBridge, aSilentConnectionIsTriedOnceMore) {
    sdk.bodies[0].silentConnects = 1;
    SonyCRSDK::enumerate();
    sdk.takeCalls();
    double began = now();
    const std::int64_t handle = zenka_sony_connect(0);
    EXPECT_NE(handle, 0);
    EXPECT_NEAR(now() - began, 5.8, 1e-6);
    EXPECT_THAT(sdk.calls, ElementsAre("connect 0", "disconnect", "connect 0", "set 119=2"));
    EXPECT_EQ(zenka_sony_last_handshake_ok(), 1);
    zenka_sony_disconnect(handle);

    sdk.bodies[0].silentConnects = 2;
    began = now();
    EXPECT_EQ(zenka_sony_connect(0), 0);
    EXPECT_NEAR(now() - began, 10.8, 1e-6);
    EXPECT_EQ(sdk.openSessions(), 0U);
    EXPECT_EQ(zenka_sony_last_handshake_ok(), 0);

    sdk.bodies[0].connectError = 33290;
    sdk.takeCalls();
    EXPECT_EQ(zenka_sony_connect(0), 0);
    EXPECT_THAT(sdk.calls, ElementsAre("connect 0")) << "a refusal is final";
}

TEST_F(SonyBridge, anIdFindsItsBodyInAListThatHasChanged) {
    sdk.bodies.insert(sdk.bodies.begin(), {.model = "ILCE-1", .id = {0x11}});
    SonyCRSDK::enumerate();
    sdk.takeCalls();
    EXPECT_NE(zenka_sony_connect(0, "ab01"), 0);
    EXPECT_EQ(sdk.calls.front(), "connect 1");
    EXPECT_EQ(zenka_sony_connect(0, "ffff"), 0);
}

TEST_F(SonyBridge, onlyWhatDiffersIsSentAndItIsSnappedToWhatTheBodyOffers) {
    const std::int64_t handle = connected();
    EXPECT_THAT(exposed(handle, 200, 7.6, 1 / 240.0),
                ElementsAre("set 100=320", "set 103=100fa", "set 104=c8"));
    EXPECT_DOUBLE_EQ(zenka_sony_last_sent_shutter(handle), 1 / 250.0);
    EXPECT_THAT(exposed(handle, 200, 7.6, 1 / 240.0), IsEmpty());
    EXPECT_THAT(exposed(handle, 0, 0, -1), IsEmpty()) << "what is not asked stays";
    EXPECT_THAT(exposed(handle, 0, 0, 0), ElementsAre("set 103=0")) << "bulb";
    zenka_sony_reset_expo_cache(handle);
    EXPECT_THAT(exposed(handle, 200, 7.6, 1 / 250.0),
                ElementsAre("set 100=320", "set 103=100fa", "set 104=c8"));
}

TEST_F(SonyBridge, aRequestFarFromAllOfTheListsReadsThemAnew) {
    sdk.bodies[0].offers[0x100] = {1300, 1600};
    const std::int64_t handle = connected();
    EXPECT_THAT(exposed(handle, 0, 8, -1), ElementsAre("set 100=320")) << "as asked, for want of a near one";
    sdk.bodies[0].offers[0x100] = {360, 570};
    EXPECT_THAT(exposed(handle, 0, 5.6, -1), ElementsAre("set 100=23a")) << "another lens";
    sdk.bodies[0].offers[0x103] = {};
    EXPECT_THAT(exposed(handle, 0, 0, 2.5), ElementsAre("set 103=19000a"));
    EXPECT_DOUBLE_EQ(zenka_sony_last_sent_shutter(handle), -2.5);
}

TEST_F(SonyBridge, aCompensationIsTakenBackAndOneThatNeverWasIsNotSent) {
    const std::int64_t handle = connected();
    EXPECT_THAT(exposed(handle, 0, 0, -1, 0), IsEmpty());
    EXPECT_THAT(exposed(handle, 0, 0, -1, -0.33), ElementsAre("set 101=fed4"));
    EXPECT_THAT(exposed(handle, 0, 0, -1, 0), ElementsAre("set 101=0"));
    zenka_sony_reset_expo_cache(handle);
    EXPECT_THAT(exposed(handle, 0, 0, -1, 0), ElementsAre("set 101=0")) << "this body has had one";
}

TEST_F(SonyBridge, aRefusedSettingIsTriedTwiceAndSentAgainWithTheNextShot) {
    const std::int64_t handle = connected();
    sdk.bodies[0].refuses = {0x100, 0x104};
    const double began = now();
    EXPECT_EQ(zenka_sony_set_exposure(handle, 200, 8, 1 / 250.0, 0), 0);
    EXPECT_THAT(sdk.takeCalls(),
                ElementsAre("set 100=320", "set 100=320", "set 103=100fa", "set 104=c8", "set 104=c8"));
    EXPECT_NEAR(now() - began, 0.2, 1e-6) << "one pause for a shot";
    sdk.bodies[0].refuses.clear();
    EXPECT_THAT(exposed(handle, 200, 8, 1 / 250.0), ElementsAre("set 100=320", "set 104=c8"));
}

TEST_F(SonyBridge, aFirePressesTheButtonForAMoment) {
    const std::int64_t handle = connected();
    const double began = now();
    EXPECT_EQ(zenka_sony_fire(handle), 1);
    EXPECT_THAT(sdk.takeCalls(), ElementsAre("command 0 1", "command 0 0"));
    EXPECT_NEAR(now() - began, 0.035, 1e-9);
    sdk.bodies[0].fireError = 0x8207;
    std::uint32_t error = 0;
    EXPECT_EQ(zenka_sony_fire(handle, &error), 0);
    EXPECT_EQ(error, 0x8207U);
    EXPECT_THAT(sdk.takeCalls(), ElementsAre("command 0 1", "command 0 0")) << "never left pressed";
    EXPECT_EQ(zenka_sony_last_fire_error(), 0x8207U);
    EXPECT_EQ(zenka_sony_fire(0), 0);
    EXPECT_EQ(zenka_sony_last_fire_error(), 65535U);
}

TEST_F(SonyBridge, aSessionThatHasEndedIsNotTakenForAnother) {
    const std::int64_t first = connected();
    sdk.warn(0, 0x20011);
    EXPECT_EQ(zenka_sony_captured_count(first), 1);
    CrSDKEvents late{};
    sdk.tell(0, [&](const CrSDKEvents& events) { late = events; });
    zenka_sony_disconnect(first);
    const std::int64_t second = connected();
    EXPECT_NE(first, second);
    std::uint32_t error = 0;
    EXPECT_EQ(zenka_sony_fire(first, &error), 0);
    EXPECT_EQ(error, 32773U);
    late.disconnected(late.context, 0);
    EXPECT_EQ(zenka_sony_is_connected(second), 1) << "the first one's end came late";
    zenka_sony_disconnect(first);
    EXPECT_EQ(zenka_sony_health_ping(second), 1);
    EXPECT_EQ(zenka_sony_captured_count(first), -1);
}

TEST_F(SonyBridge, whatTheSdkTellsIsKept) {
    const std::int64_t handle = connected();
    sdk.warn(0, 0x20002);
    EXPECT_EQ(zenka_sony_reconnecting(handle), 1);
    sdk.warn(0, 0x20001);
    EXPECT_EQ(zenka_sony_reconnecting(handle), 0);
    sdk.tell(0, [](const CrSDKEvents& events) {
        events.warningExt(events.context, 0x60002, 1); // it worked
        events.warningExt(events.context, 0x60001, 9);
    });
    EXPECT_EQ(zenka_sony_last_op_ng(handle), 0);
    sdk.tell(0, [](const CrSDKEvents& events) {
        events.warningExt(events.context, 0x60002, 3);
        events.error(events.context, 33289);
    });
    EXPECT_EQ(zenka_sony_last_op_ng(handle), 3);
    EXPECT_EQ(zenka_sony_last_callback_error(), 33289U);
    sdk.bodies[0].values[0x10E] = 0x00040003;
    EXPECT_EQ(zenka_sony_drive_is_burst(handle), 1);
    sdk.bodies[0].values[0x10E] = 0x00020001;
    EXPECT_EQ(zenka_sony_drive_is_burst(handle), 0);
}

TEST_F(SonyBridge, aSecondEnumerationComesBackEmptyWhileOneIsUnderWay) {
    sdk.onEnumerate = [] { EXPECT_THAT(SonyCRSDK::enumerate(), IsEmpty()); };
    EXPECT_EQ(SonyCRSDK::enumerate().size(), 1U);
    EXPECT_THAT(sdk.takeCalls(), ElementsAre("enumerate"));
}

TEST_F(SonyBridge, anEnumerationThatNeverComesBackHoldsNobodyUp) {
    waits->stuck = true;
    const double began = now();
    EXPECT_THAT(SonyCRSDK::enumerate(), IsEmpty());
    EXPECT_NEAR(now() - began, 20, 1e-6);
    EXPECT_FALSE(SonyCRSDK::enumerateWedged());
    ports.time.sleepFor(base::Seconds{11});
    EXPECT_TRUE(SonyCRSDK::enumerateWedged());
    EXPECT_THAT(SonyCRSDK::enumerate(), IsEmpty());
    std::exchange(waits->stuckWork, nullptr)(); // it comes back after all
    waits->stuck = false;
    EXPECT_FALSE(SonyCRSDK::enumerateWedged());
    EXPECT_EQ(SonyCRSDK::enumerate().size(), 1U);
}
