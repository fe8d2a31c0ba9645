#include "base/CivilTime.h"
#include "support/NmeaSentences.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using Source = rig::TimeSources::ClockSource;

namespace {

const std::string puck = "/dev/ttyACM0";

class TimeSourcesTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::TimeSources& time = rig.model.time();

    /// The date of a server, some seconds behind the computer's clock.
    std::map<std::string, std::string> dateBehind(double seconds) {
        return {
            {"date", base::formatTime("%a, %d %b %Y %H:%M:%S GMT",
                                      rig.machine.time.now() - base::Seconds{seconds}, absl::UTCTimeZone())}};
    }
    /// A receiver by which the computer's clock is ahead.
    void plugPuck(double ahead) {
        rig.serialPorts.stream(puck, [ahead, this](base::Instant wall) {
            return nmea::second(wall - base::Seconds{ahead}, sky);
        });
    }
    nmea::Sky sky;
};

TEST_F(TimeSourcesTest, theServersDateTellsTheSkewAndAFailedCheckLeavesIt) {
    EXPECT_EQ(time.activeClockSource(), Source::systemOnly);
    time.checkClockSkew();
    time.checkClockSkew();
    ASSERT_EQ(rig.http.waiting.size(), 1U) << "one at a time";
    EXPECT_EQ(rig.http.waiting[0].request.method, "HEAD");
    EXPECT_EQ(rig.http.waiting[0].request.timeout, base::Seconds{5});
    rig.http.answer(404, "", dateBehind(7)); // whatever the page is, the clock is right
    ASSERT_TRUE(time.clockSkewSeconds().get());
    EXPECT_NEAR(*time.clockSkewSeconds().get(), 7, 1);
    EXPECT_EQ(time.activeClockSource(), Source::network);

    const auto known = time.clockSkewSeconds().get();
    for (const char* date : {"", "yesterday", "Wed, 12 Aug 2026 17:30", "<html>"}) {
        time.checkClockSkew();
        rig.http.answer(200, "<html>", {{"date", date}});
        EXPECT_EQ(time.clockSkewSeconds().get(), known) << date;
        EXPECT_EQ(time.checkFault(), "The time server gave no date.");
    }
    time.checkClockSkew();
    rig.http.fail("the time ran out");
    EXPECT_EQ(time.clockSkewSeconds().get(), known);
    EXPECT_EQ(time.checkFault(), "The time server could not be asked: the time ran out.");
    time.setTimeServer("");
    time.checkClockSkew();
    EXPECT_TRUE(rig.http.waiting.empty()) << "nobody is to be asked";
}

TEST_F(TimeSourcesTest, aPuckTakesOverAndArmingCorrectsToItOnce) {
    time.checkClockSkew();
    rig.http.answer(200, "", dateBehind(1));
    plugPuck(5);
    time.startGPS();
    rig.run(10);
    EXPECT_EQ(time.activeClockSource(), Source::gps);
    ASSERT_TRUE(time.gpsOffsetSeconds().get());
    EXPECT_NEAR(*time.gpsOffsetSeconds().get(), 5, 0.2);

    const auto body = rig.addBody("CAM1");
    std::vector<double> firedAt; // satellite time
    body->onCapture = [&](const auto&) { firedAt.push_back(rig.machine.time.now().epochSec - 5); };
    const double clock = rig.model.site().clockAt(rig.machine.time.now()) + 30;
    rig.load(rig.frameAt(clock));
    rig.model.transport().armRealEclipseTiming(true);
    EXPECT_TRUE(rig.logged("Timing: LIVE. Armed to GPS satellite UTC (Computer was +5."));
    EXPECT_EQ(rig.model.transport().timingStatus().get(), "LIVE · real eclipse clock (GPS)");
    rig.serialPorts.unplug(puck);
    rig.run(60);
    EXPECT_FALSE(time.gpsOffsetSeconds().get());
    EXPECT_FALSE(time.gpsFix().get());
    EXPECT_EQ(time.activeClockSource(), Source::network);
    ASSERT_EQ(firedAt.size(), 1U) << "the run keeps the clock that it was armed with";
    EXPECT_NEAR(firedAt[0], rig.model.site().wallAt(clock).epochSec, 0.2);
}

TEST_F(TimeSourcesTest, aLockThatIsLostTakesItsTimeWithItAndAPositionAloneGivesNone) {
    sky.hasFix = false;
    plugPuck(0);
    time.startGPS();
    rig.run(10);
    EXPECT_TRUE(time.gpsConnected().get());
    EXPECT_TRUE(time.gpsAcquiringSince());
    EXPECT_FALSE(time.gpsOffsetSeconds().get());
    sky.hasFix = true;
    rig.run(3);
    EXPECT_TRUE(time.gpsOffsetSeconds().get());
    EXPECT_FALSE(time.gpsAcquiringSince());
    int published = 0;
    time.gpsFix().changed().connect([&](const auto&) { ++published; });
    rig.run(20);
    EXPECT_LE(published, 11) << "views are not driven at the rate of the sentences";
    sky.hasFix = false;
    rig.run(1.5);
    EXPECT_FALSE(time.gpsOffsetSeconds().get());
    ASSERT_TRUE(time.gpsFix().get());
    EXPECT_FALSE(time.gpsFix().get()->hasFix);
    EXPECT_TRUE(time.gpsFix().get()->lat) << "where it was is still known";

    rig.serialPorts.stream(puck, [](base::Instant wall) { return nmea::gga(wall); });
    rig.run(5);
    EXPECT_TRUE(time.gpsFix().get()->hasFix);
    EXPECT_FALSE(time.gpsOffsetSeconds().get());
}

TEST_F(TimeSourcesTest, aDeviceThatIsNoReceiverIsToldOnce) {
    rig.serialPorts.refuse("/dev/ttyUSB3", "another program is using it");
    time.startGPS();
    rig.run(60);
    EXPECT_EQ(rig.countLines("/dev/ttyUSB3"), 1);
}

} // namespace

} // namespace zenka::test
