#include "cameras/sony/SonyCRSDKCamera.h"

#include "cameras/sony/SonyBench.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>

using namespace zenka;
using namespace zenka::cameras;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Pair;

namespace {

constexpr Shot inTotality{.iso = 200, .aperture = 8, .shutterSec = 1 / 250.0};
constexpr std::uint32_t rejected = 33290;

struct SonyCRSDKCameraTest : testing::Test, test::SonyBench {
    std::optional<CameraStatus> probed(SonyCRSDKCamera& camera) {
        std::optional<CameraStatus> answer;
        camera.probe([&](const CameraStatus& status) { answer = status; });
        settle();
        return answer;
    }
};

} // namespace

TEST_F(SonyCRSDKCameraTest, aShotTellsWhatWasSent) {
    const auto camera = body();
    const CaptureOutcome outcome = shoot(*camera, inTotality);
    EXPECT_EQ(outcome,
              (CaptureOutcome{
                  .ok = true, .latencyMs = outcome.latencyMs, .responded = true, .sentShutter = "1/250"}));
    EXPECT_NEAR(outcome.latencyMs, 35, 1e-6);
    EXPECT_EQ(camera->shotCount(), 1);
    EXPECT_THAT(sdk.takeCalls(),
                ElementsAre("set 100=320", "set 103=100fa", "set 104=c8", "command 0 1", "command 0 0"));
    EXPECT_EQ(shoot(*camera, {.bulb = true}).sentShutter, "");
    EXPECT_THAT(sdk.takeCalls(), ElementsAre("set 103=0", "command 0 1", "command 0 0"));
    camera->forceFullExposureNextFrame();
    shoot(*camera, inTotality);
    shoot(*camera, inTotality);
    EXPECT_EQ(std::ranges::count(sdk.calls, "set 104=c8"), 1) << "for one frame";

    sdk.bodies[0].offers[0x103] = {};
    sdk.bodies[0].refuses = {0x104};
    camera->forceFullExposureNextFrame();
    EXPECT_EQ(shoot(*camera, {.iso = 100, .shutterSec = 8}).note,
              "fired, but the body rejected a setting (check the card exposures)");
}

TEST_F(SonyCRSDKCameraTest, aShutterThatIsNotOfferedIsMarked) {
    sdk.bodies[0].offers[0x103] = {};
    const auto camera = body();
    EXPECT_EQ(shoot(*camera, inTotality).sentShutter, "1/250?");
    EXPECT_EQ(shoot(*camera, {.shutterSec = 2.5}).sentShutter, "2.5?");
}

TEST_F(SonyCRSDKCameraTest, aShotWhileOneIsUnderWayIsRefusedAtOnce) {
    const auto camera = body();
    std::vector<std::string> notes;
    const auto keep = [&](const CaptureOutcome& outcome) { notes.push_back(outcome.note); };
    camera->capture(inTotality, keep);
    camera->capture(inTotality, keep);
    EXPECT_TRUE(camera->busy());
    settle();
    EXPECT_THAT(notes, testing::UnorderedElementsAre("", "dropped, camera busy"));
    EXPECT_EQ(std::ranges::count(sdk.calls, "command 0 1"), 1);
}

TEST_F(SonyCRSDKCameraTest, aFailedFireIsReportedOnceAndFollowedByANewSession) {
    const auto camera = body();
    sdk.bodies[0].fireError = rejected;
    CaptureOutcome outcome;
    CaptureOutcome refused;
    camera->capture(inTotality, [&](const CaptureOutcome& told) {
        outcome = told;
        camera->capture(inTotality, [&](const CaptureOutcome& next) { refused = next; });
    });
    settle();
    EXPECT_FALSE(outcome.ok);
    EXPECT_FALSE(outcome.responded);
    EXPECT_FALSE(outcome.deviceGone);
    EXPECT_EQ(outcome.note, "CrSDK fire failed (Connect_FailRejected)");
    EXPECT_EQ(refused.note, "dropped, reopening after CrSDK fire failed (Connect_FailRejected)");
    EXPECT_TRUE(refused.responded);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].first, "error");
    EXPECT_EQ(reports[0].second, (DriverMachine::Fields{{"kind", "sony_fire"},
                                                        {"model", "ILCE-7M4"},
                                                        {"fw", "2.00"},
                                                        {"prio", "2>2"},
                                                        {"ep", "1>1"},
                                                        {"hs", "1"},
                                                        {"state", "dm=0 pk=2 ep=1 sd=2"},
                                                        {"procs", "none"},
                                                        {"holders", "none"},
                                                        {"code", "0x820a"},
                                                        {"cb", "0x0000"},
                                                        {"opng", "0"},
                                                        {"link", "1"},
                                                        {"rcpt", "0"}}));
    EXPECT_EQ(camera->firmwareVersion(), "2.00");

    sdk.bodies[0].fireError = 0;
    sdk.takeCalls();
    EXPECT_TRUE(shoot(*camera, inTotality).ok);
    EXPECT_THAT(sdk.calls, Contains("set 104=c8")) << "a new session knows nothing of the settings";
    EXPECT_EQ(sdk.openSessions(), 1U);
}

TEST_F(SonyCRSDKCameraTest, twoNewSessionsWithoutAFrameEndTheConnection) {
    const auto camera = body();
    sdk.bodies[0].fireError = rejected;
    for (int failure = 1; failure <= 2; ++failure) {
        shoot(*camera);
        settle();
        EXPECT_TRUE(camera->connected());
        EXPECT_EQ(std::ranges::count(sdk.calls, "connect 0"), failure);
    }
    shoot(*camera);
    settle();
    EXPECT_FALSE(camera->connected());
    EXPECT_EQ(std::ranges::count(sdk.calls, "connect 0"), 2)
        << "what is left is a matter of the reconnect loop";
    EXPECT_EQ(reports.size(), 1U);
}

TEST_F(SonyCRSDKCameraTest, aReopenTakesTheBodyOfItsSerialOrTheOnlyOne) {
    const auto camera = body();
    sdk.bodies[0].fireError = rejected;
    sdk.bodies.insert(sdk.bodies.begin(), {.model = "ILCE-1", .id = {0x11}, .fireError = rejected});
    shoot(*camera);
    settle();
    EXPECT_THAT(sdk.takeCalls(), Contains("connect 1"));
    sdk.bodies[1].id = {0x22}; // neither is known
    shoot(*camera);
    settle();
    EXPECT_THAT(sdk.takeCalls(), testing::Not(Contains(testing::StartsWith("connect"))));
    EXPECT_FALSE(camera->connected());
}

TEST_F(SonyCRSDKCameraTest, aLinkThatTheSdkRepairsIsWaitedFor) {
    const auto camera = body();
    sdk.bodies[0].fireError = rejected;
    sdk.warn(0, 0x20002);
    sdk.onEnumerate = [] { FAIL() << "a new session is in the way of the repair"; };
    const double began = now();
    shoot(*camera);
    settle();
    EXPECT_NEAR(now() - began, 20.035, 1e-6);
    EXPECT_FALSE(camera->connected()) << "it never came back";

    sdk.warn(0, 0x20001);
    sdk.onEnumerate = nullptr;
    shoot(*camera); // begins a new session now
    settle();
    EXPECT_TRUE(camera->connected());
}

TEST_F(SonyCRSDKCameraTest, aProbeReadsTheModeAndReopensASilentLink) {
    const auto camera = body();
    EXPECT_EQ(probed(*camera)->modeName, "M");
    EXPECT_EQ(probed(*camera)->isManual, true);
    sdk.bodies[0].values[0x105] = 0x21;
    EXPECT_EQ(probed(*camera)->modeName, "mode 0x21");
    EXPECT_EQ(probed(*camera)->isManual, false);
    sdk.bodies[0].values[0x105] = 0;
    EXPECT_EQ(probed(*camera)->isManual, std::nullopt);
    EXPECT_THAT(sdk.takeCalls(), IsEmpty());
    sdk.bodies[0].answers = false;
    EXPECT_EQ(probed(*camera)->isManual, std::nullopt);
    EXPECT_THAT(sdk.takeCalls(), IsSupersetOf({"disconnect", "enumerate", "connect 0"}));
    EXPECT_TRUE(camera->connected());
}

TEST_F(SonyCRSDKCameraTest, aSuspendedBodyRefusesAndComesBackWithANewSession) {
    const auto camera = body();
    camera->suspend();
    const CaptureOutcome refused = shoot(*camera);
    EXPECT_EQ(refused.note, "dropped, re-detect in progress");
    EXPECT_TRUE(refused.responded);
    settle();
    EXPECT_EQ(sdk.openSessions(), 0U);
    EXPECT_EQ(probed(*camera)->isManual, std::nullopt);
    camera->resume();
    settle();
    EXPECT_TRUE(shoot(*camera).ok);

    camera->suspend(); // taken away and given back within a reopening
    camera->resume();
    camera->suspend();
    camera->resume();
    settle();
    settle();
    EXPECT_TRUE(camera->connected());
    EXPECT_TRUE(shoot(*camera).ok);
    EXPECT_EQ(sdk.openSessions(), 1U);
}

TEST_F(SonyCRSDKCameraTest, aShotCompletesThoughItsCameraHasGone) {
    auto camera = body();
    sdk.bodies[0].fireError = rejected;
    int completions = 0;
    camera->capture(inTotality, [&](const CaptureOutcome&) { ++completions; });
    camera.reset();
    settle();
    EXPECT_EQ(completions, 1);
    EXPECT_EQ(sdk.openSessions(), 0U);

    camera = body();
    shoot(*camera); // it is being reopened
    camera.reset();
    settle();
    EXPECT_EQ(sdk.openSessions(), 0U) << "the new session is let go of as well";

    camera = body();
    camera->shutDown(base::Seconds{2});
    EXPECT_EQ(sdk.openSessions(), 0U);
}

TEST(SonyCRSDKCameraWords, labelsAndNames) {
    EXPECT_EQ(SonyCRSDKCamera::shutterLabel(1 / 3.0), "1/3");
    EXPECT_EQ(SonyCRSDKCamera::shutterLabel(0.34), "0.34");
    EXPECT_EQ(SonyCRSDKCamera::shutterLabel(30), "30");
    EXPECT_EQ(SonyCRSDKCamera::shutterLabel(0), "");
    EXPECT_EQ(SonyCRSDKCamera::crErrorName(33794), "Api_InvalidCalled");
    EXPECT_EQ(SonyCRSDKCamera::crErrorName(0x8299), "0x8299");
    EXPECT_EQ(SonyCRSDK::callbackErrorName(33289), "ReconnectTimeOut");
    EXPECT_EQ(SonyCRSDK::callbackErrorName(0), "none");
    EXPECT_EQ(SonyCRSDK::callbackErrorName(7), "0x0007");
    EXPECT_EQ(SonyCRSDKCamera::statusIn("fm=1 ep=xyz").isManual, std::nullopt);
    EXPECT_EQ(SonyCRSDKCamera::statusIn("ep=4 sd=2").modeName, "S");
}
