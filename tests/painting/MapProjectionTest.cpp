#include "painting/MapProjection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zenka::painting {
namespace {

MapProjection mapAt(double lat, double lon, double height) {
    MapProjection map;
    map.resize({1300, 600});
    map.showHeight(height);
    map.centreOn({.lat = lat, .lon = lon});
    return map;
}

TEST(MapProjection, aPixelAndItsPlaceBelongTogetherAtEveryScaleAndOverTheDateLine) {
    double worst = 0;
    for (const double height : {180.0, 16.0, 0.5, 0.03}) {
        for (const geo::GeoPoint centre :
             {geo::GeoPoint{41.65, -0.88}, {-17, 179.9}, {80, -179.99}, {0, 0}}) {
            const MapProjection map = mapAt(centre.lat, centre.lon, height);
            for (const QPointF pixel : {QPointF(0, 300), QPointF(650, 300), QPointF(1299, 12)}) {
                const geo::GeoPoint place = map.place(pixel);
                ASSERT_LE(std::abs(place.lon), 180);
                const double turn = 360 * std::round((map.centre().lon - place.lon) / 360);
                double error = 1e9;
                for (const double other : {-360.0, 0.0, 360.0}) {
                    const QPointF back = map.pixel(place.lat, place.lon + turn + other);
                    error = std::min(error, std::hypot(back.x() - pixel.x(), back.y() - pixel.y()));
                }
                worst = std::max(worst, error);
            }
        }
    }
    std::printf("worst %.2g pixels, ceiling 1e-6\n", worst);
    EXPECT_LT(worst, 1e-6);
}

TEST(MapProjection, zoomingKeepsThePlaceUnderThePointer) {
    MapProjection map = mapAt(41.65, 179.5, 16);
    const QPointF pointer(1200, 80); // beyond the date line
    const geo::GeoPoint before = map.place(pointer);
    EXPECT_LT(before.lon, 0);
    for (int step = 0; step < 40; ++step)
        map.zoom(1 / 1.25, pointer);
    EXPECT_LT(map.degreesPerPixel() * map.size().height() * 111, 10) << "a few kilometres";
    const geo::GeoPoint after = map.place(pointer);
    std::printf("moved %.2g degrees, ceiling 1e-9\n",
                std::max(std::abs(after.lat - before.lat), std::abs(after.lon - before.lon)));
    EXPECT_NEAR(after.lat, before.lat, 1e-9);
    EXPECT_NEAR(after.lon, before.lon, 1e-9);
}

TEST(MapProjection, zoomingOutEndsWithTheWorldAndShowsNothingBeyondThePoles) {
    MapProjection map = mapAt(70, 20, 3);
    map.drag({0, 0}, {0, 1e6});
    EXPECT_LE(map.north(), 90 + 1e-9);
    for (int step = 0; step < 60; ++step)
        map.zoom(1.25, {10, 590});
    EXPECT_NEAR(map.north(), 90, 1e-9);
    EXPECT_NEAR(map.south(), -90, 1e-9);

    map.resize({600, 600}); // all round rather than from pole to pole
    map.showHeight(1e3);
    EXPECT_NEAR(map.east() - map.west(), 360, 1e-9);
}

TEST(MapProjection, draggingRoundTheWorldComesBack) {
    MapProjection map = mapAt(0, 100, 30);
    for (int step = 0; step < 100; ++step) {
        const geo::GeoPoint held = map.place({900, 100});
        map.drag({900, 100}, {400, 180});
        const geo::GeoPoint there = map.place({400, 180});
        ASSERT_NEAR(std::remainder(there.lon - held.lon, 360), 0, 1e-9);
        ASSERT_LE(std::abs(map.centre().lon), 180);
        map.drag({0, 180}, {0, 100});
    }
}

TEST(MapProjection, theMiddleOfTheMapIsTrueToShape) {
    const MapProjection map = mapAt(60, 10, 1);
    const QPointF middle = map.pixel(60, 10);
    const double eastKm = geo::distanceKm({60, 10}, {60, 10.2});
    const double northKm = geo::distanceKm({60, 10}, {60.2, 10});
    const double across = (map.pixel(60, 10.2).x() - middle.x()) * map.kilometresPerPixel() / eastKm;
    const double up = (middle.y() - map.pixel(60.2, 10).y()) * map.kilometresPerPixel() / northKm;
    std::printf("off by %.2g and %.2g, ceiling 0.001\n", across - 1, up - 1);
    EXPECT_NEAR(across, 1, 0.001);
    EXPECT_NEAR(up, 1, 0.001);
}

} // namespace
} // namespace zenka::painting
