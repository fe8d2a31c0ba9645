#include "eclipse/EclipsePath.h"

#include "NaivePath.h"
#include "Records.h"
#include "eclipse/Catalog.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace zenka::eclipse {
namespace {

class EveryPath : public ::testing::TestWithParam<std::size_t> {};

TEST_P(EveryPath, isToTheLastBitWhatTheUnhurriedSearchGives) {
    for (std::size_t row = GetParam(); row < Catalog::all().size(); row += 8) {
        const Eclipse eclipse(Catalog::all()[row]);
        SCOPED_TRACE(eclipse.rec.id);
        const CentralPath path = tracePath(eclipse, 600);
        const CentralPath reference = testing::NaivePath(eclipse, 600).cleaned();
        ASSERT_GE(path.central.size(), 3u);
        EXPECT_EQ(path.central, reference.central);
        EXPECT_EQ(path.halfWidthKm, reference.halfWidthKm);

        const auto longest = greatestDurationPoint(eclipse);
        const auto expected = testing::naiveGreatestDuration(eclipse, path.central);
        ASSERT_TRUE(longest && expected);
        EXPECT_EQ(longest->lat, expected->lat);
        EXPECT_EQ(longest->lon, expected->lon);
        EXPECT_EQ(longest->seconds, expected->seconds);
    }
}

INSTANTIATE_TEST_SUITE_P(Catalog, EveryPath, ::testing::Range<std::size_t>(0, 8));

TEST(EclipsePath, theLineOf2024LiesInTheMiddleOfThePath) {
    const Eclipse eclipse = Catalog::eclipse("2024-04-08");
    const CentralPath path = tracePath(eclipse, 600);
    ASSERT_EQ(path.central.size(), path.halfWidthKm.size());
    for (std::size_t i = 1; i + 1 < path.central.size(); ++i) {
        const PathPoint& p = path.central[i - 1];
        const PathPoint& n = path.central[i + 1];
        const double c = std::cos(path.central[i].lat * std::numbers::pi / 180);
        const double length = std::hypot(c * (n.lon - p.lon), n.lat - p.lat);
        const auto secondsAside = [&](double km) {
            const double lat = path.central[i].lat - c * (n.lon - p.lon) / length * km / 111;
            const double lon = path.central[i].lon + (n.lat - p.lat) / length * km / 111 / c;
            return eclipse.localCircumstances({.lat = lat, .lon = lon}).totalitySeconds;
        };
        const double width = path.halfWidthKm[i];
        SCOPED_TRACE(width);
        EXPECT_GT(secondsAside(0), secondsAside(0.5 * width));
        EXPECT_GT(secondsAside(0), secondsAside(-0.5 * width));
        for (double side : {-1.0, 1.0}) {
            EXPECT_GT(secondsAside(side * 0.93 * width), 0);
            EXPECT_EQ(secondsAside(side * 1.07 * width), 0);
        }
    }
}

TEST(EclipsePath, longitudesStayWithinTheCircleAcrossTheDateLine) {
    const CentralPath path = tracePath(Catalog::eclipse("2035-09-02"), 600);
    bool east = false;
    bool west = false;
    for (const PathPoint& point : path.central) {
        EXPECT_LE(std::abs(point.lon), 180);
        east |= point.lon > 170;
        west |= point.lon < -170;
    }
    EXPECT_TRUE(east && west);
}

TEST(EclipsePath, grazingEndsGoAsLongAsThreePointsRemainAndNoWidthIsBeyond250Km) {
    // wider than 250 km on either side all along
    const Eclipse broad = Catalog::eclipse("2026-02-17");
    EXPECT_EQ(tracePath(broad, 600).halfWidthKm, std::vector(3, 250.0));
    const CentralPath few = tracePath(broad, 2400);
    EXPECT_TRUE(!few.central.empty() && few.central.size() <= 3);
    for (double width : few.halfWidthKm) {
        EXPECT_LE(width, 250);
    }
    // the ends of an ordinary line are left out only where they graze
    const CentralPath ordinary = tracePath(Catalog::eclipse("2099-03-21"), 600);
    EXPECT_LT(ordinary.halfWidthKm.front(), 250);
    EXPECT_LT(ordinary.halfWidthKm.back(), 250);
}

TEST(EclipsePath, anAxisThatMissesTheEarthHasNoPath) {
    EclipseRecord rec = testing::standingStill();
    rec.y[0] = 1.2;
    const Eclipse eclipse(rec);
    EXPECT_TRUE(tracePath(eclipse, 600).central.empty());
    EXPECT_FALSE(greatestDurationPoint(eclipse));
}

TEST(EclipsePath, aStepThatLeadsNowhereGivesNoPath) {
    const Eclipse eclipse = Catalog::eclipse("2024-04-08");
    for (double step : {0.0, -60.0, 1e-15, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_TRUE(tracePath(eclipse, step).central.empty()) << step;
    }
    EXPECT_TRUE(tracePath(eclipse, std::numeric_limits<double>::infinity()).central.empty());
}

TEST(GreatestDuration, isNowhereLongerOnAFinerLine) {
    double worst = 0;
    for (const char* id :
         {"2024-04-08", "2027-08-02", "2028-07-22", "2030-06-01", "2045-08-12", "2096-05-22"}) {
        const Eclipse eclipse = Catalog::eclipse(id);
        const auto longest = greatestDurationPoint(eclipse);
        ASSERT_TRUE(longest);
        for (const PathPoint& point : tracePath(eclipse, 120).central) {
            const double seconds =
                eclipse.localCircumstances({.lat = point.lat, .lon = point.lon}).totalitySeconds;
            worst = std::max(worst, seconds - longest->seconds);
        }
    }
    std::printf("longest phase passed over by the search: %.3f s (ceiling 0.3 s)\n", worst);
    EXPECT_LE(worst, 0.3);
}

} // namespace
} // namespace zenka::eclipse
