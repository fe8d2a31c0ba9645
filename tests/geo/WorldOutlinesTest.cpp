#include "geo/WorldOutlines.h"

#include "geo/Bundled.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <numbers>

namespace zenka::geo {
namespace {

using ::testing::IsEmpty;
using ::testing::Not;

constexpr GeoBox world;
constexpr GeoBox iceland{63, -25, 67, -13};
constexpr GeoBox midPacific{-45, -135, -31, -115};

/// How many points, as a name is too much to ask of an array of vectors.
template <typename Lines>
std::size_t pointCount(const Lines& lines) {
    std::size_t count = 0;
    for (const Polyline& line : lines) {
        count += line.size();
    }
    return count;
}

/// How often the way from one point to another of the same latitude meets lines.
int crossings(const std::vector<Polyline>& lines, double lat, double fromLon, double toLon) {
    int count = 0;
    for (const Polyline& line : lines) {
        for (std::size_t i = 1; i < line.size(); ++i) {
            const GeoPoint& a = line[i - 1];
            const GeoPoint& b = line[i];
            if ((a.lat > lat) != (b.lat > lat)) {
                const double lon = a.lon + (lat - a.lat) / (b.lat - a.lat) * (b.lon - a.lon);
                count += lon > fromLon && lon < toLon ? 1 : 0;
            }
        }
    }
    return count;
}

bool onLand(Detail detail, double lat, double lon) {
    const GeoBox here{lat - 0.001, lon - 0.001, lat + 0.001, lon + 0.001};
    for (const LandArea& area : bundledOutlines().land(detail, here)) {
        if (crossings(area.rings, lat, lon, 181) % 2 == 1) {
            return true;
        }
    }
    return false;
}

/// Million square kilometres on a sphere; holes count less.
double areaOf(const LandArea& land) {
    constexpr double radians = std::numbers::pi / 180;
    double area = 0;
    for (const Polyline& ring : land.rings) {
        for (std::size_t i = 1; i < ring.size(); ++i) {
            const double sines = std::sin(ring[i].lat * radians) + std::sin(ring[i - 1].lat * radians);
            area += (ring[i].lon - ring[i - 1].lon) * radians * sines / 2;
        }
    }
    return std::abs(area) * 6.371 * 6.371;
}

class EachDetail : public ::testing::TestWithParam<Detail> {};

TEST_P(EachDetail, aBoxHoldsWhatIsInItAndNothingElse) {
    const WorldOutlines& outlines = bundledOutlines();
    EXPECT_THAT(outlines.coasts(GetParam(), iceland), Not(IsEmpty()));
    EXPECT_THAT(outlines.land(GetParam(), iceland), Not(IsEmpty()));
    EXPECT_THAT(outlines.borders(GetParam(), iceland), IsEmpty());
    EXPECT_THAT(outlines.coasts(GetParam(), midPacific), IsEmpty());
    EXPECT_THAT(outlines.land(GetParam(), midPacific), IsEmpty());
    EXPECT_LT(pointCount(outlines.coasts(GetParam(), iceland)),
              pointCount(outlines.coasts(GetParam(), world)) / 20);

    for (const Polyline& coast : outlines.coasts(GetParam(), iceland)) {
        const bool within = std::any_of(coast.begin(), coast.end(), [](const GeoPoint& point) {
            return point.lat > 50 && point.lat < 70 && point.lon > -60 && point.lon < 0;
        });
        EXPECT_TRUE(within);
    }
}

TEST_P(EachDetail, landIsClosedAndOnTheGlobe) {
    for (const LandArea& area : bundledOutlines().land(GetParam(), world)) {
        ASSERT_THAT(area.rings, Not(IsEmpty()));
        for (const Polyline& ring : area.rings) {
            ASSERT_GT(ring.size(), 3U);
            EXPECT_EQ(ring.front(), ring.back());
            for (const GeoPoint& point : ring) {
                ASSERT_LE(std::abs(point.lat), 90);
                ASSERT_LE(std::abs(point.lon), 180);
            }
        }
    }
}

TEST_P(EachDetail, landCoversWhatTheEarthHas) {
    double area = 0;
    for (const LandArea& land : bundledOutlines().land(GetParam(), world)) {
        area += areaOf(land);
    }
    // The Earth's 148.9 without the 1.6 of Antarctica's ice shelves, which are no land here.
    const double error = std::abs(area - 147.3);
    constexpr double ceiling = 1;
    std::cout << "land of " << area << " million km2, " << error << " off (ceiling " << ceiling << ")\n";
    EXPECT_LT(error, ceiling);
}

TEST_P(EachDetail, landIsLandAndSeaIsSea) {
    const std::vector<GeoPoint> land{{40.42, -3.70},   {39.9995, -3.0005}, {40.0005, -2.9995}, {38.5, -98},
                                     {60.001, 90.001}, {59.999, 89.999},   {23, 12},           {-25, 135},
                                     {-89.5, 50},      {-87, -179.9},      {-87, 179.9},       {67.5, -179.9},
                                     {67.5, 179.5},    {64.8, -18.5},      {72, -40}};
    const std::vector<GeoPoint> sea{{30, -45}, {42, 50.8}, {45.5, -5},    {38, 5},     {0, 0},
                                    {0, 180},  {88, 0},    {-60, -179.9}, {58, -87.0}, {-40, -120}};
    for (const GeoPoint& point : land) {
        EXPECT_TRUE(onLand(GetParam(), point.lat, point.lon)) << point.lat << ' ' << point.lon;
    }
    for (const GeoPoint& point : sea) {
        EXPECT_FALSE(onLand(GetParam(), point.lat, point.lon)) << point.lat << ' ' << point.lon;
    }
}

TEST_P(EachDetail, aBorderStandsBetweenTwoCountries) {
    const GeoBox iberia{36, -10, 44, 4};
    const std::vector<Polyline> borders = bundledOutlines().borders(GetParam(), iberia);
    EXPECT_EQ(crossings(borders, 39.3, -8.5, -4.0) % 2, 1) << "Portugal and Spain";
    EXPECT_EQ(crossings(borders, 41.3, -4.0, -1.0), 0) << "within Spain";
    const std::vector<Polyline> plains = bundledOutlines().borders(GetParam(), {45, -105, 55, -100});
    ASSERT_THAT(plains, Not(IsEmpty()));
    for (const Polyline& line : plains) {
        for (const GeoPoint& point : line) {
            if (point.lon > -105 && point.lon < -100) {
                EXPECT_NEAR(point.lat, 49, 0.05) << "the United States and Canada";
            }
        }
    }
}

TEST_P(EachDetail, aBoxOverTheDateLineHasBothSides) {
    const WorldOutlines& outlines = bundledOutlines();
    for (const GeoBox& box : {GeoBox{60, 175, 72, -175}, GeoBox{60, 175, 72, 185}}) {
        const std::vector<Polyline> coasts = outlines.coasts(GetParam(), box);
        const auto side = [&](double sign) {
            return std::any_of(coasts.begin(), coasts.end(),
                               [&](const Polyline& line) { return line.front().lon * sign > 174; });
        };
        EXPECT_TRUE(side(1));
        EXPECT_TRUE(side(-1));
    }
}

TEST_P(EachDetail, coastsLeaveOutTheCuts) {
    for (const Polyline& coast : bundledOutlines().coasts(GetParam(), world)) {
        ASSERT_GT(coast.size(), 1U);
        for (std::size_t i = 1; i < coast.size(); ++i) {
            const GeoPoint& a = coast[i - 1];
            const GeoPoint& b = coast[i];
            EXPECT_GT(std::min(a.lat, b.lat), -90) << "no coast at the pole";
            EXPECT_FALSE(std::abs(a.lon) == 180 && a.lon == b.lon) << "no coast along the date line";
            // Nowhere else is a coast this straight for this long.
            EXPECT_LT(std::hypot(a.lat - b.lat, (a.lon - b.lon) * std::cos(a.lat * std::numbers::pi / 180)),
                      GetParam() == Detail::coarse ? 12 : 5);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(WorldOutlines, EachDetail,
                         ::testing::Values(Detail::coarse, Detail::medium, Detail::fine));

TEST(WorldOutlines, moreDetailHasMorePointsAndIsChosenForSmallerPixels) {
    const WorldOutlines& outlines = bundledOutlines();
    EXPECT_GT(pointCount(outlines.coasts(Detail::medium, iceland)),
              2 * pointCount(outlines.coasts(Detail::coarse, iceland)));
    EXPECT_GT(pointCount(outlines.coasts(Detail::fine, iceland)),
              2 * pointCount(outlines.coasts(Detail::medium, iceland)));
    EXPECT_EQ(detailFor(360.0 / 1200), Detail::coarse);
    EXPECT_EQ(detailFor(60.0 / 1200), Detail::medium);
    EXPECT_EQ(detailFor(5.0 / 1200), Detail::fine);
}

TEST(WorldOutlines, aBoxThatIsNoneHoldsNothing) {
    const double nan = std::nan("");
    EXPECT_THAT(bundledOutlines().land(Detail::coarse, {nan, -10, 44, 4}), IsEmpty());
    EXPECT_THAT(bundledOutlines().land(Detail::coarse, {36, nan, 44, 4}), IsEmpty());
    EXPECT_THAT(bundledOutlines().land(Detail::coarse, {60, -10, 30, 4}), IsEmpty());
}

} // namespace
} // namespace zenka::geo
