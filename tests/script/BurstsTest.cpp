#include "script/Bursts.h"

#include <gtest/gtest.h>

namespace zenka::script {
namespace {

Capture at(double offsetSec, const char* camera, double shutterSec = 0.01) {
    return {.offsetSec = offsetSec,
            .refLabel = "at " + std::to_string(static_cast<int>(offsetSec)),
            .camera = camera,
            .shutterSec = shutterSec};
}

TEST(Bursts, aPauseOfAMinuteEndsABurstAndOtherCamerasDoNotFillIt) {
    const std::vector<Capture> captures{at(0, "CAM1"),     at(59, "CAM1", 2), at(80, "CAM2", 8),
                                        at(118, "CAM1"),   at(177.9, "cam1"), at(178, "CAM1"),
                                        at(300, "CAM1", 0)};
    const auto bursts = burstsOf(captures, {"CAM1"});
    ASSERT_EQ(bursts.size(), 3U);
    EXPECT_EQ(bursts[0], (Burst{0, 118, "at 0", "at 118", 3, 2}));
    EXPECT_EQ(bursts[1].frames, 1) << "60 s after the last one of CAM1";
    EXPECT_EQ(bursts[2].longestSec, 0) << "the script tells none";
    const auto both = burstsOf(captures, {"CAM1", "cam1"});
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[0].frames, 5);
    EXPECT_TRUE(burstsOf(captures, {}).empty());

    EXPECT_EQ(burstWithin(captures, {"CAM1"}, 59, 178), (Burst{59, 178, "at 59", "at 178", 3, 2}));
    EXPECT_EQ(burstWithin(captures, {"CAM1"}, 179, 250).frames, 0);
}

} // namespace
} // namespace zenka::script
