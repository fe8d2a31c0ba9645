#include "cameras/sony/SonyExposure.h"

#include "cameras/sony/SonyProperties.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

using namespace zenka::cameras;
using testing::ElementsAre;

TEST(SonyExposure, whatIsNoSettingIsNotOffered) {
    using namespace SonyProperties;
    const std::vector<std::uint8_t> apertures{0x20, 0x03, 0xFD, 0xFF,
                                              0xFC, 0xFF, 0x12}; // 800, 65533, 65532, half
    EXPECT_THAT(SonyExposure::offered(fNumber, apertures), ElementsAre(800, 65532));
    const std::vector<std::uint8_t> biases{0xD4, 0xFE, 0x2C, 0x01};
    EXPECT_THAT(SonyExposure::offered(exposureBias, biases), ElementsAre(-300, 300));
    const std::vector<std::uint8_t> shutters{0xFA, 0, 1, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_THAT(SonyExposure::offered(shutterSpeed, shutters), ElementsAre(0x100FA, 0));
    const std::vector<std::uint8_t> isos{0xFF, 0xFF, 0xFF, 0x01, 0x64, 0, 0, 0};
    EXPECT_THAT(SonyExposure::offered(iso, isos), ElementsAre(100))
        << "auto is no ISO, whatever its top byte";
}

TEST(SonyExposure, aRequestTakesTheNearestWithinReach) {
    const SonyCandidates candidates{.aperture = {0, 400, 560, 800},
                                    .shutter = {0, 0x10001, 0x100FA, 0x10000},
                                    .iso = {100, 0x01000190, 400},
                                    .expComp = {-300, 0, 300, 700}};
    EXPECT_EQ(SonyExposure::snapAperture(7.1, candidates), 800);
    EXPECT_EQ(SonyExposure::snapAperture(2.5, candidates), std::nullopt) << "0.47 away";
    EXPECT_EQ(SonyExposure::snapShutter(1 / 300.0, candidates), 0x100FA);
    EXPECT_EQ(SonyExposure::snapShutter(30, candidates), std::nullopt)
        << "neither bulb nor a code without time";
    EXPECT_EQ(SonyExposure::snapIso(380, candidates), 0x01000190)
        << "by the low 24 bits, the first of equals";
    EXPECT_EQ(SonyExposure::snapExpComp(-1, candidates), -300);
    EXPECT_EQ(SonyExposure::snapExpComp(-1, {}), -1000);
}

TEST(SonyExposure, codesAreBuiltForWhatNothingOfferedIsNear) {
    EXPECT_EQ(SonyExposure::shutterCode(1 / 250.0), 0x100FA);
    EXPECT_EQ(SonyExposure::shutterCode(2.5), (25 << 16) + 10);
    EXPECT_EQ(SonyExposure::shutterCode(0.34), (3 << 16) + 10);
    EXPECT_EQ(SonyExposure::shutterCode(1e-9), 0x1FFFF) << "as short as 16 bits tell";
    EXPECT_EQ(SonyExposure::shutterCode(1e9), 0xFFFF000AL);
    EXPECT_EQ(SonyExposure::apertureCode(8), 800);
    EXPECT_EQ(SonyExposure::apertureCode(std::numeric_limits<double>::infinity()), 0xFFFF);
}
