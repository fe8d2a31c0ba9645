#include "rig/site/HorizonDesk.h"

#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using rig::HorizonDesk;
using testing::Each;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class HorizonDeskTest : public testing::Test {
protected:
    VirtualRig rig;
    HorizonDesk& desk = rig.model.horizons();
    std::vector<std::string> told;
    const rig::TerrainSurvey::Place place{.lat = 41.65, .lon = -0.88, .elev = 200};

    void SetUp() override {
        rig.machine.settings.setText(rig::settingsKeys::terrainToken, "pk.a b");
        desk.progress().changed().connect([this](const auto& progress) {
            if (progress && (told.empty() || told.back() != progress->words))
                told.push_back(progress->words);
        });
    }
    void find(bool buildings = false) {
        desk.find(place, buildings);
        rig.run(0.1);
    }
    bool searching() const { return desk.progress().get().has_value(); }
    /// Answers with level ground until nothing is asked any more; gives the addresses.
    std::vector<std::string> serve(double metres = 240) {
        std::vector<std::string> asked;
        while (!rig.http.waiting.empty()) {
            EXPECT_LE(rig.http.waiting.size(), 8U);
            asked.push_back(rig.http.waiting.front().request.url);
            rig.http.answer(200, ToldPixels::ground(metres));
            rig.run(0.01);
        }
        return asked;
    }
    double sample(int az) const { return desk.here()->value().result.samples[static_cast<std::size_t>(az)]; }
};

} // namespace

TEST_F(HorizonDeskTest, tilesAreAskedForEightAtATimeAndTheProfileIsKept) {
    find();
    ASSERT_EQ(rig.http.waiting.size(), 8U);
    EXPECT_GT(rig.http.waiting.front().request.timeout.count(), 0);
    rig.http.answer(200, ToldPixels::ground(240)); // its own tile comes first
    rig.run(0.01);
    const auto tiles = serve(400).size() + 1;
    EXPECT_FALSE(searching());
    EXPECT_EQ(desk.remark().get(), "");
    EXPECT_EQ(told, (std::vector<std::string>{"Looking for the tiles…",
                                              "Loading " + std::to_string(tiles) + " terrain tiles…",
                                              "Computing horizon…"}));
    ASSERT_TRUE(desk.here().get());
    EXPECT_NEAR(*desk.here()->value().result.observerHeightM, 240, 0.06);
    EXPECT_GT(sample(90), 0.1) << "the land around stands 160 m higher";

    // It is there in the next session, without a network, and for this place only.
    rig.run(1);
    const auto kept = desk.here().get();
    rig.model.site().setSite({.lat = 10, .lon = 20});
    EXPECT_FALSE(desk.here().get());
    desk.restore();
    rig.model.site().setSite({.lat = place.lat + 0.0003, .lon = place.lon});
    ASSERT_TRUE(desk.here().get());
    EXPECT_NEAR(sample(90), kept->result.samples[90], 0.001);
    EXPECT_TRUE(rig.http.waiting.empty());
}

TEST_F(HorizonDeskTest, theAddressesAreThoseOfTheSource) {
    find(true);
    EXPECT_THAT(serve(),
                testing::Contains("https://api.mapbox.com/v4/mapbox.mapbox-streets-v8/tilequery/"
                                  "-0.880000,41.650000.json?radius=1200&limit=50&dedupe=true&layers=building&"
                                  "access_token=pk.a%20b"));
    EXPECT_THAT(desk.remark().get(), HasSubstr("Buildings are left out: the answer made no sense."));

    rig.machine.settings.setText(rig::settingsKeys::terrainHost, "http://127.0.0.1:9/");
    find();
    EXPECT_THAT(
        serve(),
        Each(testing::MatchesRegex(
            "http://127.0.0.1:9/v4/mapbox.terrain-rgb/11/[0-9]+/[0-9]+.pngraw\\?access_token=pk.a%20b")));

    rig.machine.settings.setText(rig::settingsKeys::terrainTiles, "open");
    rig.machine.settings.remove(rig::settingsKeys::terrainToken);
    find(true);
    EXPECT_THAT(serve(), Each(HasSubstr("/terrarium/11/")));
    EXPECT_THAT(desk.remark().get(), HasSubstr("Buildings are left out: they want a token"));
    EXPECT_EQ(desk.here()->value().result.source, "terrain");
}

TEST_F(HorizonDeskTest, buildingsThatMakeSenseAreAddedAndTheRestIsPassedOver) {
    find(true);
    const auto building = [](const std::string& properties, const std::string& point) {
        return R"({"properties":{)" + properties + R"(},"geometry":{"type":"Point","coordinates":)" + point +
               "}}";
    };
    const std::string answer = R"({"features":[7,{"properties":3},{"geometry":{}},)" +
                               building(R"("height":30,"tilequery":{"distance":60})", "[-0.87,41.65]") + "," +
                               building(R"("height":"tall","render_height":50)", "[-0.88,41.6491]") + "," +
                               building(R"("underground":"true","height":90)", "[-0.89,41.65]") + "," +
                               building(R"("height":90)", R"(["a","b"])") + "," +
                               building(R"("height":1e99)", "[-0.88,41.6509]") + "]}";
    while (!rig.http.waiting.empty()) {
        const bool query = rig.http.waiting.front().request.url.find("tilequery") != std::string::npos;
        rig.http.answer(200, query ? answer : ToldPixels::ground(240));
        rig.run(0.01);
    }
    EXPECT_EQ(desk.remark().get(), "");
    EXPECT_EQ(desk.here()->value().result.source, "terrain + buildings");
    EXPECT_NEAR(sample(90), 26.6, 0.1) << "30 m high, 60 m away by the answer's own word";
    EXPECT_NEAR(sample(180), 26.6, 0.2) << "50 m high, 100 m away";
    EXPECT_NEAR(sample(0), 4.6, 0.1) << "8 m where no height makes sense";
    EXPECT_EQ(sample(270), 0);
    EXPECT_EQ(told.back(), "Adding buildings…");
}

TEST_F(HorizonDeskTest, whatIsMissingIsToldInOneSentence) {
    find();
    rig.http.answer(200, ToldPixels::ground(240));
    rig.http.answer(404, "");
    rig.http.answer(200, "<html>no tile</html>");
    serve();
    EXPECT_THAT(desk.remark().get(),
                testing::MatchesRegex("2 of [0-9]+ terrain tiles could not be had: what came "
                                      "was no terrain tile. There the horizon may be higher."));
    EXPECT_TRUE(desk.here().get());

    rig.model.site().setSite({.lat = -33, .lon = -70});
    desk.find({.lat = -33, .lon = -70}, false);
    rig.run(0.1);
    rig.http.answer(404, "");
    serve();
    EXPECT_THAT(desk.remark().get(),
                StartsWith("The tile of the site itself could not be had: the server answered "
                           "with status 404."));
    EXPECT_FALSE(desk.here().get()) << "such a profile is not gone by";

    desk.find({.lat = 89, .lon = 0}, false);
    rig.run(0.1);
    EXPECT_THAT(desk.remark().get(), HasSubstr("so near to the pole"));
    EXPECT_FALSE(searching());
}

TEST_F(HorizonDeskTest, aServerThatIsGoneOrRefusesIsNotAskedForEveryTile) {
    find();
    int asked = 0;
    for (; !rig.http.waiting.empty(); ++asked)
        rig.http.fail("the time ran out");
    rig.run(0.1);
    EXPECT_LE(asked, 15);
    EXPECT_EQ(desk.remark().get(),
              "No terrain tile could be had: the time ran out. Until then the horizon counts "
              "as flat.");
    EXPECT_FALSE(desk.here().get());

    find();
    for (asked = 0; !rig.http.waiting.empty(); ++asked)
        rig.http.answer(401, "");
    rig.run(0.1);
    EXPECT_LE(asked, 8);
    EXPECT_THAT(desk.remark().get(), HasSubstr("the server does not take the token, status 401"));

    rig.machine.settings.remove(rig::settingsKeys::terrainToken);
    find();
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_THAT(desk.remark().get(), StartsWith("No token for the terrain tiles is set"));
    EXPECT_FALSE(searching());
}

TEST_F(HorizonDeskTest, aSearchIsCancelledAtEachOfItsStepsAndReplacedByTheNext) {
    for (const int answers : {0, 3, 1000}) {
        desk.find(place, true);
        rig.run(answers == 0 ? 0 : 0.1);
        for (int i = 0; i < answers && rig.http.waiting.size() != 1; ++i)
            rig.http.answer(200, ToldPixels::ground(240));
        desk.cancel();
        EXPECT_TRUE(rig.http.waiting.empty()) << answers;
        rig.run(1);
        EXPECT_FALSE(searching());
        EXPECT_FALSE(desk.here().get());
    }
    find();
    find();
    EXPECT_EQ(rig.http.waiting.size(), 8U) << "the first search is over";
    serve();
    EXPECT_TRUE(desk.here().get());
}

TEST_F(HorizonDeskTest, damagedProfilesAreKeptBesideAndCostOnlyThemselves) {
    const auto file = rig.folders.applicationSupport() / "horizons.json";
    std::string flat = "[0";
    for (int i = 1; i < 360; ++i)
        flat += ",0";
    rig.files.contents[file] =
        R"([{"lat":1},{"lat":41.65,"lon":-0.88,"samples":[1,2]},{"lat":41.65,"lon":-0.88,)"
        R"("height":200,"samples":)" +
        flat + "]}]";
    desk.restore();
    EXPECT_TRUE(desk.here().get());
    rig.files.contents[file] = "[{";
    desk.restore();
    EXPECT_FALSE(desk.here().get());
    EXPECT_TRUE(rig.files.contents.contains(file.string() + ".damaged"));
}

TEST_F(HorizonDeskTest, preflightAndValidationWarnOfASunBehindTheTerrain) {
    rig.load(rig.frameAt(rig.model.site().contactTHours().at("MAX") * 3600));
    const auto row = [&]() -> std::string {
        for (const auto& check : rig.model.preflight().checks()) {
            if (check.title == "Horizon")
                return (check.status == rig::PreflightStatus::ok ? "ok: " : "warn: ") + check.detail;
        }
        return "";
    };
    const auto issues = [&] {
        std::string all;
        for (const auto& issue : rig.model.validator().issues(rig.model.script().scriptText().get()))
            all += issue.message + "\n";
        return all;
    };
    EXPECT_EQ(row(), "");
    EXPECT_THAT(issues(), testing::Not(HasSubstr("terrain of this site")));

    find();
    serve();
    EXPECT_EQ(row(), "ok: The Sun stands clear of the terrain at every contact that is up.");

    // The land around rises by 3 km: at Zaragoza in 2026 the Sun is low.
    find();
    rig.http.answer(200, ToldPixels::ground(240));
    rig.run(0.01);
    serve(3240);
    EXPECT_THAT(row(), StartsWith("warn: The terrain hides the Sun at "));
    EXPECT_THAT(row(), HasSubstr("MAX (Sun "));
    EXPECT_THAT(issues(),
                HasSubstr("Sun behind the terrain of this site for 1 frame (all cameras), starting at "));
}

} // namespace zenka::test
