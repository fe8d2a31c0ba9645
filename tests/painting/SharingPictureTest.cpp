#include "painting/SharingPicture.h"

#include "eclipse/Catalog.h"
#include "webdata/CentralLine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace zenka::painting {
namespace {

constexpr QSizeF size{600, 210};

std::vector<EclipseTrack> pathOf(const char* id) {
    return piecesOf(webdata::centralLine(eclipse::Catalog::eclipse(id)));
}

QPointF pixelOf(const MapProjection& map, double lat, double lon) {
    return map.pixel(lat, lon + 360 * std::round((map.centre().lon - lon) / 360));
}

bool isIn(const MapProjection& map, double lat, double lon) {
    return QRectF(QPointF(0, 0), size).contains(pixelOf(map, lat, lon));
}

TEST(SharingPicture, aPathIsShownWholeAndLarge) {
    double smallest = 1;
    // the last one runs over the date line
    for (const char* id : {"2027-08-02", "2028-01-26", "2034-03-20", "2028-07-22", "2045-08-12"}) {
        const auto pieces = pathOf(id);
        ASSERT_EQ(pieces.size(), 1U) << id;
        const EclipseTrack& track = pieces.front();
        const MapProjection map = frameOf(pieces, size);
        QRectF extent(pixelOf(map, track.central.front().lat, track.central.front().lon), QSizeF(1, 1));
        for (const geo::GeoPoint& point : track.central) {
            EXPECT_TRUE(isIn(map, point.lat, point.lon)) << id << " " << point.lat << " " << point.lon;
            extent |= QRectF(pixelOf(map, point.lat, point.lon), QSizeF(1, 1));
        }
        smallest =
            std::min(smallest, std::max(extent.width() / size.width(), extent.height() / size.height()));
    }
    std::printf("the smallest fills %.2f of the window, floor 0.6\n", smallest);
    EXPECT_GT(smallest, 0.6);
}

TEST(SharingPicture, ofAPathNearAPoleThePartWithPeopleIsShown) {
    const MapProjection map = frameOf(pathOf("2026-08-12"), size);
    EXPECT_TRUE(isIn(map, 41.65, -0.88)) << "Zaragoza";
    EXPECT_TRUE(isIn(map, 64.1, -21.9)) << "Reykjavík";
    EXPECT_LT(map.north() - map.south(), 60);
    // this one comes nowhere near people
    const auto polar = pathOf("2026-02-17");
    ASSERT_TRUE(!polar.empty() && polar.front().greatest);
    EXPECT_TRUE(isIn(frameOf(polar, size), polar.front().greatest->lat, polar.front().greatest->lon));
    EXPECT_EQ(frameOf({}, size).size(), size) << "no path at all";
}

TEST(SharingPicture, theLimitsRunBesideTheLineAndAPathAroundAPoleIsCutThere) {
    double widest = 0;
    for (const char* id : {"2024-04-08", "2028-07-22", "2045-08-12", "2094-01-16"}) {
        const auto pieces = pathOf(id);
        EXPECT_EQ(pieces.size() > 1, std::string_view(id) == "2094-01-16") << id;
        for (const EclipseTrack& piece : pieces) {
            for (const auto* line : {&piece.central, &piece.left, &piece.right}) {
                ASSERT_EQ(line->size(), piece.central.size());
                for (std::size_t i = 1; i < line->size(); ++i)
                    widest = std::max(widest, std::abs((*line)[i].lon - (*line)[i - 1].lon));
            }
        }
    }
    std::printf("the widest step is %.0f degrees, ceiling 100\n", widest);
    EXPECT_LT(widest, 100);
}

} // namespace
} // namespace zenka::painting
