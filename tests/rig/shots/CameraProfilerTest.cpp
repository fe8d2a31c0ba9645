#include "rig/shots/CameraProfiler.h"

#include "support/TimedCamera.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::TimedCamera;
using test::VirtualRig;

namespace {

struct CameraProfiler : testing::Test {
    VirtualRig rig;
    rig::CameraProfiler& profiler = rig.model.cameraProfiler();
    std::shared_ptr<TimedCamera> body = std::make_shared<TimedCamera>(
        rig.machine.loop, rig.machine.time, [](double, int) { return TimedCamera::Reply{}; });

    CameraProfiler() { rig.model.roster().add(body); }

    const rig::CameraProfileResult& result() { return profiler.cameraProfileResult().get().value(); }
};

} // namespace

TEST_F(CameraProfiler, aBodyIsToldWithItsLensAndWhatItOffers) {
    rig.model.library().setLens("SN-timed", "400 mm");
    body->readingSec = 20;
    body->choices.iso = {"100", "200"};
    EXPECT_EQ(profiler.runCameraProfile("timed"), "");
    EXPECT_TRUE(profiler.cameraProfileRunning().get());
    EXPECT_NE(rig.model.gapProfiler().runGapProfile("timed"), "") << "the body is being read";
    EXPECT_EQ(profiler.runCameraProfile("timed"), "A camera is being read. Wait for its answer.");
    rig.run(21);
    EXPECT_FALSE(profiler.cameraProfileRunning().get());
    EXPECT_EQ(result(),
              (rig::CameraProfileResult{
                  .model = "Z8", .serial = "SN-timed", .lens = "400 mm", .choices = body->choices}));
    rig.run(200);
    EXPECT_EQ(result().error, "") << "the time limit is over";
}

TEST_F(CameraProfiler, whyNothingWasReadIsSaid) {
    body->profileError = "Could not claim the camera.";
    profiler.runCameraProfile("timed");
    rig.run(1);
    EXPECT_EQ(result().error, "Could not claim the camera.");
    body->profileError = "";
    profiler.runCameraProfile("timed");
    rig.run(1);
    EXPECT_EQ(result().error, "The camera returned no value lists (its driver does not expose them).");
    const auto mock = rig.model.roster().addPlanningCamera("Z8");
    profiler.runCameraProfile(mock->id());
    EXPECT_EQ(result().error, "A simulated camera has no settings to read.");
    EXPECT_FALSE(result().lens);

    body->readingSec = 500;
    body->choices.iso = {"100"};
    profiler.runCameraProfile("timed");
    rig.run(121);
    EXPECT_EQ(result().error, "The camera did not answer in time.");
    profiler.runCameraProfile(mock->id());
    rig.run(500);
    EXPECT_TRUE(result().choices.iso.empty()) << "the late answer is another's";
}

TEST_F(CameraProfiler, oneThatIsNeededElsewhereIsRefused) {
    EXPECT_EQ(profiler.runCameraProfile("nobody"), "This camera is not connected.");
    rig.model.testShots().fire(body, {.shutterSec = 0.01});
    EXPECT_NE(profiler.runCameraProfile("timed"), "");
    rig.run(60);
    rig.model.transport().togglePlay();
    EXPECT_NE(profiler.runCameraProfile("timed"), "");
    EXPECT_FALSE(profiler.cameraProfileRunning().get());
}
