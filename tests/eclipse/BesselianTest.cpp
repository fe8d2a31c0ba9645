#include "eclipse/Besselian.h"

#include "Records.h"
#include "base/CivilTime.h"
#include "eclipse/Catalog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace zenka::eclipse {
namespace {

std::string utcText(base::Instant instant) {
    return base::formatTime("%Y-%m-%d %H:%M:%S", instant, absl::UTCTimeZone());
}

TEST(Besselian, theReferenceInstantIsTheHourOfTheElementsAndDeltaTLeadsToUniversalTime) {
    EclipseRecord rec = testing::standingStill();
    rec.t0Hour = 7.75;
    rec.deltaT = 69;
    const Eclipse eclipse(rec);
    EXPECT_EQ(utcText(eclipse.baseTDT()), "2030-01-01 07:45:00");
    EXPECT_EQ(utcText(eclipse.utc(-0.5)), "2030-01-01 07:13:51");
}

TEST(BesselianDeathTest, aDateThatIsNoneEndsTheProgram) {
    EclipseRecord rec = testing::standingStill();
    for (const char* date : {"", "2030-01", "2030-01-01-01", "2030-Jan-01"}) {
        rec.dateUTC = date;
        EXPECT_DEATH(Eclipse{rec}, "a date is not of the form");
    }
}

TEST(Besselian, theObserverUnderTheSunSeesItInTheZenithWithTheAxisOverhead) {
    const Geom geom = Eclipse(testing::standingStill()).geometry(0, {});
    EXPECT_EQ(geom.m, 0);
    EXPECT_DOUBLE_EQ(geom.zeta, 1);
    EXPECT_DOUBLE_EQ(geom.altDeg, 90);
    EXPECT_EQ(geom.azDeg, 0); // none is defined there
}

TEST(Besselian, theSunGoesFromEastOverSouthToWest) {
    EclipseRecord rec = testing::standingStill();
    rec.d[0] = 10;
    const Eclipse eclipse(rec);
    const auto at = [&](double lat, double lon) { return eclipse.geometry(0, {.lat = lat, .lon = lon}); };
    EXPECT_NEAR(at(40, 0).azDeg, 180, 1e-9);
    EXPECT_NEAR(at(40, 0).altDeg, 60, 1e-9);
    EXPECT_LT(at(40, -30).azDeg, 180);
    EXPECT_LT(at(40, -30).q, 0);
    EXPECT_GT(at(40, 30).azDeg, 180);
    EXPECT_GT(at(40, 30).q, 0);
    const double north = at(-40, 0).azDeg;
    EXPECT_LT(std::min(north, 360 - north), 1e-9);
    EXPECT_LT(at(0, 170).altDeg, 0);
}

TEST(Besselian, heightNarrowsTheConesAndDeltaTTurnsTheEarth) {
    EclipseRecord rec = testing::standingStill();
    rec.tanF1 = 0.0047;
    rec.tanF2 = 0.0046;
    rec.deltaT = 100;
    const Eclipse eclipse(rec);
    const double underTheSun = 0.417807; // degrees of longitude
    const Geom low = eclipse.geometry(0, {.lat = 0, .lon = underTheSun, .elev = 0});
    const Geom high = eclipse.geometry(0, {.lat = 0, .lon = underTheSun, .elev = 6378.140});
    EXPECT_NEAR(low.u, 0, 1e-15);
    EXPECT_DOUBLE_EQ(low.L1, 0.5 - 0.0047);
    EXPECT_DOUBLE_EQ(low.L2, -0.01 - 0.0046);
    EXPECT_DOUBLE_EQ(high.zeta, 1.001);
    EXPECT_DOUBLE_EQ(high.L1, 0.5 - 0.0047 * 1.001);
}

TEST(Besselian, polynomialsMayHaveAnyLength) {
    EclipseRecord rec = testing::standingStill();
    rec.x = {};
    rec.y = {1, 2, 3, 4, 5};
    const Geom geom = Eclipse(rec).geometry(2, {});
    EXPECT_EQ(geom.u, 0);
    EXPECT_EQ(geom.v, 1 + 4 + 12 + 32 + 80);
}

TEST(Obscuration, isTheSharedPartOfTheSunsDisc) {
    // l1 = 1 and l2 = 0 are two discs of radius 1/2
    EXPECT_EQ(Eclipse::obscuration(1.0, 1, 0), 0);
    EXPECT_EQ(Eclipse::obscuration(0.0, 1, 0), 1);
    const double lens = (2 * std::numbers::pi / 3 - std::sqrt(3.0) / 2) / std::numbers::pi;
    EXPECT_NEAR(Eclipse::obscuration(0.5, 1, 0), lens, 1e-12);
    EXPECT_EQ(Eclipse::obscuration(0.02, 0.5, 0.02), 1); // inside the Moon's disc, or the annular path
    EXPECT_EQ(Eclipse::obscuration(0.1, 0.02, 0.02), 0); // no disc at all
    double before = 1;
    for (double d = 0.02; d < 0.52; d += 0.001) {
        const double now = Eclipse::obscuration(d, 0.54, 0.01);
        ASSERT_LE(now, before);
        before = now;
    }
}

TEST(Magnitude, isNeverNegativeAndNothingForNoDisc) {
    EXPECT_EQ(magnitude({.m = 0.6, .L1 = 0.5, .L2 = -0.01}), 0);
    EXPECT_EQ(magnitude({.m = 0.1, .L1 = 0.5, .L2 = -0.5}), 0);
    EXPECT_DOUBLE_EQ(magnitude({.m = 0.01, .L1 = 0.5, .L2 = -0.01}), 1);
}

TEST(Dates, dayNumbersAreTheAlmanacs) {
    EXPECT_EQ(julianDay(2000, 1, 1), 2451544.5);
    EXPECT_EQ(julianDay(1957, 10, 4), 2436115.5);
    EXPECT_EQ(julianDay(2100, 3, 1) - julianDay(2100, 2, 28), 1);
    EXPECT_EQ(dayOfYear(2024, 4, 8), 99);
    EXPECT_EQ(dayOfYear(2023, 12, 31), 365);
    EXPECT_EQ(dayOfYear(2024, 2, 29), 60);
    EXPECT_EQ(dayOfYear(2026, 1, 31), 31);
}

TEST(SunTimes, agreeWithTheAlmanacToTwoMinutes) {
    const auto times = Catalog::eclipse("2024-04-08").sunriseSunset(40.7128, -74.0060);
    ASSERT_TRUE(times.rise && times.set);
    const auto expected = [](int hour, int minute) {
        return base::instantOf(absl::CivilSecond(2024, 4, 8, hour, minute), absl::UTCTimeZone());
    };
    EXPECT_NEAR((*times.rise - expected(10, 28)).count(), 0, 120); // 06:28 in New York
    EXPECT_NEAR((*times.set - expected(23, 29)).count(), 0, 120);  // 19:29
}

TEST(SunTimes, theSunsetOfAWesternSiteStandsBeforeTheSunriseOfTheSameDate) {
    const auto times = Catalog::eclipse("2046-02-05").sunriseSunset(19.7, -155.1);
    ASSERT_TRUE(times.rise && times.set);
    EXPECT_LT(*times.set, *times.rise);
    EXPECT_EQ(utcText(*times.set).substr(0, 10), "2046-02-05");
    EXPECT_EQ(utcText(*times.rise).substr(0, 10), "2046-02-05");
}

TEST(SunTimes, polarDayAndNightHaveNone) {
    const Eclipse june = Catalog::eclipse("2039-06-21");
    for (double lat : {80.0, 90.0, -80.0, -90.0}) {
        const auto times = june.sunriseSunset(lat, 25);
        EXPECT_FALSE(times.rise || times.set) << lat;
    }
    // in the last hours before the polar day the Sun rises and does not set again
    int onlyRise = 0;
    const Eclipse april = Catalog::eclipse("2024-04-08");
    for (double lat = 70; lat < 90; lat += 0.001) {
        const auto times = april.sunriseSunset(lat, 0);
        onlyRise += times.rise && !times.set;
    }
    EXPECT_GT(onlyRise, 0);
}

} // namespace
} // namespace zenka::eclipse
