#include "services/UpdateCheck.h"

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using services::UpdateCheck;

namespace {

struct Updates : testing::Test {
    test::VirtualRig rig;
    UpdateCheck updates{rig.machine.all, "1.9.0"};

    std::string after(int status, const std::string& body) {
        updates.check();
        rig.http.answer(status, body);
        EXPECT_FALSE(updates.asking().get());
        return updates.words().get();
    }
};

} // namespace

TEST_F(Updates, withoutAnAddressThePackageManagerHasTheSay) {
    updates.check();
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_EQ(updates.words().get(), "This is Zenka 1.9.0. Your system's package manager updates it.");
}

TEST_F(Updates, aLaterVersionIsToldWithItsAddress) {
    updates.setAddress(" https://example.org/zenka.json ");
    updates.check();
    updates.check();
    ASSERT_EQ(rig.http.waiting.size(), 1U) << "one question at a time";
    EXPECT_EQ(rig.http.waiting.front().request.url, "https://example.org/zenka.json");
    rig.http.answer(200, R"({"version": "1.10", "url": "https://example.org/get"})");
    EXPECT_EQ(updates.words().get(),
              "Zenka 1.10 can be had; this is 1.9.0. Get it at https://example.org/get.");
    for (const char* body : {R"({"version": "1.9"})", R"({"version": "1.9.0"})", R"({"version": "0.10.7"})"})
        EXPECT_EQ(after(200, body), "Zenka 1.9.0 is up to date.") << body;
    EXPECT_TRUE(after(200, R"({"version": "2", "url": "javascript:alert"
})")
                    .ends_with("manager."));
}

TEST_F(Updates, anAnswerThatCannotBeReadIsToldSo) {
    updates.setAddress("https://example.org/zenka.json");
    for (const char* body : {"", "<html>", "[]", "{}", R"({"version": 2})", R"({"version": "two"})",
                             R"({"version": "2.0\nPay here"})"})
        EXPECT_TRUE(after(200, body).find("named no version") != std::string::npos) << body;
    EXPECT_TRUE(after(404, "").find("status 404") != std::string::npos);
    updates.check();
    rig.http.fail("the time ran out");
    EXPECT_TRUE(updates.words()->find("the time ran out") != std::string::npos);
}
