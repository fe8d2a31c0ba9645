#include "cameras/lumix/LumixEncode.h"

#include <gmock/gmock.h>

#include <limits>

using namespace zenka::cameras;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(LumixEncode, aShutterIsThousandthsOfItsDenominatorOrOfSecondsWithTheTopBit) {
    EXPECT_EQ(LumixEncode::shutter(0), 1000000U);
    EXPECT_EQ(LumixEncode::shutter(-3), 1000000U);
    EXPECT_EQ(LumixEncode::shutter(1.0 / 250), 250000U);
    EXPECT_EQ(LumixEncode::shutter(1.0 / 8000), 8000000U);
    EXPECT_EQ(LumixEncode::shutter(1), 1000U);
    EXPECT_EQ(LumixEncode::shutter(1 / 1.3), 1300U);
    EXPECT_EQ(LumixEncode::shutter(2.5), 0x800009C4U);
    EXPECT_EQ(LumixEncode::shutter(30), 0x80007530U);
}

TEST(LumixEncode, whatDoesNotFitIsNotSentAndTakesNothingElseWithIt) {
    EXPECT_EQ(LumixEncode::shutter(1e-9), std::nullopt);
    EXPECT_EQ(LumixEncode::shutter(4e-7), std::nullopt) << "its top bit would read as seconds";
    EXPECT_EQ(LumixEncode::shutter(3e6), std::nullopt);
    EXPECT_EQ(LumixEncode::shutter(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
    EXPECT_EQ(LumixEncode::shutter(std::numeric_limits<double>::infinity()), std::nullopt);
    EXPECT_EQ(LumixEncode::aperture(1e5), std::nullopt);
    using Setting = LumixEncode::Setting;
    EXPECT_THAT(LumixEncode::settings(1600, 1e5, 1e-9, false),
                ElementsAre(Setting{0x02000021, 0x640, false}));
}

TEST(LumixEncode, aFrameBeginsWithTheIsoAndABulbHasNoShutter) {
    using Setting = LumixEncode::Setting;
    const Setting iso{0x02000021, 200, false};
    const Setting aperture{0x02000041, 80, true};
    EXPECT_THAT(LumixEncode::settings(200, 8, 0.004, false),
                ElementsAre(iso, aperture, Setting{0x02000031, 250000, false}));
    EXPECT_THAT(LumixEncode::settings(200, 8, 4, true), ElementsAre(iso, aperture));
    EXPECT_THAT(LumixEncode::settings(0, 0, 0, false), ElementsAre(Setting{0x02000021, 0x10000064, false}));
}

TEST(LumixEncode, aShutterReadsAsItWasSent) {
    EXPECT_EQ(LumixEncode::shutterText(0.004), "1/250");
    EXPECT_EQ(LumixEncode::shutterText(1), "1");
    EXPECT_EQ(LumixEncode::shutterText(1 / 1.3), "1/1.3");
    EXPECT_EQ(LumixEncode::shutterText(2.5), "2.5");
    EXPECT_EQ(LumixEncode::shutterText(0), "");
    EXPECT_EQ(LumixEncode::shutterText(1e-9), "");
}

TEST(LumixPTP, containersAreLittleEndianToTheByte) {
    EXPECT_THAT(LumixPTP::ptpCommand(0x9404, {0x03000011}),
                ElementsAre(16, 0, 0, 0, 1, 0, 0x04, 0x94, 0, 0, 0, 0, 0x11, 0, 0, 0x03));
    EXPECT_EQ(LumixPTP::ptpCommand(0x1002, {}).size(), 12U);
    EXPECT_THAT(LumixPTP::setPayload(0x02000041, 80, true), ElementsAre(0x41, 0, 0, 0x02, 2, 0, 0, 0, 80, 0));
    EXPECT_THAT(LumixPTP::setPayload(0x02000021, 0x10000064, false),
                ElementsAre(0x21, 0, 0, 0x02, 4, 0, 0, 0, 0x64, 0, 0, 0x10));
    EXPECT_EQ(LumixPTP::ptpResponseCode({12, 0, 0, 0, 3, 0, 0x01, 0x20}), 0x2001);
    EXPECT_EQ(LumixPTP::ptpResponseCode({12, 0, 0, 0, 3, 0, 0x01}), 0);
}
