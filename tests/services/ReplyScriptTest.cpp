#include "services/ReplyScript.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The script of a reply, "-" for none. Only what says TAKEPIC compiles.
std::string taken(const std::string& reply) {
    const auto found = services::scriptIn(
        reply, [](const std::string& script) { return script.find("TAKEPIC") != script.npos; });
    return found ? found->script : "-";
}

} // namespace

TEST(ReplyScript, theLastMarkedBlockIsTheScript) {
    EXPECT_EQ(taken("One\n```zenka\nold\n```\nTwo\n```zenka\nPLAY\n# b\n```\nDone"), "PLAY\n# b\n");
    EXPECT_EQ(taken("```ZENKA  \r\nPLAY\r\n```\r\n"), "PLAY\n") << "lines of another system";
    EXPECT_EQ(taken("  ````zenka\nPLAY\n```\n# in it\n````\n"), "PLAY\n```\n# in it\n");
    EXPECT_EQ(taken("```zenka\nPLAY\nTAKE"), "PLAY\nTAKE") << "a reply that was broken off";
    EXPECT_EQ(taken("```zenka\nPLAY\n```\n```zenka\n  \n```\n"), "PLAY\n") << "an empty one is none";
}

TEST(ReplyScript, aBlockWithoutAWordCountsIfFramesComeOfIt) {
    EXPECT_EQ(taken("```\nTAKEPIC\n```\n"), "TAKEPIC\n");
    EXPECT_EQ(taken("```zenka\nPLAY\n```\n```\nTAKEPIC\n```\n```\nls -l\n```\n"), "TAKEPIC\n");
    EXPECT_EQ(taken("```json\nTAKEPIC\n```\n"), "-");
    std::string many = "```zenka\nPLAY\n```\n```\nTAKEPIC\n```\n";
    for (int i = 0; i < 5000; ++i)
        many += "```\nls\n```\n";
    EXPECT_EQ(taken(many), "PLAY\n") << "not all of them are tried";
}

TEST(ReplyScript, whatIsNoBlockIsText) {
    for (const char* reply :
         {"", "TAKEPIC", "``zenka\nPLAY\n``", "    ```zenka\nPLAY\n", "`TAKEPIC` and ```TAKEPIC```",
          "```zenka TAKEPIC\nPLAY\n```", "```zenka", "```zenka\n```"})
        EXPECT_EQ(taken(reply), "-") << reply;
    const auto found = services::scriptIn("Before\n```zenka\nPLAY\n```\nAfter", {});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->around, "Before\n[the script: see the working script]\nAfter");
}
