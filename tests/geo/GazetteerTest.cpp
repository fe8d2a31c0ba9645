#include "geo/Gazetteer.h"

#include "base/Text.h"
#include "geo/Bundled.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace zenka::geo {
namespace {

using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::string> labels(std::string_view text, std::size_t limit = 8) {
    std::vector<std::string> found;
    for (const Place& place : bundledPlaces().search(text, limit)) {
        found.push_back(place.label());
    }
    return found;
}

std::string first(std::string_view text) {
    const std::vector<std::string> found = labels(text, 1);
    return found.empty() ? "nothing" : found.front();
}

std::string nearest(double lat, double lon, double maxKm) {
    const auto place = bundledPlaces().nearest(lat, lon, maxKm);
    return place ? place->label() : "nothing";
}

TEST(Gazetteer, findsAPlaceWhileItsNameIsTyped) {
    for (const char* text : {"zara", "ZARAG", "Zaragoza", "zaragoza ", "Zaragoza, ES", "zaragoza,e"}) {
        EXPECT_EQ(first(text), "Zaragoza, ES") << text;
    }
    const Place zaragoza = bundledPlaces().search("zaragoza", 1).at(0);
    EXPECT_NEAR(zaragoza.at.lat, 41.65, 0.02);
    EXPECT_NEAR(zaragoza.at.lon, -0.88, 0.02);
    EXPECT_GT(zaragoza.population, 500000U);
}

TEST(Gazetteer, searchesWithoutRegardToCaseAccentsAndMarks) {
    EXPECT_EQ(first("coruna"), "A Coruña, ES");
    EXPECT_EQ(first("CORUÑA"), "A Coruña, ES");
    EXPECT_EQ(first("corun\u0303a"), "A Coruña, ES") << "n with a combining tilde";
    EXPECT_EQ(first("sao paulo"), "São Paulo, BR");
    EXPECT_EQ(first("SÃO  PAULO"), "São Paulo, BR");
    EXPECT_EQ(first("reykjavik"), "Reykjavík, IS");
    EXPECT_EQ(first("malmo"), "Malmö, SE");
    EXPECT_EQ(first("lodz"), "Łódź, PL");
    EXPECT_EQ(first("st. louis"), first("st louis"));
    for (const char* text : {"laquila", "l'aquila", "L’Aquila"}) {
        EXPECT_EQ(first(text), "L'Aquila, IT") << text;
    }
}

TEST(Gazetteer, putsNamesThatBeginWithTheTextFirstAndBiggerPlacesBeforeSmaller) {
    const std::vector<Place> found = bundledPlaces().search("york", 50);
    std::size_t beginning = 0;
    while (beginning < found.size() && base::lowered(found[beginning].name).starts_with("york")) {
        ++beginning;
    }
    ASSERT_GT(beginning, 1U);
    ASSERT_LT(beginning, found.size());
    EXPECT_EQ(found[0].label(), "York, GB");
    EXPECT_EQ(found[beginning].label(), "New York City, US");
    for (std::size_t i = 1; i < found.size(); ++i) {
        if (i != beginning) {
            EXPECT_GE(found[i - 1].population, found[i].population) << found[i].label();
        }
        EXPECT_TRUE(base::containsIgnoringCase(found[i].name, "york")) << found[i].label();
        EXPECT_EQ(base::lowered(found[i].name).starts_with("york"), i < beginning) << found[i].label();
    }
}

TEST(Gazetteer, narrowsToTheCountryBehindAComma) {
    EXPECT_EQ(first("valencia"), "Valencia, VE");
    EXPECT_EQ(first("valencia, es"), "Valencia, ES");
    EXPECT_THAT(labels("san, mx", 20), Each(EndsWith(", MX")));
    EXPECT_THAT(labels("zaragoza, xx"), IsEmpty());
}

TEST(Gazetteer, givesNoMoreThanAskedForAndNothingForNothing) {
    EXPECT_THAT(labels("a", 5), SizeIs(5));
    EXPECT_THAT(labels("san", 1), SizeIs(1));
    EXPECT_THAT(labels("san", 0), IsEmpty());
    for (const char* text :
         {"", "  ", "'", ", es", "qqqqqq", "\n", "\xff\xc3", "zaragoza\nvalencia", "zaragozaa"}) {
        EXPECT_THAT(labels(text), IsEmpty()) << text;
    }
    EXPECT_THAT(labels(std::string(100000, 'a')), IsEmpty());
}

TEST(Gazetteer, holdsSmallCapitals) {
    EXPECT_THAT(labels("stanley", 50), Contains("Stanley, FK"));
    EXPECT_THAT(labels("longyear"), ElementsAre("Longyearbyen, SJ"));
}

TEST(Gazetteer, namesTheNearestPlaceWithinReach) {
    EXPECT_EQ(nearest(41.65, -0.88, 30), "Zaragoza, ES");
    EXPECT_EQ(nearest(64.146, -21.94, 30), "Reykjavík, IS");
    EXPECT_EQ(nearest(43.3713, -8.396, 30), "A Coruña, ES");
    EXPECT_EQ(nearest(37.73, -89.22, 30), "Carbondale, US");
    EXPECT_EQ(nearest(41.65, -0.88 + 720, 30), "Zaragoza, ES");
    EXPECT_EQ(nearest(41.65, -0.88, 0.1), "nothing") << "its centre is not that near";
    EXPECT_EQ(nearest(30, -45, 30), "nothing") << "at sea";
    EXPECT_EQ(nearest(23, 12, 30), "nothing") << "in the Sahara";
}

TEST(Gazetteer, aDistrictIsFoundByNameButDoesNotNameAPoint) {
    const auto ottakring = bundledPlaces().search("ottakring", 1);
    ASSERT_THAT(ottakring, SizeIs(1));
    EXPECT_EQ(nearest(ottakring[0].at.lat, ottakring[0].at.lon, 30), "Vienna, AT");
}

TEST(Gazetteer, looksAcrossTheDateLineAndAroundThePole) {
    EXPECT_EQ(nearest(-16.5, -179.9, 120), "Labasa, FJ");
    EXPECT_EQ(nearest(-16.5, 180.1, 120), "Labasa, FJ");
    EXPECT_EQ(nearest(90, 120, 1400), "Longyearbyen, SJ") << "1,310 km off";
    EXPECT_EQ(nearest(90, 120, 1250), "nothing");
    EXPECT_EQ(nearest(87, -164.4, 1700), "Longyearbyen, SJ") << "the way leads over the pole";
    EXPECT_NE(nearest(-90, 0, 1e9), "nothing");
}

TEST(Gazetteer, givesNothingForWhatIsNoPoint) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(nearest(91, 0, 30), "nothing");
    EXPECT_EQ(nearest(nan, 0, 30), "nothing");
    EXPECT_EQ(nearest(40, std::numeric_limits<double>::infinity(), 30), "nothing");
    EXPECT_EQ(nearest(41.65, -0.88, nan), "nothing");
    EXPECT_EQ(nearest(41.65, -0.88, -1), "nothing");
}

TEST(Gazetteer, tellsTheBiggestPlacesWithoutTheirParts) {
    const std::vector<Place> big = bundledPlaces().biggest(1000000);
    ASSERT_GT(big.size(), 300U);
    EXPECT_THAT(big, Each(testing::Field(&Place::population, testing::Ge(1000000U))));
    for (std::size_t i = 1; i < big.size(); ++i) {
        ASSERT_GE(big[i - 1].population, big[i].population);
    }
    std::vector<std::string> names;
    for (const Place& place : big) {
        names.push_back(place.label());
    }
    EXPECT_THAT(names, Contains("Madrid, ES"));
    EXPECT_THAT(names, testing::Not(Contains("Navi Mumbai, IN"))) << "marked as a part";
    EXPECT_THAT(bundledPlaces().biggest(1000000000), IsEmpty());
}

TEST(GeoPoint, aDestinationLiesAtItsDistanceAndBearing) {
    for (const GeoPoint from : {GeoPoint{41.65, -0.88}, {-17, 179.9}, {80, -179.99}, {0, 0}}) {
        for (const double bearing : {0.0, 37.0, 90.0, 215.0, 300.0}) {
            const GeoPoint to = destination(from, bearing, 400);
            EXPECT_NEAR(distanceKm(from, to), 400, 1e-6);
            EXPECT_NEAR(std::remainder(bearingDeg(from, to) - bearing, 360), 0, 1e-6);
        }
    }
    EXPECT_GT(destination({-17, 179.9}, 90, 400).lon, 180) << "it runs on";
    EXPECT_NEAR(destination({80, 10}, 0, 2000).lat, 180 - 80 - 2000 / 111.195, 0.01) << "over the pole";
}

} // namespace
} // namespace zenka::geo
