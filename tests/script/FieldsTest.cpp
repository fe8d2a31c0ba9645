#include "Sites.h"

#include <gmock/gmock.h>

namespace zenka::script {
namespace {

using ZenkaScript::parseShutter;
using ZenkaScript::parseTimeMMSS;
using ZenkaScript::Shutter;

TEST(Fields, timesReadFromTheirPieces) {
    const std::vector<std::pair<const char*, std::optional<double>>> cases{{"8", 8},
                                                                           {"00:08.5", 8.5},
                                                                           {"01:30:00.25", 5400.25},
                                                                           {"1:2:3:4", 3723},
                                                                           {"-5", -5},
                                                                           {":30", 30},
                                                                           {"5:", 5},
                                                                           {"x", 0},
                                                                           {"1:x", 60},
                                                                           {"1e1", 10},
                                                                           {"", std::nullopt},
                                                                           {":", std::nullopt},
                                                                           {"inf", std::nullopt},
                                                                           {"1e300", std::nullopt}};
    for (const auto& [text, seconds] : cases)
        EXPECT_EQ(parseTimeMMSS(text), seconds) << text;
}

TEST(Fields, shuttersRead) {
    const std::vector<std::pair<const char*, Shutter>> cases{{"1/500", {1.0 / 500, false}},
                                                             {" 1//4 ", {0.25, false}},
                                                             {"0.5", {0.5, false}},
                                                             {"2e1", {20, false}},
                                                             {"bulb", {0, true}},
                                                             {" Bulb ", {0, true}},
                                                             {"auto", {}},
                                                             {"-", {}},
                                                             {"", {}},
                                                             {"1/0", {}},
                                                             {"1/2/3", {}},
                                                             {"/", {}},
                                                             {"2s", {}},
                                                             {"1 / 4", {}},
                                                             {"inf", {}},
                                                             {"1/nan", {}}};
    for (const auto& [text, shutter] : cases)
        EXPECT_EQ(parseShutter(text), shutter) << text;
}

TEST(Fields, labelsSayTheMomentToPeople) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"C2,-,00:08.0", "C2 −8s"},
        {"max,+,0", "MAX"},
        {"MAX,+,00:02", "MAX +2s"},
        {"C3,+,01:30.9", "C3 +1:30"},
        {"C3,+,01:01:05", "C3 +61:05"},
        {"u2,+,0", "U2"},
        {"MAGPRE 12.5000,-,00:10", "Pre 12.5%"},
        {"magpost 99,+,0", "Post 99%"},
        {"SUNSET,-,05:00", "Sunset −5:00"},
        {"SUNRISE,+,0", "Sunrise"},
        {"A 18:32,+,0", "18:32 UTC"},
        {"A 2024-04-08 18:32,+,9", "2024-04-08 UTC +9s"},
        {"L 13:32,-,9", "13:32 local −9s"},
        {"13:32,+,9", "13:32 +9s"},
        {"C2,-,59.7", "C2 −60s"},
    };
    for (const auto& [moment, label] : cases)
        EXPECT_EQ(carbondale().compile({std::string("TAKEPIC,") + moment + ",CAM1"}).captures.at(0).refLabel,
                  label);
    const CompiledScript last =
        carbondale().compile({"SETEXP,C2,+,0,CAM1", "TAKEPIC,LAST,+,0,CAM1", "TAKEPIC,LAST,-,2,CAM1",
                              "FOR,(VAR),12.5,1,12.5", "TAKEPIC,MAGPRE (VAR),+,0,CAM1"});
    EXPECT_EQ(last.captures.at(0).refLabel, "Pre 12.5%");
    EXPECT_EQ(last.captures.at(1).refLabel, "last −2s");
    EXPECT_EQ(last.captures.at(2).refLabel, "after last");
}

} // namespace
} // namespace zenka::script
