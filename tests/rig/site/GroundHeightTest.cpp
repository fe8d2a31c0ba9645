#include "rig/site/GroundHeight.h"

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

namespace zenka::rig {
namespace {

struct GroundHeightTest : testing::Test {
    test::VirtualRig rig;
    SiteBook& sites = rig.model.sites();
    const Site& site() { return rig.model.site().site(); }
};

TEST_F(GroundHeightTest, theServiceIsAskedForThePointAndItsFirstValueIsTaken) {
    sites.ground().setHost(" http://heights.example/ ");
    sites.moveTo(43.123456, -5.5, std::nullopt, true);
    EXPECT_EQ(site().elev, 200) << "nothing waits for the network";
    ASSERT_EQ(rig.http.waiting.size(), 1U);
    EXPECT_EQ(rig.http.waiting.front().request.url,
              "http://heights.example/v1/elevation?latitude=43.12346&longitude=-5.50000");
    rig.http.answer(200, R"({"elevation": [612.0, 5]})");
    EXPECT_EQ(site().elev, 612);
    EXPECT_TRUE(rig.logged("Elevation set to 612 m"));
    const auto fresh = rig.model.site().eclipse().localCircumstances(rig.model.site().observer());
    EXPECT_EQ(rig.model.site().circ()->totalitySeconds, fresh.totalitySeconds);
}

TEST_F(GroundHeightTest, whatIsNoHeightLeavesTheElevationAsItWas) {
    for (const char* body :
         {"", "[]", "{}", "null", R"({"elevation": []})", R"({"elevation": 12})", R"({"elevation": ["9"]})",
          R"({"elevation": [null]})", R"({"elevation": [1e308]})", R"({"elevation": [-9999]})", "<html>"}) {
        sites.lookUpElevation();
        rig.http.answer(200, body);
        EXPECT_EQ(site().elev, 200) << body;
    }
    sites.lookUpElevation();
    rig.http.answer(503, R"({"elevation": [1]})");
    sites.lookUpElevation();
    rig.http.fail("there is no network");
    EXPECT_EQ(site().elev, 200);
    sites.ground().setHost("");
    sites.lookUpElevation();
    EXPECT_TRUE(rig.http.waiting.empty()) << "an empty address turns it off";
}

TEST_F(GroundHeightTest, anAnswerThatComesTooLateIsDropped) {
    sites.lookUpElevation();
    sites.moveTo(40, -3, 700, true);
    rig.http.answer(200, R"({"elevation": [5]})");
    EXPECT_EQ(site().elev, 700) << "the site has moved";

    sites.lookUpElevation();
    rig.load(rig.frameAt(0));
    rig.playFrom(-10);
    const double clock = rig.model.transport().clock();
    rig.http.answer(200, R"({"elevation": [650]})");
    EXPECT_EQ(site().elev, 700) << "a run keeps the site that it began with";
    EXPECT_EQ(rig.model.transport().clock(), clock);
}

TEST_F(GroundHeightTest, theJumpToTheGreatestDurationGetsItsHeight) {
    rig.model.site().jumpToGreatestDuration(std::nullopt);
    rig.run(0.1);
    EXPECT_EQ(site().elev, 0);
    ASSERT_EQ(rig.http.waiting.size(), 1U);
    rig.http.answer(200, R"({"elevation": [37.5]})");
    EXPECT_EQ(site().elev, 37.5);
    EXPECT_EQ(site().label, "Greatest duration");
}

} // namespace
} // namespace zenka::rig
