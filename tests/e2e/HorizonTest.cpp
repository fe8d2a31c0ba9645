#include "support/Child.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <string>

using testing::HasSubstr;
using testing::StartsWith;
using zenka::test::Child;

namespace {

/// The program itself against a real server.
struct Horizon : testing::Test {
    zenka::test::TempFolder home;
    Child server{{"python3", ZENKA_SOURCE_DIR "/tests/e2e/terrain_server.py"}};
    const std::string port = server.readLine();

    /// What is printed, the error stream behind it.
    std::string find(const std::string& kind, const std::string& token = "pk.test") {
        const std::string host = "http://127.0.0.1:" + port + "/" + kind;
        Child child({"/bin/sh", "-c", "\"$0\" --horizon-test 41.65 -0.88 2>&1", ZENKA_EXECUTABLE},
                    {"HOME=" + home.path().string(), "XDG_CONFIG_HOME=", "ZENKA_TERRAIN_HOST=" + host,
                     "ZENKA_OPEN_TERRAIN_HOST=" + host, "ZENKA_TERRAIN_TOKEN=" + token,
                     std::string("ZENKA_TERRAIN_TILES=") + (kind == "open" ? "open" : "mapbox")});
        std::string output = child.readRest();
        EXPECT_EQ(child.wait(), 0);
        return output;
    }
};

const std::string flat =
    "samples: 0:0.0  30:0.0  60:0.0  90:0.0  120:0.0  150:0.0  180:0.0  210:0.0  240:0.0  "
    "270:0.0  300:0.0  330:0.0\n";

} // namespace

TEST_F(Horizon, aRidgeAndATowerStandInTheirPlaces) {
    const std::string output = find("ridge");
    EXPECT_THAT(output, StartsWith("source=terrain + buildings  observer h0=300m  peak=26.6° @ az 267"));
    // The first point of a ray behind 10 km is 10.2 km away.
    EXPECT_THAT(output, HasSubstr("60:0.0  90:5.5  120:0.0"));
    EXPECT_THAT(output, HasSubstr("240:0.0  270:26.6  300:0.0"));
    EXPECT_THAT(find("open"), StartsWith("source=terrain + buildings  observer h0=300m  peak=26.6°"));
    const std::string alone = find("open", "");
    EXPECT_THAT(alone, StartsWith("Buildings are left out: they want a token, which Settings has none of.\n"
                                  "source=terrain  observer h0=300m  peak=5.5° @ az "));
    EXPECT_THAT(alone,
                HasSubstr("60:0.0  90:5.5  120:0.0  150:0.0  180:0.0  210:0.0  240:0.0  270:0.0  300:0.0"));
}

TEST_F(Horizon, whatTheServerLacksIsToldAndTheHorizonIsFlatThere) {
    EXPECT_THAT(find("sea"), StartsWith("source=terrain + buildings  observer h0=0m  peak=26.6°"));
    EXPECT_THAT(find("holes"),
                HasSubstr("terrain tiles could not be had: the server answered with status 404."));
    for (const char* kind : {"junk", "html", "large"}) {
        const std::string output = find(kind);
        EXPECT_THAT(output, HasSubstr("No terrain tile could be had: what came was no terrain tile."))
            << kind;
        EXPECT_THAT(output, HasSubstr("observer h0=0m")) << kind;
    }
    EXPECT_EQ(find("ridge", "pk.wrong"),
              "No terrain tile could be had: the server does not take the token, status 401. Until then the "
              "horizon counts as flat.\nsource=terrain  observer h0=0m  peak=0.0° @ az 0\n" +
                  flat);
    EXPECT_EQ(find("ridge", ""),
              "No token for the terrain tiles is set: give one in Settings, or choose the open "
              "tiles there. Until then the horizon counts as flat.\n"
              "source=terrain  observer h0=0m  peak=0.0° @ az 0\n" +
                  flat);
}

TEST_F(Horizon, aServerThatNeverAnswersIsGivenUp) {
    EXPECT_THAT(find("silent"), HasSubstr("\nsource=terrain  observer h0=0m  peak=0.0° @ az 0\n"));
}
