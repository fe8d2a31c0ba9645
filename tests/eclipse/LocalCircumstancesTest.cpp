#include "FullWalk.h"
#include "Records.h"
#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "eclipse/EclipsePath.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <limits>
#include <numbers>
#include <random>

namespace zenka::eclipse {
namespace {

using ::testing::ElementsAre;

std::vector<std::string> keysOf(const LocalCircumstances& seen) {
    std::vector<std::string> keys;
    for (const ContactEvent& event : seen.events) {
        keys.push_back(event.key);
    }
    return keys;
}

double secondsFrom(const LocalCircumstances& seen, const char* key, int hour, int minute, double second) {
    const auto civil = absl::CivilSecond(2024, 4, 8, hour, minute);
    return (seen.event(key)->utc - base::instantOf(civil, absl::UTCTimeZone())).count() - second;
}

TEST(LocalCircumstances, theEclipseOf2024IsAsItWas) {
    const Eclipse eclipse = Catalog::eclipse("2024-04-08");
    const auto carbondale = eclipse.localCircumstances({.lat = 37.7273, .lon = -89.2168, .elev = 121});
    ASSERT_THAT(keysOf(carbondale), ElementsAre("C1", "C2", "MAX", "C3", "C4"));
    EXPECT_NEAR(carbondale.totalitySeconds, 248.4, 0.2);
    EXPECT_NEAR(secondsFrom(carbondale, "C2", 18, 59, 17), 0, 1);
    EXPECT_NEAR(secondsFrom(carbondale, "C3", 19, 3, 25.5), 0, 1);
    EXPECT_TRUE(carbondale.isTotal);
    EXPECT_GT(carbondale.maxMagnitude, 1);
    EXPECT_EQ(carbondale.maxObscuration, 1);
    EXPECT_EQ(carbondale.eclipseId, "2024-04-08");
    EXPECT_EQ(carbondale.event("C2")->label, "Second contact, totality begins");
    EXPECT_NE(carbondale.events[0].id, carbondale.events[1].id);
    EXPECT_TRUE(carbondale.sunriseUTC && carbondale.sunsetUTC);
    const auto totality = [&](double lat, double lon, double elev) {
        return eclipse.localCircumstances({.lat = lat, .lon = lon, .elev = elev}).totalitySeconds;
    };
    EXPECT_NEAR(totality(32.7767, -96.797, 131), 231.5, 0.2);
    EXPECT_NEAR(totality(41.4993, -81.6944, 199), 228.9, 0.2);
}

TEST(LocalCircumstances, contactsAgreeWithAModernEphemeris) {
    std::ifstream file(ZENKA_SOURCE_DIR "/tests/data/contacts_reference.csv");
    std::string line;
    std::getline(file, line);
    double worstInstant = 0;
    double worstDuration = 0;
    int rows = 0;
    for (; std::getline(file, line); ++rows) {
        const auto field = base::split(line, ',');
        ASSERT_EQ(field.size(), 9u);
        const auto number = [&](std::size_t i) { return base::readNumber(field[i]).value(); };
        const auto seen = Catalog::eclipse(field[0]).localCircumstances(
            {.lat = number(1), .lon = number(2), .elev = number(3)});
        ASSERT_EQ(seen.eclipseId, field[0]);
        ASSERT_THAT(keysOf(seen), ElementsAre("C1", "C2", "MAX", "C3", "C4"));
        for (const auto& [key, column] : {std::pair{"C2", 5u}, {"MAX", 6u}, {"C3", 7u}}) {
            absl::Time time;
            std::string error;
            const std::string text(field[column]);
            ASSERT_TRUE(absl::ParseTime("%Y-%m-%d%ET%H:%M:%E*S%Ez", text, &time, &error)) << error;
            const double off = std::abs((seen.event(key)->utc - base::fromAbsl(time)).count());
            EXPECT_LE(off, 0.4) << field[0] << " " << key;
            worstInstant = std::max(worstInstant, off);
        }
        const double off = std::abs(seen.totalitySeconds - number(8));
        EXPECT_LE(off, 0.15) << field[0];
        worstDuration = std::max(worstDuration, off);
    }
    EXPECT_EQ(rows, 27);
    std::printf("largest error: instants %.3f s (ceiling 0.4 s), durations %.3f s (ceiling 0.15 s)\n",
                worstInstant, worstDuration);
}

TEST(LocalCircumstances, theEclipseGoesOnBelowTheHorizon) {
    // in Zaragoza the Sun sets before the Moon has left it
    const auto seen =
        Catalog::eclipse("2026-08-12").localCircumstances({.lat = 41.65, .lon = -0.88, .elev = 200});
    ASSERT_THAT(keysOf(seen), ElementsAre("C1", "C2", "MAX", "C3", "C4"));
    EXPECT_GT(seen.event("C3")->sunAltDeg, 0);
    EXPECT_LT(seen.event("C4")->sunAltDeg, 0);
}

TEST(LocalCircumstances, aPartialEclipseHasNoCentralPhase) {
    const auto seen = Catalog::eclipse("2024-04-08").localCircumstances({.lat = 40.71, .lon = -74.01});
    EXPECT_THAT(keysOf(seen), ElementsAre("C1", "MAX", "C4"));
    EXPECT_EQ(seen.totalitySeconds, 0);
    EXPECT_FALSE(seen.isTotal);
    EXPECT_TRUE(seen.maxMagnitude > 0.9 && seen.maxMagnitude < 0.92);
    EXPECT_TRUE(seen.maxObscuration > 0.89 && seen.maxObscuration < 0.91);
    EXPECT_EQ(seen.event("C2"), nullptr);
}

TEST(LocalCircumstances, whereNothingIsSeenThereIsStillAMaximum) {
    const auto seen = Catalog::eclipse("2024-04-08").localCircumstances({.lat = -37.8, .lon = 145.0});
    EXPECT_THAT(keysOf(seen), ElementsAre("MAX"));
    EXPECT_EQ(seen.maxMagnitude, 0);
    EXPECT_EQ(seen.maxObscuration, 0);
    EXPECT_FALSE(seen.isTotal);
}

TEST(LocalCircumstances, anAnnularPhaseCountsAsCentralAndHidesTheWholeDisc) {
    const auto seen = Catalog::eclipse("2028-01-26").localCircumstances({.lat = 1.33, .lon = -53.91});
    EXPECT_TRUE(seen.isTotal);
    EXPECT_LT(seen.maxMagnitude, 1);
    EXPECT_EQ(seen.maxObscuration, 1);
    EXPECT_GT(seen.totalitySeconds, 600);
    ASSERT_EQ(seen.events.size(), 5u);
    EXPECT_EQ(seen.event("C3")->label, "Third contact, totality ends");
}

TEST(LocalCircumstances, theFirstEntryAndTheLastExitAreTheContacts) {
    EclipseRecord rec = testing::standingStill();
    rec.x = {-4, 0, 1, 0}; // passes over the observer at −2 h and again at +2 h
    const auto seen = Eclipse(rec).localCircumstances({});
    ASSERT_EQ(seen.events.size(), 5u);
    EXPECT_NEAR(seen.event("C1")->tHours, -std::sqrt(4.5), 1e-6);
    EXPECT_NEAR(seen.event("C2")->tHours, -std::sqrt(4.01), 1e-6);
    EXPECT_NEAR(seen.event("C3")->tHours, std::sqrt(4.01), 1e-6);
    EXPECT_NEAR(seen.event("C4")->tHours, std::sqrt(4.5), 1e-6);
}

TEST(LocalCircumstances, aPhaseBetweenTwoPointsOfTheGridIsNotTimed) {
    const auto chordOf = [](double halfSeconds) {
        EclipseRecord rec = testing::standingStill();
        rec.x = {-0.5 / 1800, 0.5, 0, 0}; // nearest midway between two points of the grid
        rec.y[0] = std::sqrt(0.01 * 0.01 - std::pow(0.5 * halfSeconds / 3600, 2));
        return Eclipse(rec).localCircumstances({});
    };
    EXPECT_EQ(chordOf(1.9).totalitySeconds, 0);
    EXPECT_TRUE(chordOf(1.9).isTotal); // by its magnitude
    // bisection stops at 1e-7 of a radius, which at so grazing an angle is a part of a second
    EXPECT_NEAR(chordOf(2.1).totalitySeconds, 4.2, 0.5);
}

std::uint64_t bitsOf(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

/// Every bit of the result but the fresh identifiers.
std::vector<std::uint64_t> bitsOf(const LocalCircumstances& seen) {
    std::vector<std::uint64_t> bits{seen.isTotal, bitsOf(seen.maxMagnitude), bitsOf(seen.maxObscuration),
                                    bitsOf(seen.totalitySeconds)};
    for (const ContactEvent& event : seen.events) {
        for (double value : {event.tHours, event.utc.epochSec, event.sunAltDeg, event.sunAzDeg}) {
            bits.push_back(bitsOf(value));
        }
    }
    for (const auto& instant : {seen.sunriseUTC, seen.sunsetUTC}) {
        bits.push_back(instant ? bitsOf(instant->epochSec) : 0);
    }
    return bits;
}

std::vector<Observer> sitesFor(const Eclipse& eclipse, std::size_t count) {
    std::vector<Observer> sites = {
        {90, 0, 0},          {-90, 0, 0},        {89.9999, 33, 0},   {-89.9999, -120, 2800}, {0, 0, 0},
        {10, 180, 0},        {10, -180, 0},      {-35, 179.9999, 0}, {-35, -179.9999, 0},    {50, 540, 0},
        {27.98, 86.9, 8849}, {31.5, 35.5, -430}, {40, -75, 400000},  {40, -75, 1e9},         {0, 1e17, 0},
    };
    const CentralPath path = tracePath(eclipse, 900);
    for (std::size_t i = 0; i < path.central.size(); ++i) {
        const PathPoint& center = path.central[i];
        sites.push_back({center.lat, center.lon, 0});
        for (double share : {-1.0, -0.97, 0.5, 0.999, 1.0, 1.002, 1.3}) {
            sites.push_back({center.lat + share * path.halfWidthKm[i] / 111, center.lon, 100});
        }
    }
    std::mt19937 random(static_cast<unsigned>(eclipse.rec.l1[0] * 1e6));
    std::uniform_real_distribution<double> unit(-1, 1);
    while (sites.size() < count) {
        sites.push_back({std::asin(unit(random)) / std::numbers::pi * 180, 180 * unit(random),
                         2000 * std::abs(unit(random))});
    }
    return sites;
}

class EveryEclipse : public ::testing::TestWithParam<std::size_t> {};

TEST_P(EveryEclipse, steppingOverTheGridGivesTheBitsOfTheFullWalk) {
    const Eclipse eclipse(Catalog::all()[GetParam()]);
    int central = 0;
    int partial = 0;
    int none = 0;
    for (const Observer& site : sitesFor(eclipse, 200)) {
        const LocalCircumstances seen = eclipse.localCircumstances(site);
        const LocalCircumstances reference = testing::fullWalk(eclipse, site);
        ASSERT_EQ(keysOf(seen), keysOf(reference)) << site.lat << " " << site.lon << " " << site.elev;
        ASSERT_EQ(bitsOf(seen), bitsOf(reference)) << site.lat << " " << site.lon << " " << site.elev;
        (seen.event("C2") ? central : seen.event("C1") ? partial : none) += 1;
    }
    EXPECT_TRUE(central > 2 && partial > 20 && none > 20) << central << " " << partial << " " << none;
}

INSTANTIATE_TEST_SUITE_P(Catalog, EveryEclipse, ::testing::Range<std::size_t>(0, 101), [](const auto& row) {
    return base::replacedAll(Catalog::all()[row.param].id, "-", "_");
});

TEST(LocalCircumstances, steppingOverTheGridGivesTheBitsOfTheFullWalkForMadeUpShadows) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(-1, 1);
    int severalPasses = 0;
    for (int i = 0; i < 60; ++i) {
        EclipseRecord rec = testing::standingStill();
        rec.x = {unit(random), unit(random), unit(random), 0.2 * unit(random)};
        rec.y = {unit(random), unit(random), unit(random) / 2, 0.1 * unit(random), 0.05 * unit(random)};
        rec.d = {20 * unit(random), 5 * unit(random)};
        rec.l2 = {0.2 * unit(random), 0.2 * unit(random)};
        rec.tanF2 = unit(random);
        rec.mu = {180 * unit(random), 40 * unit(random), 10 * unit(random)};
        const Eclipse eclipse(rec);
        const Observer site{90 * unit(random), 180 * unit(random), 1e5 * unit(random)};
        const LocalCircumstances seen = eclipse.localCircumstances(site);
        ASSERT_EQ(bitsOf(seen), bitsOf(testing::fullWalk(eclipse, site))) << i;
        severalPasses += seen.event("C2") && seen.event("C3") &&
                         !std::ranges::is_sorted(seen.events, {}, &ContactEvent::tHours);
    }
    EXPECT_GT(severalPasses, 0);
}

TEST(LocalCircumstances, aPlaceThatIsNoneHasNoContacts) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Observer& site : {Observer{nan, 0, 0}, {0, nan, 0}, {0, infinity, 0}, {0, 0, infinity}}) {
        const auto seen = Catalog::eclipse("2024-04-08").localCircumstances(site);
        EXPECT_THAT(keysOf(seen), ElementsAre("MAX"));
        EXPECT_FALSE(seen.isTotal);
    }
}

} // namespace
} // namespace zenka::eclipse
