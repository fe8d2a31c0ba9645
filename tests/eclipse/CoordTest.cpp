#include "eclipse/Coord.h"

#include <gtest/gtest.h>

using zenka::eclipse::Coord::parse;

TEST(Coord, readsWhatPeopleType) {
    const std::pair<const char*, double> cases[] = {
        {"41 39 0 N", 41.65},    {"W 0.88", -0.88},
        {"-0,88", -0.88},        {"41°39'0\"N", 41.65},
        {"41° 39′ 0″ n", 41.65}, {" S -10 ", 10},
        {"12 abc 30", 12.5},     {"0:52:48 W", -0.88},
        {"−3.7", -3.7},          {"+7", 7},
        {"41d39m", 41.65},       {"1 2 3 4", 1 + 2 / 60.0 + 3 / 3600.0},
        {"E179.5", 179.5},
    };
    for (const auto& [text, expected] : cases) {
        const auto value = parse(text);
        ASSERT_TRUE(value) << text;
        EXPECT_NEAR(*value, expected, 1e-12) << text;
    }
}

TEST(Coord, aTextWithoutANumberIsNone) {
    for (const char* text : {"", "  ", "N", "north", "°", "-", "nan", "inf"})
        EXPECT_FALSE(parse(text)) << text;
}
