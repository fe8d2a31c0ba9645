#include "cameras/canon/canon_bridge.h"
#include "support/fake_edsdk/EdsdkLibrary.h"

#include <gmock/gmock.h>

#include <array>

using namespace zenka;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

struct CanonBridge : testing::Test {
    test::EdsdkLibrary library;
    test::FakeEdsdk& sdk = library.fake();

    CanonBridge() { zenka_canon_use(library); }
    ~CanonBridge() override { zenka_canon_release(); }

    std::vector<std::string> enumerate(std::int32_t most = 16) {
        std::array<char, std::size_t{16} * 32> names{};
        std::array<char, std::size_t{16} * 32> serials{};
        serials.fill('x');
        std::vector<std::string> models;
        const std::int32_t count = zenka_canon_enumerate(names.data(), serials.data(), most, 32);
        for (std::int32_t slot = 0; slot < count; ++slot) {
            models.emplace_back(&names[static_cast<std::size_t>(slot) * 32]);
            EXPECT_EQ(serials[static_cast<std::size_t>(slot) * 32], '\0');
        }
        return models;
    }

    std::int64_t connected(const std::string& model = "EOS R5") {
        sdk.bodies = {{.model = model, .serial = "0123"}};
        EXPECT_EQ(zenka_canon_init(), 1);
        enumerate();
        const std::int64_t handle = zenka_canon_connect(0);
        EXPECT_NE(handle, 0);
        sdk.calls.clear();
        return handle;
    }

    std::string diag() {
        std::array<char, 256> text{};
        zenka_canon_diag(text.data(), text.size());
        return text.data();
    }
};

} // namespace

TEST_F(CanonBridge, withoutTheLibraryOrOneOfItsSymbolsAllAnswerAsWithoutACamera) {
    EXPECT_EQ(diag(), "not run");
    library.installed = false;
    EXPECT_EQ(zenka_canon_init(), 0);
    EXPECT_EQ(diag(), "dlopen failed: libEDSDK.so: cannot open shared object file");
    library.installed = true;
    for (const char* name :
         {"EdsInitializeSDK", "EdsTerminateSDK", "EdsGetCameraList", "EdsGetChildCount", "EdsGetChildAtIndex",
          "EdsGetDeviceInfo", "EdsOpenSession", "EdsCloseSession", "EdsSetPropertyData", "EdsGetPropertyData",
          "EdsSendCommand", "EdsRelease", "EdsGetEvent"}) {
        library.hidden = {name};
        EXPECT_EQ(zenka_canon_init(), 0);
        EXPECT_EQ(diag(), std::string("dlsym ") + name + " failed");
    }
    EXPECT_THAT(enumerate(), IsEmpty());
    EXPECT_EQ(zenka_canon_connect(0), 0);
    EXPECT_EQ(zenka_canon_set_exposure(1, 100, 8, 1, 0), 0);
    EXPECT_EQ(zenka_canon_fire(1), 0);
    EXPECT_EQ(zenka_canon_session_dead(1), 0);
    zenka_canon_disconnect(1);
    zenka_canon_release();
    EXPECT_THAT(sdk.calls, IsEmpty());

    library.hidden = {"EdsSetCameraStateEventHandler"};
    EXPECT_NE(connected(), 0) << "the last one may be missing";
}

TEST_F(CanonBridge, whatFailsInTheSdkIsToldByItsNumber) {
    sdk.bodies = {{.model = "EOS R5", .serial = {}}};
    sdk.results["init"] = {0x21};
    EXPECT_EQ(zenka_canon_init(), 0);
    EXPECT_EQ(diag(), "EdsInitializeSDK err=0x21");
    EXPECT_THAT(enumerate(), IsEmpty());
    EXPECT_EQ(diag(), "EDSDK terminated (not initialized)");
    EXPECT_EQ(zenka_canon_init(), 1);
    EXPECT_EQ(diag(), "init ok");

    sdk.results["list"] = {0x5};
    EXPECT_THAT(enumerate(), IsEmpty());
    EXPECT_EQ(diag(), "GetCameraList err=0x5");
    sdk.results["count"] = {0x5};
    EXPECT_THAT(enumerate(), IsEmpty());
    EXPECT_EQ(diag(), "GetChildCount failed");
    EXPECT_THAT(enumerate(), ElementsAre("EOS R5"));
    EXPECT_EQ(diag(), "enumerated 1 camera(s)");

    sdk.results["child"] = {0x60};
    EXPECT_EQ(zenka_canon_connect(0), 0);
    EXPECT_EQ(diag(), "GetChildAtIndex err=0x60");
    sdk.results["open"] = {0xC0};
    EXPECT_EQ(zenka_canon_connect(0), 0);
    EXPECT_EQ(diag(), "OpenSession err=0xc0");
    EXPECT_EQ(sdk.references, 1) << "the list alone";
    sdk.results["set b"] = {0x11};
    EXPECT_NE(zenka_canon_connect(0), 0) << "the session stands";
    EXPECT_EQ(diag(), "connected (session open, SaveTo REFUSED err=0x11)");
}

TEST_F(CanonBridge, aLongNameIsCutToItsSlotAndMoreBodiesThanSlotsAreLeftOut) {
    sdk.bodies = {{.model = std::string(40, 'm'), .serial = {}}, {.model = "B", .serial = {}}};
    zenka_canon_init();
    EXPECT_THAT(enumerate(), ElementsAre(std::string(31, 'm'), "B"));
    EXPECT_THAT(enumerate(1), ElementsAre(std::string(31, 'm')));
}

TEST_F(CanonBridge, whileASessionIsOpenTheListStaysAndNobodyMovesToAnotherSlot) {
    sdk.bodies = {{.model = "A", .serial = {}}, {.model = "B", .serial = {}}};
    zenka_canon_init();
    enumerate();
    const std::int64_t second = zenka_canon_connect(1);
    EXPECT_TRUE(zenka_canon_slot_in_use(1));
    EXPECT_FALSE(zenka_canon_slot_in_use(0));
    sdk.bodies.erase(sdk.bodies.begin());
    EXPECT_THAT(enumerate(), ElementsAre("A", "B"));
    EXPECT_EQ(diag(), "enumerated 2 camera(s) (kept list: 1 session(s) open)");
    zenka_canon_disconnect(second);
    EXPECT_THAT(enumerate(), ElementsAre("B"));
    EXPECT_EQ(sdk.references, 1);
}

TEST_F(CanonBridge, onlyWhatDiffersIsSentAndARefusedSettingIsSentAgain) {
    const std::int64_t handle = connected();
    sdk.results["set 405"] = {0x81};
    EXPECT_EQ(zenka_canon_set_exposure(handle, 400, 8, 1 / 200.0, 1 / 3.0), 0);
    EXPECT_THAT(sdk.calls, ElementsAre("set 402=58", "set 405=38", "set 406=75", "set 407=3"));
    sdk.calls.clear();
    EXPECT_EQ(zenka_canon_set_exposure(handle, 400, 8, 1 / 200.0, 0), 1);
    EXPECT_THAT(sdk.calls, ElementsAre("set 405=38"));
    sdk.calls.clear();
    EXPECT_EQ(zenka_canon_set_exposure(handle, 0, 0, 0, 0), 1);
    EXPECT_THAT(sdk.calls, IsEmpty());
    zenka_canon_reset_expo_cache(handle);
    EXPECT_EQ(zenka_canon_set_exposure(handle, 400, 3.4, 45, -5), 1);
    EXPECT_THAT(sdk.calls, ElementsAre("set 402=58", "set 405=85", "set 406=10", "set 407=d8"));
    EXPECT_EQ(zenka_canon_set_exposure(handle, 400, 3.5, 1e-9, 0), 1);
    EXPECT_THAT(sdk.calls, Contains("set 405=24"));
    EXPECT_THAT(sdk.calls, Contains("set 406=a3"));
}

TEST_F(CanonBridge, aBusyBodyGetsSevenAttemptsAndARefusedButtonTheOlderCommand) {
    const std::int64_t handle = connected();
    const std::vector<std::string> onePress{"command 4 10003", "command 4 0"};
    EXPECT_EQ(zenka_canon_fire(handle), 1);
    EXPECT_EQ(sdk.calls, onePress);
    sdk.calls.clear();
    sdk.results["fire"] = {0x81, 0x8D02};
    EXPECT_EQ(zenka_canon_fire(handle), 1);
    EXPECT_EQ(std::ranges::count(sdk.calls, "command 4 10003"), 3);
    EXPECT_EQ(std::ranges::count(sdk.calls, "command 0 0"), 2);
    EXPECT_EQ(zenka_canon_last_fire_err(), 0U);
    sdk.calls.clear();
    sdk.results["fire"] = std::deque<std::uint32_t>(20, 0xC3);
    EXPECT_EQ(zenka_canon_fire(handle), 0);
    EXPECT_EQ(std::ranges::count(sdk.calls, "command 4 10003"), 7);
    EXPECT_EQ(zenka_canon_last_fire_err(), 0xC3U);
    sdk.results["fire"] = {0x8D01};
    sdk.calls.clear();
    EXPECT_EQ(zenka_canon_fire(handle), 0);
    EXPECT_EQ(std::ranges::count(sdk.calls, "command 4 10003"), 1) << "no second try would help";
    EXPECT_EQ(zenka_canon_fire(0), 0);
    EXPECT_EQ(zenka_canon_last_fire_err(), 0x8D01U);
}

TEST_F(CanonBridge, aBodyThatShutsDownFailsWithoutATryAndOneThatIsAboutToIsKeptAwake) {
    const std::int64_t handle = connected();
    sdk.events = {{0x303, "EOS R5"}, {0x302, "EOS R5"}};
    EXPECT_FALSE(zenka_canon_session_dead(handle));
    EXPECT_THAT(sdk.calls, ElementsAre("command 1 0"));
    sdk.calls.clear();
    sdk.events = {{0x301, "EOS R5"}};
    EXPECT_EQ(zenka_canon_fire(handle), 0);
    EXPECT_EQ(zenka_canon_last_fire_err(), zenka_canon_err_session_dead);
    EXPECT_THAT(sdk.calls, IsEmpty());
    EXPECT_TRUE(zenka_canon_session_dead(handle));
    EXPECT_THAT(diag(), StartsWith("camera reported SHUTDOWN"));
    zenka_canon_release();
    EXPECT_EQ(zenka_canon_fire(handle), 0);
    EXPECT_EQ(zenka_canon_last_fire_err(), zenka_canon_err_terminated);
}

TEST_F(CanonBridge, aStaleSessionIsRebuiltOnItsSlotUnlessOthersNeedTheList) {
    sdk.bodies = {{.model = "A", .serial = {}}, {.model = "B", .serial = {}}};
    zenka_canon_init();
    enumerate();
    const std::int64_t first = zenka_canon_connect(0);
    const std::int64_t second = zenka_canon_connect(1);
    EXPECT_EQ(zenka_canon_reopen(12345), 0);
    EXPECT_EQ(diag(), "reopen: unknown handle");
    EXPECT_EQ(zenka_canon_reopen(first), 0);
    EXPECT_EQ(diag(), "reopen: skipped, 1 other live session(s) share the camera list");
    const std::int64_t rebuilt = zenka_canon_reopen(second);
    EXPECT_NE(rebuilt, 0);
    EXPECT_EQ(diag(), "reopen: session rebuilt on slot 1");
    EXPECT_EQ(zenka_canon_fire(rebuilt), 1);
    sdk.bodies.pop_back();
    EXPECT_EQ(zenka_canon_reopen(rebuilt), 0);
    EXPECT_EQ(diag(), "reopen: camera gone (slot 1 of 1)");
    EXPECT_EQ(sdk.references, 1) << "the list alone";
}

TEST_F(CanonBridge, aSerialNumberIsAskedForThreeTimesAndReleaseLeavesNothingBehind) {
    const std::int64_t handle = connected();
    std::array<char, 8> text{};
    sdk.bodies[0].serialRefusals = 2;
    EXPECT_EQ(zenka_canon_serial(handle, text.data(), text.size()), 1);
    EXPECT_STREQ(text.data(), "0123");
    sdk.bodies[0].serialRefusals = 3;
    EXPECT_EQ(zenka_canon_serial(handle, text.data(), text.size()), 0);
    EXPECT_STREQ(text.data(), "");
    zenka_canon_disconnect(handle);
    EXPECT_EQ(sdk.sessions(), 0);
    zenka_canon_release();
    EXPECT_EQ(sdk.references, 0);
    EXPECT_THAT(sdk.calls, Contains("terminate"));
}
