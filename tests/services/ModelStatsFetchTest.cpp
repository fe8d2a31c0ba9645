#include "services/ModelStatsFetch.h"

#include "services/ServiceAddress.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

struct ModelStatsFetchTest : testing::Test {
    test::VirtualRig rig;
    cameras::GPhoto2ModelStats stats;
    services::ModelStatsFetch fetch{rig.machine.all, stats};

    void ask(const std::string& host) {
        rig.machine.settings.setText(services::serviceHostKey, host);
        fetch.primeModelStats();
    }
};

} // namespace

TEST_F(ModelStatsFetchTest, whatOtherBodiesOfferedIsKnownOnceTheServerHasAnswered) {
    ask(" https://zenka.example/ ");
    ASSERT_EQ(rig.http.waiting.size(), 1U);
    EXPECT_EQ(rig.http.waiting[0].request.url, "https://zenka.example/api/camera-profile-stats");
    rig.http.answer(200, R"({"models": [{"model": "Z8", "shutterMax": 55}, {"model": "Zf"}, 7,
                             {"model": "D780", "shutterMax": 4}, {"model": "X", "shutterMax": 1e300},
                             {"shutterMax": 9}]})");
    EXPECT_EQ(stats.knownGoodShutterCount("Z8"), 55);
    EXPECT_FALSE(stats.knownGoodShutterCount("D780")) << "too few to be believed";
    EXPECT_FALSE(stats.knownGoodShutterCount("Zf"));
    EXPECT_FALSE(stats.knownGoodShutterCount("X"));
}

TEST_F(ModelStatsFetchTest, withoutAServerOrASensibleAnswerNothingIsKnownAndNothingLost) {
    for (const char* host : {"", "zenka.example", "file:///etc/passwd"})
        ask(host);
    EXPECT_TRUE(rig.http.waiting.empty());
    stats.set({{"Z8", 55}});
    for (const char* body : {"", "<html>", "[]", R"({"models": {"Z8": 3}})", R"({"models": []})"}) {
        ask("https://zenka.example");
        rig.http.answer(200, body);
    }
    ask("https://zenka.example");
    rig.http.answer(500, R"({"models": [{"model": "Z8", "shutterMax": 9}]})");
    ask("https://zenka.example");
    rig.http.fail("the time ran out");
    EXPECT_EQ(stats.knownGoodShutterCount("Z8"), 55);
}
