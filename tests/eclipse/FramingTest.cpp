#include "eclipse/Framing.h"

#include "eclipse/Catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>

namespace zenka::eclipse {
namespace {

using Framing::FramePoint;
using Framing::Optics;
using Framing::SkyPlace;

constexpr double radian = std::numbers::pi / 180;

Optics fullFrame(double focalMm, double rotationDeg = 0) {
    return {.widthPx = 8192, .heightPx = 5464, .focalMm = focalMm, .rotationDeg = rotationDeg};
}

struct Vector {
    double x = 0; ///< north
    double y = 0; ///< west
    double z = 0; ///< up
};
Vector operator*(const Vector& a, double by) {
    return {a.x * by, a.y * by, a.z * by};
}
Vector operator+(const Vector& a, const Vector& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vector unit(const Vector& a) {
    return a * (1 / std::sqrt(dot(a, a)));
}
Vector towards(const SkyPlace& place) {
    return {std::cos(place.altDeg * radian) * std::cos(place.azDeg * radian),
            -std::cos(place.altDeg * radian) * std::sin(place.azDeg * radian),
            std::sin(place.altDeg * radian)};
}

/// The sky turns about the pole; the camera is three vectors. No altitude and no azimuth past the first one.
FramePoint driftByRotation(const Optics& optics, double lat, const SkyPlace& sun, double seconds) {
    const Vector pole{std::cos(lat * radian), 0, std::sin(lat * radian)};
    const Vector begin = towards(sun);
    const double turn = -seconds / 240 * radian; // 15 degrees of the mean Sun an hour, westwards
    const Vector end = begin * std::cos(turn) + cross(pole, begin) * std::sin(turn) +
                       pole * (dot(pole, begin) * (1 - std::cos(turn)));
    const Vector right = unit(cross(begin, {0, 0, 1}));
    const Vector up = cross(right, begin);
    const double ahead = dot(begin, end);
    return {.right = optics.wholeFocalMm() * dot(end, right) / ahead,
            .up = optics.wholeFocalMm() * dot(end, up) / ahead};
}

TEST(Framing, aFullFrameBehind600MillimetresByHand) {
    // 2 atan(18/600), 2 atan(12/600), 1200 tan(0.265°), and so on
    const auto facts = Framing::facts(fullFrame(600), 0.265);
    EXPECT_NEAR(facts.fieldWidthDeg, 3.43672, 1e-5);
    EXPECT_NEAR(facts.fieldHeightDeg, 2.29153, 1e-5);
    EXPECT_NEAR(facts.sunMm, 5.5502, 1e-4);
    EXPECT_NEAR(facts.sunPx, 1262.98, 0.01);
    EXPECT_NEAR(facts.sunOfHeight, 0.23126, 1e-5);
    EXPECT_NEAR(facts.radiiAlongWidth, 6.4843, 1e-4);
    EXPECT_NEAR(facts.radiiAlongHeight, 4.3236, 1e-4);
    EXPECT_NEAR(facts.arcsecPerPx, 1.51072, 1e-4);
    // 15″ a second past 1.51072″ a pixel
    EXPECT_NEAR(Framing::pixelsPerSecond(fullFrame(600), 15), 9.929, 1e-3);

    Optics doubled = fullFrame(300, 90);
    doubled.converter = 2;
    const auto portrait = Framing::facts(doubled, 0.265);
    EXPECT_NEAR(portrait.sunPx, facts.sunPx, 1e-9);
    EXPECT_NEAR(portrait.sunOfHeight, facts.sunOfHeight * 24 / 36, 1e-9) << "it stands upright";

    Optics unknown = fullFrame(600);
    unknown.widthPx = unknown.heightPx = 0;
    EXPECT_EQ(Framing::facts(unknown, 0.265).sunPx, 0);
    EXPECT_EQ(Framing::pixelsPerSecond(unknown, 15), 0);
    EXPECT_NEAR(Framing::facts(unknown, 0.265).sunMm, facts.sunMm, 1e-9);
}

TEST(Framing, theSunIsAsLargeAsItsDistanceOnTheDayMakesIt) {
    double worst = 0;
    for (const char* id : {"2024-04-08", "2026-08-12", "2027-08-02", "2028-01-26"}) {
        const Eclipse eclipse = Catalog::eclipse(id);
        // The almanac's formula for the Sun's distance, good to some 0.0001.
        const double days = (eclipse.utc(0).epochSec - 946728000.0) / 86400;
        const double anomaly = (357.529 + 0.98560028 * days) * radian;
        const double distance = 1.00014 - 0.01671 * std::cos(anomaly) - 0.00014 * std::cos(2 * anomaly);
        const double found = Framing::sunRadiusDeg(eclipse, 0, {.lat = 20, .lon = 0, .elev = 0}) * 3600;
        worst = std::max(worst, std::abs(found - 959.63 / distance));
    }
    std::printf("largest difference of the Sun's radius: %.3f arc seconds, ceiling 0.3\n", worst);
    EXPECT_LT(worst, 0.3);
}

TEST(Framing, theDriftIsThatOfTheSkyTurningAboutThePole) {
    struct Place {
        const char* eclipse;
        double lat;
        double lon;
        double rotation;
    };
    double worst = 0;
    for (const Place& place : {Place{"2026-08-12", 65.2, -20.0, 0},
                               {"2026-08-12", 78.2, 15.6, 90},
                               {"2028-01-26", 0, -60.0, 0},
                               {"2027-08-02", 25.7, 32.6, 30},
                               {"2024-04-08", 0, -95, 0}}) {
        const Eclipse eclipse = Catalog::eclipse(place.eclipse);
        const Observer observer{.lat = place.lat, .lon = place.lon, .elev = 0};
        const double hours = eclipse.localCircumstances(observer).event("MAX")->tHours;
        const Optics optics = fullFrame(600, place.rotation);
        const SkyPlace begin = Framing::sunAt(eclipse, hours, observer);
        for (const double seconds : {1.0, 120.0, 600.0}) {
            const auto found =
                Framing::onSensor(optics, begin, Framing::sunAt(eclipse, hours + seconds / 3600, observer));
            ASSERT_TRUE(found);
            FramePoint wanted = driftByRotation(optics, place.lat, begin, seconds);
            // the same turned by the camera's rotation
            const double turn = place.rotation * radian;
            wanted = {.right = wanted.right * std::cos(turn) - wanted.up * std::sin(turn),
                      .up = wanted.right * std::sin(turn) + wanted.up * std::cos(turn)};
            const double way = std::hypot(wanted.right, wanted.up);
            worst = std::max(worst, std::hypot(found->right - wanted.right, found->up - wanted.up) / way);
        }
        const double speed = Framing::sunSpeed(eclipse, hours, observer);
        const double perSecond = Framing::pixelsBetween(
            optics, {},
            *Framing::onSensor(optics, begin, Framing::sunAt(eclipse, hours + 1.0 / 3600, observer)));
        EXPECT_NEAR(Framing::pixelsPerSecond(optics, speed) / perSecond, 1, 0.001) << place.eclipse;
    }
    // The Sun's own way in declination, up to 1′ an hour, is not in the turning of the sky.
    std::printf("largest difference of the drift: %.4f of its length, ceiling 0.002\n", worst);
    EXPECT_LT(worst, 0.002);
}

TEST(Framing, theWayAcrossNorthAndPastTheZenithIsShort) {
    const Optics optics = fullFrame(600);
    const double fifth = 600 * std::tan(0.2 * radian);
    const auto acrossNorth =
        Framing::onSensor(optics, {.altDeg = 0, .azDeg = 359.9}, {.altDeg = 0, .azDeg = 0.1});
    ASSERT_TRUE(acrossNorth);
    EXPECT_NEAR(acrossNorth->right, fifth, 1e-9);
    EXPECT_NEAR(acrossNorth->up, 0, 1e-9);
    const auto pastZenith =
        Framing::onSensor(optics, {.altDeg = 89.9, .azDeg = 90}, {.altDeg = 89.9, .azDeg = 270});
    ASSERT_TRUE(pastZenith);
    EXPECT_NEAR(pastZenith->right, 0, 1e-9);
    EXPECT_NEAR(pastZenith->up, fifth, 1e-9);
    EXPECT_FALSE(Framing::onSensor(optics, {.altDeg = 10, .azDeg = 90}, {.altDeg = 10, .azDeg = 270}));

    // A camera turned clockwise has the zenith at its left.
    const auto turned =
        Framing::onSensor(fullFrame(600, 90), {.altDeg = 20, .azDeg = 90}, {.altDeg = 20.2, .azDeg = 90});
    ASSERT_TRUE(turned);
    EXPECT_NEAR(turned->right, -fifth, 1e-9);
    EXPECT_NEAR(turned->up, 0, 1e-9);
}

TEST(Framing, theInstantAtWhichTheSunLeavesAFixedFrameIsFound) {
    const Eclipse eclipse = Catalog::eclipse("2026-08-12");
    const Observer observer{.lat = 41.65, .lon = -0.88, .elev = 200};
    const double hours = eclipse.localCircumstances(observer).event("MAX")->tHours;
    const SkyPlace aimed = Framing::sunAt(eclipse, hours, observer);
    const Optics optics = fullFrame(2000);
    const auto leaves = Framing::leavesAt(eclipse, observer, optics, aimed, 1, hours, hours + 0.5);
    ASSERT_TRUE(leaves);
    const double radiusMm = Framing::facts(optics, Framing::sunRadiusDeg(eclipse, hours, observer)).sunMm / 2;
    const auto held = [&](double at) {
        return Framing::holds(
            optics, *Framing::onSensor(optics, aimed, Framing::sunAt(eclipse, at, observer)), radiusMm);
    };
    EXPECT_TRUE(held(*leaves - 0.5 / 3600));
    EXPECT_FALSE(held(*leaves + 0.5 / 3600));
    // From the middle 12 mm less the Sun's radius at 0.14 mm a second, and not all of it upright.
    EXPECT_GT((*leaves - hours) * 3600, (12 - radiusMm) / 0.1455);
    EXPECT_FALSE(Framing::leavesAt(eclipse, observer, optics, aimed, 1, hours, *leaves - 1.0 / 3600));
    EXPECT_FALSE(Framing::leavesAt(eclipse, observer, optics, aimed, 3, hours, hours + 0.5))
        << "it never was inside";
}

} // namespace
} // namespace zenka::eclipse
