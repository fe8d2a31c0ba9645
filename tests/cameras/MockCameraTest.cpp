#include "cameras/MockCamera.h"

#include <gtest/gtest.h>

using namespace zenka::cameras;

TEST(MockCamera, repeatsItsLatenciesAndSizesAnUnknownModelAsGeneric) {
    MockCamera camera("a", "No such body");
    EXPECT_DOUBLE_EQ(camera.minIntervalSec(), 0.6);
    EXPECT_FALSE(camera.connected());
    std::vector<double> latencies;
    for (int i = 0; i < 25; ++i) {
        camera.capture({.iso = 100}, [&](const CaptureOutcome& outcome) {
            EXPECT_TRUE(outcome.ok && outcome.responded && outcome.note.empty());
            latencies.push_back(outcome.latencyMs);
        });
    }
    ASSERT_EQ(latencies.size(), 25U) << "each capture completes at once";
    EXPECT_DOUBLE_EQ(latencies[0], 120);
    EXPECT_DOUBLE_EQ(latencies[1], 120 * 1.12);
    EXPECT_EQ(camera.shotCount(), 25);
}

TEST(ShotProfiles, findModelsByTheirTokenInAnyCase) {
    EXPECT_EQ(ShotProfiles::forModel("dc-g9m2").measuredFloorSec, 0.18);
    EXPECT_FALSE(ShotProfiles::forModel("Panasonic S5II").measuredFloorSec);
    EXPECT_DOUBLE_EQ(ShotProfiles::forModel("unknown").safeIntervalSec, 0.6);
}

TEST(ExposureChoices, surviveJsonAndAMissingKeyIsNoRecord) {
    const ExposureChoices choices{.shutter = {"1/500", "bulb \"x\""},
                                  .iso = {"Auto", "100"},
                                  .aperture = {"f/8"},
                                  .apertureProp = "aperture",
                                  .shutterFraction = {"1/3"}};
    const std::string json = toJson(choices);
    EXPECT_EQ(exposureChoicesFromJson(json), choices);
    EXPECT_FALSE(choices.empty());
    EXPECT_TRUE((ExposureChoices{.expComp = {"0"}}).empty());
    for (const char* bad : {"", "[]", "{}",
                            R"({"shutter":[1],"iso":[],"aperture":[],"apertureProp":"a","expComp":[],)"
                            R"("shutterFraction":[]})",
                            R"({"shutter":[],"iso":[],"aperture":[],"apertureProp":"a","expComp":[]})"})
        EXPECT_FALSE(exposureChoicesFromJson(bad)) << bad;
}
