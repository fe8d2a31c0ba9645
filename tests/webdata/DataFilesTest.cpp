#include "webdata/DataFiles.h"

#include "base/CivilTime.h"
#include "eclipse/Catalog.h"
#include "geo/Bundled.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace zenka::webdata {
namespace {

using Json = nlohmann::json;

const BigPlaces& places() {
    static const BigPlaces all(geo::bundledPlaces());
    return all;
}

Json dataOf(const char* id) {
    return Json::parse(eclipseFiles(eclipse::Catalog::eclipse(id), places()).at(0).text);
}

Json placeOf(const Json& data, const std::string& name) {
    for (const Json& place : data["places"]) {
        if (place["name"] == name)
            return place;
    }
    return {};
}

double secondsOf(const std::string& iso) {
    absl::Time time;
    std::string fault;
    EXPECT_TRUE(absl::ParseTime("%Y-%m-%dT%H:%M:%E*SZ", iso, &time, &fault)) << iso << fault;
    return base::fromAbsl(time).epochSec;
}

TEST(DataFiles, theContactsOfAPlaceAreThoseOfTheReferences) {
    const struct {
        const char* eclipse;
        const char* place;
        const char* key;
        const char* utc;
        double within; ///< seconds: the places are the gazetteer's, at height 0
    } references[] = {{"2024-04-08", "Dallas", "C2", "2024-04-08T18:40:43Z", 2},
                      {"2024-04-08", "Dallas", "C3", "2024-04-08T18:44:33Z", 2},
                      {"2026-08-12", "Zaragoza", "C2", "2026-08-12T18:29:03Z", 2}};
    double worst = 0;
    for (const auto& reference : references) {
        const Json place = placeOf(dataOf(reference.eclipse), reference.place);
        ASSERT_TRUE(place.is_object()) << reference.place;
        const double error =
            secondsOf(place["contacts"][reference.key]["timeUTC"]) - secondsOf(reference.utc);
        worst = std::max(worst, std::abs(error));
        EXPECT_LE(std::abs(error), reference.within) << reference.place << " " << reference.key;
    }
    std::printf("worst %.1f s, ceiling 2 s\n", worst);
}

TEST(DataFiles, greatestEclipseFallsWhereTheCataloguesNotesSay) {
    const Json catalogue = Json::parse(catalogueFiles().at(0).text);
    ASSERT_EQ(catalogue["eclipses"].size(), eclipse::Catalog::all().size());
    std::string before;
    double worst = 0;
    int compared = 0;
    for (const Json& entry : catalogue["eclipses"]) {
        const std::string id = entry["id"];
        EXPECT_LT(before, id) << "in the order of time";
        before = id;
        const std::string notes = eclipse::Catalog::eclipse(id).rec.notes;
        double lat = 0;
        double lon = 0;
        char south = 0;
        char west = 0;
        if (std::sscanf(notes.c_str(), "Greatest eclipse falls at %lf° %c, %lf° %c", &lat, &south, &lon,
                        &west) != 4)
            continue;
        ++compared;
        worst = std::max(
            {worst, std::abs(entry["greatestEclipse"]["latDeg"].get<double>() - (south == 'S' ? -lat : lat)),
             std::abs(entry["greatestEclipse"]["lonDeg"].get<double>() - (west == 'W' ? -lon : lon))});
    }
    std::printf("worst %.3f degrees in %d notes of one decimal, ceiling 0.06\n", worst, compared);
    EXPECT_LT(worst, 0.06);
    EXPECT_GT(compared, 95);
    const Json greatest = catalogue["eclipses"][0]["greatestEclipse"];
    EXPECT_EQ(catalogue["eclipses"][0]["id"], "2024-04-08");
    EXPECT_NEAR(secondsOf(greatest["timeUTC"]), secondsOf("2024-04-08T18:17:18Z"), 5);
    EXPECT_NEAR(greatest["magnitude"].get<double>(), 1.0566, 0.001);
}

TEST(DataFiles, everyPlaceSeesTheEclipseByDaylight) {
    for (const char* id : {"2026-08-12", "2028-01-26", "2033-03-30"}) {
        const Json data = dataOf(id);
        ASSERT_FALSE(data["places"].empty()) << id;
        double before = 1e9;
        for (const Json& place : data["places"]) {
            const std::string name = place["name"];
            const Json& contacts = place["contacts"];
            const bool isCentral = place["durationS"] > 0;
            EXPECT_LE(place["durationS"].get<double>(), before) << name << ": the longest first";
            before = place["durationS"];
            EXPECT_EQ(isCentral, contacts.contains("C2") && contacts.contains("C3")) << name;
            EXPECT_LT(contacts["C1"]["timeUTC"], contacts["MAX"]["timeUTC"]) << name;
            EXPECT_LT(contacts["MAX"]["timeUTC"], contacts["C4"]["timeUTC"]) << name;
            EXPECT_GT(place["magnitude"].get<double>(), 0) << name;
            EXPECT_TRUE(base::findTimeZone(place["timeZone"].get<std::string>())) << name;
            if (isCentral && data["type"] == "Annular") {
                EXPECT_LT(place["obscuration"].get<double>(), 0.99) << name << ": a ring is left";
            }
        }
    }
    EXPECT_TRUE(placeOf(dataOf("2026-08-12"), "Sydney").is_null()) << "where it is night";
    EXPECT_TRUE(placeOf(dataOf("2026-08-12"), "São Paulo").is_null()) << "where the shadow does not come";
}

TEST(DataFiles, aPlaceWithTheSunDownFromFirstToLastContactIsLeftOut) {
    const eclipse::Eclipse ecl = eclipse::Catalog::eclipse("2026-08-12");
    const auto seenAt = [&](double lat, double lon) {
        const eclipse::Observer observer{.lat = lat, .lon = lon};
        return isSeen(ecl, observer, ecl.localCircumstances(observer));
    };
    EXPECT_TRUE(seenAt(41.65, -0.88)) << "the Sun sets before the last contact";
    EXPECT_TRUE(seenAt(41.9, 12.5)) << "it sets before the maximum";
    EXPECT_FALSE(seenAt(30.0, 31.2)) << "it has set";
    EXPECT_FALSE(seenAt(-33.9, 151.2)) << "there is none";
}

TEST(BigPlaces, theGridHasOnePlaceForEachCellAndThePathAddsToIt) {
    const auto grid = places().grid();
    std::printf("%d places\n", static_cast<int>(grid.size()));
    EXPECT_GT(grid.size(), 100U);
    EXPECT_LT(grid.size(), 250U);
    std::map<std::pair<int, int>, int> cells;
    for (const geo::Place& place : grid) {
        EXPECT_GE(place.population, 100000U);
        ++cells[{static_cast<int>(std::floor(place.at.lat / 10)),
                 static_cast<int>(std::floor(place.at.lon / 10))}];
    }
    EXPECT_TRUE(std::ranges::all_of(cells, [](const auto& cell) { return cell.second == 1; }));
    const auto names = [](const std::vector<geo::Place>& some) {
        std::vector<std::string> found;
        for (const geo::Place& place : some)
            found.push_back(place.name);
        return found;
    };
    EXPECT_THAT(names(grid), testing::IsSupersetOf({"Madrid", "Shanghai", "Auckland"}));
    EXPECT_THAT(names(grid), testing::Not(testing::Contains("Zaragoza")));
    const eclipse::Eclipse ecl = eclipse::Catalog::eclipse("2026-08-12");
    const auto onPath = names(places().onPath(ecl, centralLine(ecl)));
    EXPECT_THAT(onPath, testing::IsSupersetOf({"Zaragoza", "Valencia", "Bilbao", "Palma"}));
    EXPECT_THAT(onPath, testing::Not(testing::Contains("Barcelona"))) << "just beside it";
}

TEST(DataFiles, anExportIsTheSameBytesEachTimeAndKnowsNoMinusZero) {
    const eclipse::Eclipse ecl = eclipse::Catalog::eclipse("2034-03-20");
    const auto once = eclipseFiles(ecl, places());
    const auto again = eclipseFiles(ecl, places());
    ASSERT_EQ(once.size(), again.size());
    for (std::size_t i = 0; i < once.size(); ++i)
        EXPECT_EQ(once[i].text, again[i].text);
    EXPECT_THAT(once.at(0).text, testing::Not(testing::ContainsRegex("-0\\.0[^0-9]")));
    EXPECT_EQ("zenkaEclipse(" + once.at(0).text.substr(0, once.at(0).text.size() - 1) + ");\n",
              once.at(1).text);
}

} // namespace
} // namespace zenka::webdata
