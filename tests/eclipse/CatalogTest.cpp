#include "eclipse/Catalog.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/CatalogTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <string>

namespace zenka::eclipse {
namespace {

using ::testing::ElementsAre;
using ::testing::MatchesRegex;

/// The published table: a heading, then the rows in the catalogue's order.
std::vector<std::vector<std::string>> elementsTable() {
    std::ifstream file(ZENKA_SOURCE_DIR "/scripts/data/eclipse_elements.csv");
    std::vector<std::vector<std::string>> rows;
    for (std::string line; std::getline(file, line);) {
        std::vector<std::string>& row = rows.emplace_back();
        for (std::string_view field : base::split(line, ',')) {
            row.emplace_back(field);
        }
    }
    return rows;
}

TEST(Catalog, holdsThePublishedNumbersToTheLastBitInThePublishedOrder) {
    const auto table = elementsTable();
    ASSERT_EQ(table.size(), 102u);
    ASSERT_EQ(Catalog::all().size(), 101u);
    for (std::size_t i = 0; i < Catalog::all().size(); ++i) {
        const EclipseRecord& rec = Catalog::all()[i];
        const auto& row = table[i + 1];
        SCOPED_TRACE(rec.id);
        EXPECT_EQ(rec.id, row[0]);
        EXPECT_EQ(rec.type, row[1]);
        EXPECT_TRUE(rec.shortName.ends_with(" · " + row[2]));
        std::vector<double> numbers{rec.t0Hour, rec.deltaT, rec.tanF1, rec.tanF2};
        for (const auto& series : {rec.x, rec.y, rec.d, rec.l1, rec.l2, rec.mu}) {
            numbers.insert(numbers.end(), series.begin(), series.end());
        }
        ASSERT_EQ(numbers.size() + 3, row.size());
        for (std::size_t k = 0; k < numbers.size(); ++k) {
            EXPECT_EQ(numbers[k], base::readNumber(row[k + 3])) << table[0][k + 3];
        }
    }
}

TEST(Catalog, everyRowObeysTheRulesOfTheTable) {
    std::set<std::string> ids;
    std::map<std::string, int> types;
    for (const EclipseRecord& rec : Catalog::all()) {
        SCOPED_TRACE(rec.id);
        EXPECT_TRUE(ids.insert(rec.id).second);
        ++types[rec.type];
        EXPECT_EQ(rec.dateUTC, rec.id);
        EXPECT_THAT(rec.id, MatchesRegex("20[2-9][0-9]-[01][0-9]-[0-3][0-9]|2100-[01][0-9]-[0-3][0-9]"));
        EXPECT_EQ(rec.t0Hour, static_cast<int>(rec.t0Hour));
        EXPECT_TRUE(rec.t0Hour >= 0 && rec.t0Hour <= 23);
        EXPECT_TRUE(rec.deltaT >= 69.0 && rec.deltaT <= 204.1);
        EXPECT_TRUE(rec.tanF1 > rec.tanF2 && rec.tanF2 > 0.0045 && rec.tanF1 < 0.0048);
        for (const auto& series : {rec.x, rec.y, rec.d, rec.l1, rec.l2, rec.mu}) {
            EXPECT_EQ(series.size(), 4u);
        }
        EXPECT_EQ(rec.d[3], 0);
        EXPECT_EQ(rec.l1[3], 0);
        EXPECT_EQ(rec.l2[3], 0);
        EXPECT_EQ(rec.mu[2], 0);
        EXPECT_EQ(rec.mu[3], 0);
        EXPECT_TRUE(rec.l1[0] >= 0.530596 && rec.l1[0] <= 0.574116);
        EXPECT_EQ(rec.l2[0] < 0, rec.type == "Total");
        EXPECT_TRUE(rec.notes.ends_with('.') && rec.notes.size() > 20);
    }
    EXPECT_EQ(types, (std::map<std::string, int>{{"Annular", 49}, {"Hybrid", 2}, {"Total", 50}}));
    EXPECT_EQ(Catalog::eclipse("2049-11-25").rec.l2[0], 0.002905);
    EXPECT_EQ(Catalog::eclipse("2050-05-20").rec.l2[0], 0.001265);
}

TEST(Catalog, namesAreMadeFromTypeDateAndRegion) {
    const EclipseRecord great = Catalog::eclipse("2024-04-08").rec;
    EXPECT_EQ(great.name, "Total Solar Eclipse of 2024 April 08");
    EXPECT_EQ(great.shortName, "2024 Apr 08 · Mexico / US / Canada");
    EXPECT_EQ(great.notes, "Validation eclipse (the Canada trip). Carbondale IL ~4m08s.");
    EXPECT_EQ(Catalog::eclipse("2026-08-12").rec.name, "Total Solar Eclipse of 2026 August 12");
    EXPECT_EQ(Catalog::eclipse("2050-05-20").rec.name, "Hybrid Solar Eclipse of 2050 May 20");
    EXPECT_EQ(Catalog::eclipse("2044-02-28").rec.name, "Annular Solar Eclipse of 2044 Feb 28");
    EXPECT_EQ(Catalog::eclipse("2044-02-28").rec.shortName, "2044 Feb 28 · South Atlantic / South Georgia");
}

TEST(Catalog, thePopularEclipsesStandAtTheEndAndSortToTheirPlaceInMenus) {
    std::vector<std::string> ids;
    for (const EclipseRecord& rec : Catalog::all()) {
        ids.push_back(rec.id);
    }
    EXPECT_TRUE(std::is_sorted(ids.begin(), ids.end() - 4));
    EXPECT_THAT(std::vector(ids.end() - 5, ids.end()),
                ElementsAre("2100-09-04", "2026-08-12", "2027-08-02", "2028-07-22", "2024-04-08"));
    std::ranges::sort(ids);
    EXPECT_EQ(ids.front(), "2024-04-08");
}

TEST(Catalog, anUnknownIdGivesTheFirstRow) {
    EXPECT_EQ(Catalog::eclipse("1999-08-11").rec.id, "2026-02-17");
    EXPECT_EQ(Catalog::eclipse("").rec.id, "2026-02-17");
}

TEST(CatalogTable, aQuotedFieldMayHoldCommasAndQuotes) {
    const auto table = elementsTable();
    std::string line;
    for (const std::string& field : table[1]) {
        line += field + ",";
    }
    const auto rows = detail::readTable("heading\n" + line + "\"One, \"\"two\"\", three.\"\n");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].notes, "One, \"two\", three.");
}

TEST(CatalogTableDeathTest, aMalformedTableEndsTheProgramWithASentence) {
    EXPECT_DEATH(detail::readTable("heading\n"), "there is no row");
    EXPECT_DEATH(detail::readTable("heading\n2030-01-01,Total\n"), "another number of columns");
    const std::string numbers = ",1,2,3,4,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,";
    EXPECT_DEATH(detail::readTable("heading\n2030-01-01,Total,Sea" + numbers + "x,Notes.\n"),
                 "a number cannot");
    EXPECT_DEATH(detail::readTable("heading\n2030-Jan-01,Total,Sea" + numbers + "0,Notes.\n"),
                 "a date is not");
}

TEST(Catalog, theNextOneIsTheFirstWhoseGreatestEclipseIsToCome) {
    const auto nextAfter = [](const char* utc) {
        absl::Time time;
        std::string fault;
        EXPECT_TRUE(absl::ParseTime(absl::RFC3339_full, utc, &time, &fault)) << fault;
        return Catalog::nextAfter(base::fromAbsl(time)).rec.id;
    };
    EXPECT_EQ(nextAfter("1999-08-11T11:00:00Z"), "2024-04-08");
    EXPECT_EQ(nextAfter("2026-08-12T17:45:00Z"), "2026-08-12") << "a minute before";
    EXPECT_EQ(nextAfter("2026-08-12T17:47:00Z"), "2027-02-06") << "a minute after";
    EXPECT_EQ(nextAfter("2100-12-01T00:00:00Z"), "2100-09-04") << "the last there is";
}

} // namespace
} // namespace zenka::eclipse
