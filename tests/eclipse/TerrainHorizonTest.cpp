#include "eclipse/TerrainHorizon.h"

#include "eclipse/TerrainSampling.h"
#include "geo/GeoPoint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <set>

using namespace zenka::eclipse;

namespace {

using TerrainHorizon::perDegree;
constexpr int side = TerrainSampling::tilePixels;
constexpr double worldPixels = 524288;

using Ground = std::function<double(double lat, double lon)>;

double latitudeOf(double y) {
    return std::atan(std::sinh(std::numbers::pi * (1 - 2 * y / worldPixels))) / perDegree;
}

void paint(std::uint8_t* pixel, double metres) {
    const auto code = static_cast<unsigned>(std::lround((metres + 10000) * 10));
    pixel[0] = static_cast<std::uint8_t>(code >> 16);
    pixel[1] = static_cast<std::uint8_t>(code >> 8);
    pixel[2] = static_cast<std::uint8_t>(code);
    pixel[3] = 255;
}

/// A tile of some ground, heights to a tenth of a metre.
std::vector<std::uint8_t> tileOf(const TileKey& key, const Ground& ground) {
    std::vector<std::uint8_t> pixels(std::size_t{4} * side * side);
    for (int row = 0; row < side; ++row) {
        const double lat = latitudeOf(key.y * side + row + 0.5);
        for (int column = 0; column < side; ++column) {
            const double lon = (key.x * side + column + 0.5) / worldPixels * 360 - 180;
            paint(&pixels[static_cast<std::size_t>(4 * (row * side + column))], ground(lat, lon));
        }
    }
    return pixels;
}

TerrainSampling survey(double lat, double lon, const Ground& ground) {
    TerrainSampling sampling(lat, lon);
    for (std::size_t i = 0; i < sampling.tiles().size(); ++i)
        sampling.take(i, tileOf(sampling.tiles()[i], ground), HeightEncoding::terrainRgb);
    return sampling;
}

double peak(const std::vector<double>& samples) {
    return *std::ranges::max_element(samples);
}

} // namespace

TEST(TerrainHorizonTest, aRidgeStandsWhereItIsAndAsHighAsTheCurvatureLeavesIt) {
    const double lat = 42.2, lon = -1.3;
    // 1000 m above the eye, from 10 km on, to the east.
    const auto sampling = survey(lat, lon, [&](double pointLat, double pointLon) {
        const zenka::geo::GeoPoint eye{.lat = lat, .lon = lon};
        const zenka::geo::GeoPoint point{.lat = pointLat, .lon = pointLon};
        const double away = zenka::geo::distanceKm(eye, point) * 1000;
        const double bearing = zenka::geo::bearingDeg(eye, point);
        return away > 10000 && away < 12500 && std::abs(bearing - 90) < 20 ? 1240.0 : 240.0;
    });
    EXPECT_NEAR(sampling.observerHeight().value_or(0), 240, 0.06);
    const auto samples = sampling.profile();
    double largestError = 0;
    for (int az = 0; az < 360; ++az) {
        const double sample = samples[static_cast<std::size_t>(az)];
        if (std::abs(az - 90) <= 18)
            largestError =
                std::max(largestError, std::abs(sample - std::atan2(1000 - 6.9, 10000) / perDegree));
        else if (std::abs(az - 90) >= 22)
            largestError = std::max(largestError, sample);
    }
    // The points of a ray stand 5 % of the distance apart.
    EXPECT_LT(largestError, 0.35) << "largest error in degrees";
}

TEST(TerrainHorizonTest, seaLowlandAndMissingTilesLeaveTheHorizonFlat) {
    EXPECT_EQ(peak(survey(36, -10, [](double, double) { return 0.0; }).profile()), 0);
    EXPECT_EQ(peak(survey(36, -5, [](double, double lon) { return lon < -4.99 ? 800.0 : 100.0; }).profile()),
              0)
        << "all lies below the eye";
    const TerrainSampling nothing(36, -10);
    EXPECT_EQ(nothing.observerHeight(), std::nullopt);
    EXPECT_EQ(peak(nothing.profile()), 0);

    TerrainSampling junk(36, -10);
    junk.take(0, std::vector<std::uint8_t>(100), HeightEncoding::terrainRgb);
    junk.take(9999, tileOf({11, 0, 0}, [](double, double) { return 5.0; }), HeightEncoding::terrainRgb);
    junk.take(0, tileOf({11, 0, 0}, [](double, double) { return -10000.0; }), HeightEncoding::terrainRgb);
    EXPECT_EQ(junk.observerHeight(), std::nullopt) << "black pixels are no ground 10 km down";
}

TEST(TerrainHorizonTest, tilesWrapAtTheDateLineAndEndAtThePoles) {
    const TerrainSampling line(-17, 179.99);
    std::set<int> columns;
    for (const TileKey& tile : line.tiles())
        columns.insert(tile.x);
    EXPECT_TRUE(columns.contains(0));
    EXPECT_TRUE(columns.contains(2047));
    EXPECT_LT(columns.size(), 8U);
    EXPECT_EQ(TerrainSampling(-17, 180).tiles()[0].x, 0);
    // The same mountains stand on either side of it.
    const auto hills = [](double lat, double lon) {
        return 300 + 200 * std::sin(lat * 90) * std::cos(lon * 3600 * perDegree);
    };
    const auto here = survey(-17, 179.99, hills).profile();
    const auto there = survey(-17, -0.01, hills).profile();
    double largest = 0;
    for (std::size_t i = 0; i < here.size(); ++i)
        largest = std::max(largest, std::abs(here[i] - there[i]));
    EXPECT_LT(largest, 0.02) << "largest difference in degrees";

    for (const double lat : {90.0, -90.0, 89.95, 86.0}) {
        const TerrainSampling pole(lat, 10);
        EXPECT_TRUE(pole.tiles().empty()) << lat;
        EXPECT_EQ(peak(pole.profile()), 0) << lat;
    }
    EXPECT_LT(TerrainSampling(84.9, 10).tiles().size(), 2000U);
    EXPECT_TRUE(TerrainSampling(std::nan(""), 10).tiles().empty());
}

TEST(TerrainHorizonTest, heightsAreReadAsEachKindOfTileTellsThem) {
    EXPECT_NEAR(heightOf(HeightEncoding::terrainRgb, 1, 134, 160).value_or(-1), 0, 1e-9);
    EXPECT_NEAR(heightOf(HeightEncoding::terrainRgb, 2, 73, 160).value_or(-1), 4992, 0.05);
    EXPECT_EQ(heightOf(HeightEncoding::terrainRgb, 0, 0, 0), std::nullopt);
    EXPECT_NEAR(heightOf(HeightEncoding::terrarium, 132, 16, 128).value_or(-1), 1040.5, 1e-9);
    EXPECT_EQ(heightOf(HeightEncoding::terrarium, 120, 0, 0), 0.0) << "above the sea bed stands the sea";
    EXPECT_NEAR(heightOf(HeightEncoding::terrariumBelowSea, 126, 100, 0).value_or(-1), -412, 1e-9);
    EXPECT_EQ(heightOf(HeightEncoding::terrariumBelowSea, 120, 0, 0), std::nullopt);
    EXPECT_EQ(heightOf(HeightEncoding::terrarium, 0, 0, 0), std::nullopt);
}

TEST(TerrainHorizonTest, buildingsRaiseTheProfileAsWideAsTheyLook) {
    std::vector<double> samples(360, 1.0);
    // One at 10 m counts as at 15 m, at most 22° to each side, and stands across north.
    raiseByBuildings(samples,
                     std::vector<TerrainHorizon::Building>{{10, 355, 10}, {7.9, 180, 300}, {100, 90, 0}});
    const double expected = std::atan2(10.0, 15.0) / perDegree;
    EXPECT_NEAR(samples[355], expected, 0.01);
    EXPECT_NEAR(samples[334], expected, 0.01);
    EXPECT_NEAR(samples[17], expected, 0.01);
    EXPECT_EQ(samples[332], 1.0);
    EXPECT_EQ(samples[18], 1.0);
    EXPECT_EQ(samples[180], 1.0) << "the observer stands at it";
    EXPECT_EQ(samples[90], 1.0) << "lower than the terrain";

    raiseByBuildings(samples, std::vector<TerrainHorizon::Building>{{20, 270, 800}});
    EXPECT_EQ(samples[270], 80.0);
    EXPECT_NEAR(TerrainHorizon::elevationAt(samples, -90.5), 80, 1e-9);
    EXPECT_NEAR(TerrainHorizon::elevationAt(samples, 355.5), (samples[355] + samples[356]) / 2, 1e-9);
    EXPECT_EQ(TerrainHorizon::elevationAt({}, 10), 0);
}
