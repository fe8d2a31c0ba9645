// A damaged file may cost answers; never the program. Run under asan it shows that no byte beyond is read:
// each case is a copy of just its size.
#include "geo/Gazetteer.h"
#include "geo/TimeZoneAreas.h"
#include "geo/WorldOutlines.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace zenka::geo {
namespace {

std::string dataFile(const std::string& name) {
    std::ifstream in(ZENKA_SOURCE_DIR "/data/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Asks what there is to ask of some data, and counts the answers.
using Ask = std::size_t (*)(std::string_view);

constexpr std::array<GeoPoint, 6> asked{
    {{41.65, -0.88}, {38.37, -86.34}, {35.87, -110.62}, {-16.8, 179.99}, {51.44, 4.93}, {30, -45}}};

std::size_t askZones(std::string_view bytes) {
    const TimeZoneAreas zones(bytes);
    std::size_t answers = 0;
    for (const GeoPoint& point : asked) {
        answers += zones.zoneAt(point.lat, point.lon) ? 1 : 0;
    }
    return answers;
}

std::size_t askPlaces(std::string_view bytes) {
    const Gazetteer places(bytes);
    std::size_t answers = 0;
    for (const GeoPoint& point : asked) {
        answers += places.nearest(point.lat, point.lon, 100) ? 1 : 0;
    }
    for (const char* text : {"zara", "coruña", "e", "saint, fr"}) {
        const std::vector<Place> found = places.search(text, 10);
        EXPECT_LE(found.size(), 10U);
        answers += found.size();
    }
    return answers;
}

std::size_t askOutlines(std::string_view bytes) {
    const WorldOutlines outlines(bytes);
    std::size_t answers = 0;
    const auto count = [&](const std::vector<Polyline>& lines) {
        answers += lines.size();
        for (const Polyline& line : lines) {
            for (const GeoPoint& point : line) {
                ASSERT_LE(std::abs(point.lat), 90);
                ASSERT_LE(std::abs(point.lon), 180);
            }
        }
    };
    for (const Detail detail : {Detail::coarse, Detail::medium, Detail::fine}) {
        const GeoBox box{36, -12, 66, 10};
        for (const LandArea& land : outlines.land(detail, box)) {
            count(land.rings);
        }
        count(outlines.coasts(detail, box));
        count(outlines.borders(detail, box));
    }
    return answers;
}

struct File {
    const char* name;
    Ask ask;
};

class Damaged : public ::testing::TestWithParam<File> {
protected:
    const std::string whole_ = dataFile(GetParam().name);
    std::mt19937 random_{20260812};

    std::size_t below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
    }
    std::size_t ask(const std::vector<char>& bytes) const {
        return GetParam().ask({bytes.data(), bytes.size()});
    }
    std::vector<char> copy() const { return {whole_.begin(), whole_.end()}; }
};

TEST_P(Damaged, aCutFileGivesNothing) {
    ASSERT_GT(GetParam().ask(whole_), 0U);
    std::vector<std::size_t> sizes{0, 1, 4, 8, 12, 31, 64, 100, whole_.size() / 2, whole_.size() - 1};
    for (int i = 0; i < 20; ++i) {
        sizes.push_back(below(whole_.size()));
    }
    for (const std::size_t size : sizes) {
        EXPECT_EQ(ask({whole_.begin(), whole_.begin() + static_cast<std::ptrdiff_t>(size)}), 0U) << size;
    }
}

TEST_P(Damaged, anotherKindOrVersionGivesNothing) {
    for (const std::size_t at : std::initializer_list<std::size_t>{0, 3, 4, 5}) {
        std::vector<char> bytes = copy();
        bytes[at] = static_cast<char>(bytes[at] + 1);
        EXPECT_EQ(ask(bytes), 0U) << at;
    }
}

TEST_P(Damaged, changedBytesDoNoHarm) {
    // Among the first bytes are the offsets; a damage there is the worst.
    for (const std::size_t reach : {std::size_t{64}, std::size_t{4096}, whole_.size()}) {
        for (int round = 0; round < 40; ++round) {
            std::vector<char> bytes = copy();
            const std::size_t changes = reach == whole_.size() ? reach / 50 : 1 + below(8);
            for (std::size_t i = 0; i < changes; ++i) {
                bytes[6 + below(reach - 6)] = static_cast<char>(below(256));
            }
            ask(bytes);
        }
    }
}

TEST_P(Damaged, theLargestNumbersEverywhereDoNoHarm) {
    for (const char filling : {'\xff', '\x7f', '\x80', '\0'}) {
        for (const std::size_t kept : {std::size_t{48}, whole_.size() / 20, whole_.size() / 2}) {
            std::vector<char> bytes = copy();
            std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(kept), bytes.end(), filling);
            ask(bytes);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Geo, Damaged,
                         ::testing::Values(File{"timezones.bin", askZones}, File{"places.bin", askPlaces},
                                           File{"outlines.bin", askOutlines}),
                         [](const auto& test) {
                             const std::string name = test.param.name;
                             return name.substr(0, name.find('.'));
                         });

} // namespace
} // namespace zenka::geo
