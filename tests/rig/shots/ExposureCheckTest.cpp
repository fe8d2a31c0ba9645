#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using testing::HasSubstr;

namespace {

TEST(ExposureCheck, firesAFrameForEachShutterAndWritesDownWhatWasSent) {
    VirtualRig rig;
    rig.model.exposureCheck().runExposureCheck();
    EXPECT_TRUE(rig.logged("Exposure check: no universal-driver camera connected."));
    const auto body = rig.addBody("CAM1");
    body->status.isManual = false;
    rig.model.modes().recheckModes();
    body->choices.shutter = {"1/1000", "1/250"};
    for (int i = 0; i < 9; ++i)
        body->outcomes.push_back({.ok = true, .responded = true, .sentShutter = i == 2 ? "1/250" : "1/255"});
    body->outcomes[4] = silence();
    rig.model.exposureCheck().runExposureCheck();
    rig.model.exposureCheck().runExposureCheck();
    rig.run(60);
    EXPECT_EQ(body->shots.size(), 9U) << "the second call did nothing";
    EXPECT_TRUE(rig.logged("⚠️ Exposure check: CAM1 is on another mode, not M,"));
    EXPECT_TRUE(rig.logged("Exposure check on CAM1 with 2 shutter values known"));
    EXPECT_TRUE(rig.logged("Exposure check: done. Wrote Zenka exposure check "));
    const std::string text = rig.files.only(".txt");
    EXPECT_THAT(
        text,
        HasSubstr(
            "Zenka exposure check\ncamera: CAM1\nshutterspeed:  1/1000, 1/250\nshutterspeed2: not offered "
            "by this body\n\nCompare each \"sending\" value"));
    EXPECT_THAT(text, HasSubstr("asked 1/250  sending 1/250\n"));
    EXPECT_THAT(text,
                HasSubstr("sending 1/255  ** NOT one of the body's values, it will likely be REJECTED **\n"));
    EXPECT_THAT(text, HasSubstr("(no frame: no answer)"));
    EXPECT_TRUE(
        text.ends_with("\nDone. Pull the card and compare EXIF ExposureTime against the values above.\n"));
    EXPECT_FALSE(rig.model.inUse().has(body->id()));
}

TEST(ExposureCheck, aRunComesFirst) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(5000));
    body->holdCompletions = true;
    rig.model.exposureCheck().runExposureCheck();
    rig.playFrom(0);
    body->complete();
    rig.run(5);
    EXPECT_EQ(body->shots.size(), 1U);
    EXPECT_TRUE(rig.logged("Exposure check: broken off."));
    rig.model.exposureCheck().runExposureCheck();
    EXPECT_TRUE(rig.logged("Exposure check: not in a run."));
}

} // namespace

} // namespace zenka::test
