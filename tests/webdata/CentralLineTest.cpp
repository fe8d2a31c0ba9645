#include "webdata/CentralLine.h"

#include "base/CivilTime.h"
#include "eclipse/Catalog.h"
#include "eclipse/ShadowAxis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zenka::webdata {
namespace {

using eclipse::Catalog::eclipse;

/// An ordinary one, one over a pole, one over the date line, an annular and a hybrid one, one near the pole.
constexpr const char* ids[] = {"2024-04-08", "2026-08-12", "2028-07-22",
                               "2028-01-26", "2049-11-25", "2033-03-30"};

double secondsAt(const eclipse::Eclipse& ecl, const geo::GeoPoint& at) {
    return ecl.localCircumstances({.lat = at.lat, .lon = at.lon}).totalitySeconds;
}

/// A point so many parts of the way from one to another, 1.1 beyond it.
geo::GeoPoint onTheWay(const geo::GeoPoint& from, const geo::GeoPoint& to, double part) {
    return geo::destination(from, geo::bearingDeg(from, to), geo::distanceKm(from, to) * part);
}

TEST(CentralLine, thePathOfTheEngineRunsOnTheSameGround) {
    double worst = 0;
    int compared = 0;
    for (const char* id : ids) {
        const eclipse::Eclipse ecl = eclipse(id);
        for (const eclipse::PathPoint& point : tracePath(ecl, 60).central) {
            const auto circ = ecl.localCircumstances({.lat = point.lat, .lon = point.lon});
            const eclipse::ContactEvent* greatest = circ.event("MAX");
            ASSERT_TRUE(greatest);
            const auto here = axisOnGround(ecl.rec, greatest->tHours);
            if (!here || greatest->sunAltDeg < 20 || std::abs(point.lat) > 65)
                continue; // where the engine's search for the axis is less sure
            ++compared;
            worst = std::max(worst, geo::distanceKm({point.lat, point.lon}, {here->lat, here->lon}));
        }
    }
    std::printf("worst %.2g km at %d points, ceiling 1 km\n", worst, compared);
    EXPECT_LT(worst, 1);
    EXPECT_GT(compared, 400);
}

TEST(CentralLine, eachPointIsInTheMiddleOfTheShadowAtItsTime) {
    double worst = 0;
    for (const char* id : ids) {
        const eclipse::Eclipse ecl = eclipse(id);
        for (const LinePoint& point : centralLine(ecl)) {
            const double tHours = (point.utc - ecl.utc(0)).count() / 3600;
            worst = std::max(worst, ecl.geometry(tHours, {.lat = point.at.lat, .lon = point.at.lon}).m);
        }
    }
    std::printf("worst %.2g Earth radii, ceiling 1e-6\n", worst);
    EXPECT_LT(worst, 1e-6);
}

TEST(CentralLine, theCentralPhaseIsSeenUpToTheLimitsAndNoFurther) {
    for (const char* id : ids) {
        const eclipse::Eclipse ecl = eclipse(id);
        int limits = 0;
        for (const LinePoint& point : centralLine(ecl)) {
            if (point.sunAltDeg < 15 || point.halfWidthKm < 3)
                continue; // where limits may be those of the day, or nothing but a line
            for (const geo::GeoPoint& limit : {point.north, point.south}) {
                ++limits;
                EXPECT_GT(secondsAt(ecl, onTheWay(point.at, limit, 0.98)), 0) << id;
                EXPECT_EQ(secondsAt(ecl, onTheWay(point.at, limit, 1.02)), 0) << id;
            }
            EXPECT_NEAR(point.halfWidthKm,
                        (geo::distanceKm(point.at, point.north) + geo::distanceKm(point.at, point.south)) / 2,
                        0.01);
        }
        EXPECT_TRUE(limits > 0 || std::string(id) == "2033-03-30") << id;
    }
}

TEST(CentralLine, itRunsInWholeMinutesFromSunriseToSunset) {
    for (const char* id : ids) {
        const auto line = centralLine(eclipse(id));
        ASSERT_GT(line.size(), 40U) << id;
        EXPECT_NEAR(line.front().sunAltDeg, 0, 0.5) << id;
        EXPECT_NEAR(line.back().sunAltDeg, 0, 0.5) << id;
        EXPECT_TRUE(std::ranges::is_sorted(line, {}, &LinePoint::utc));
        const auto whole = std::ranges::count_if(line, [](const LinePoint& point) {
            return std::abs(std::remainder(point.utc.epochSec, 60)) < 1e-3;
        });
        EXPECT_EQ(whole + 10, static_cast<std::ptrdiff_t>(line.size())) << id << ": five more at either end";
    }
    const auto line = centralLine(eclipse("2024-04-08"));
    const auto dallas = std::ranges::find_if(line, [](const LinePoint& point) {
        return base::formatTime("%H:%M", point.utc + base::Seconds(0.5), absl::UTCTimeZone()) == "18:42";
    });
    ASSERT_NE(dallas, line.end());
    EXPECT_LT(geo::distanceKm(dallas->at, {32.78, -96.8}), 120) << "over Texas";
    EXPECT_GT(dallas->north.lat, dallas->south.lat);
}

} // namespace
} // namespace zenka::webdata
