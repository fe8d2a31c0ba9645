#include "painting/EclipseTrack.h"

#include "eclipse/Catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zenka::painting {
namespace {

TEST(EclipseTrack, aPathOverTheDateLineRunsOnWithoutAJump) {
    const eclipse::CentralPath path{.central = {{.lon = 178, .lat = 10},
                                                {.lon = 179.5, .lat = 11},
                                                {.lon = -179, .lat = 12},
                                                {.lon = -177, .lat = 13}},
                                    .halfWidthKm = {80, 80, 80, 80}};
    const EclipseTrack track = trackOf(path, std::nullopt);
    EXPECT_EQ(track.central.back().lon, 183);
    for (const auto* line : {&track.central, &track.left, &track.right}) {
        ASSERT_EQ(line->size(), 4u);
        for (std::size_t i = 1; i < line->size(); ++i)
            EXPECT_LT(std::abs((*line)[i].lon - (*line)[i - 1].lon), 5);
    }
}

TEST(EclipseTrack, bothEdgesLieHalfAWidthFromTheLine) {
    const EclipseTrack track = computeTrack(eclipse::Eclipse(eclipse::Catalog::eclipse("2024-04-08")));
    ASSERT_TRUE(track.greatest);
    const eclipse::Eclipse eclipse(eclipse::Catalog::eclipse("2024-04-08"));
    const std::size_t middle = track.central.size() / 2;
    const auto seconds = [&](const geo::GeoPoint& at) {
        return eclipse.localCircumstances({.lat = at.lat, .lon = at.lon}).totalitySeconds;
    };
    const auto between = [](const geo::GeoPoint& a, const geo::GeoPoint& b, double part) {
        return geo::GeoPoint{.lat = a.lat + part * (b.lat - a.lat), .lon = a.lon + part * (b.lon - a.lon)};
    };
    for (const auto* edge : {&track.left, &track.right}) {
        EXPECT_GT(seconds(between(track.central[middle], (*edge)[middle], 0.9)), 0);
        EXPECT_EQ(seconds(between(track.central[middle], (*edge)[middle], 1.1)), 0);
    }
    EXPECT_GT(track.left[middle].lat, track.right[middle].lat) << "the shadow goes to the east";
}

TEST(EclipseTrack, aPathWithoutACentralLineIsEmpty) {
    const EclipseTrack track = trackOf({}, std::nullopt);
    EXPECT_TRUE(track.central.empty() && track.left.empty() && !track.greatest);
}

} // namespace
} // namespace zenka::painting
