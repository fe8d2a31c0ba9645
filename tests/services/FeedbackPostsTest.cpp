#include "services/FeedbackPosts.h"

#include "services/ServiceAddress.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace zenka;
using services::FeedbackPosts;
using testing::HasSubstr;
using Json = nlohmann::json;

namespace {

struct FeedbackPostsTest : testing::Test {
    test::VirtualRig rig;
    FeedbackPosts posts{rig.machine.all, "9.9"};
    FeedbackPosts::Answer answer;
    int answers = 0;

    void SetUp() override { rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example"); }
    FeedbackPosts::Done done() {
        return [this](const FeedbackPosts::Answer& told) {
            answer = told;
            ++answers;
        };
    }
    /// The body of the one request that is on its way.
    Json body(const std::string& path, double timeout) {
        EXPECT_EQ(rig.http.waiting.size(), 1U);
        if (rig.http.waiting.empty())
            return {};
        const ports::HttpRequest& request = rig.http.waiting.front().request;
        EXPECT_EQ(request.method + " " + request.url, "POST https://zenka.example" + path);
        EXPECT_EQ(request.headers.at("Content-Type"), "application/json");
        EXPECT_EQ(request.timeout, base::Seconds{timeout});
        return Json::parse(request.body);
    }
};

} // namespace

TEST_F(FeedbackPostsTest, aReportCarriesTheNumbersOfItsResult) {
    FeedbackPosts::RunReport report{.result = {.camera = "CAM1",
                                               .expectedTotal = 10,
                                               .actualTotal = 9,
                                               .matched = 8,
                                               .isoOK = 8,
                                               .apOK = 8,
                                               .shOK = 8,
                                               .mismatches = {"C2: 1 of 2", "C3: 0 of 1"},
                                               .jitterMeanMs = 12.5,
                                               .jitterMaxMs = 40,
                                               .runStart = base::Instant{1000},
                                               .runEnd = base::Instant{1065}},
                                    .html = "<html>",
                                    .email = "a@b.example",
                                    .note = "new cable"};
    posts.sendRunReport(report, done());
    EXPECT_EQ(body("/api/run-report", 60), Json::parse(R"({"email": "a@b.example", "camera": "CAM1",
        "app_version": "9.9", "pass": false, "expected": 10, "actual": 9, "iso_ok": 8, "ap_ok": 8, "sh_ok": 8,
        "matched": 8, "jitter_mean_ms": 12.5, "jitter_max_ms": 40.0, "duration": "01m 05s", "mismatches": 2,
        "mismatch_list": ["C2: 1 of 2", "C3: 0 of 1"], "note": "new cable", "html": "<html>"})"));
    rig.http.answer(201, "");
    EXPECT_TRUE(answer.sent);
    EXPECT_EQ(answer.words, "The report was sent. Thank you.");
    report.note.clear();
    report.html.clear();
    posts.sendRunReport(report, done());
    const Json bare = body("/api/run-report", 60);
    EXPECT_FALSE(bare.contains("note") || bare.contains("html"));
}

TEST_F(FeedbackPostsTest, eachShutterOfAProfileCarriesItsFraction) {
    posts.submitCameraProfile({.model = "Z8",
                               .serial = "4004371",
                               .lens = std::nullopt,
                               .choices = {.shutter = {"0.0020s", "2s", "bulb"},
                                           .iso = {"100", "Auto"},
                                           .aperture = {"f/8"},
                                           .expComp = {"0", "0.3"},
                                           .shutterFraction = {"1/800", "1/500", "2"}},
                               .error = {}},
                              "", "400 mm", done());
    EXPECT_EQ(body("/api/camera-profile", 60), Json::parse(R"({"email": "", "app_version": "9.9",
        "model": "Z8", "serial": "4004371", "lens": "400 mm",
        "shutter": [{"value": "0.0020s", "shutter_fraction": "1/500"}, {"value": "2s", "shutter_fraction": "2"},
                    {"value": "bulb", "shutter_fraction": null}],
        "iso": ["100", "Auto"], "aperture": ["f/8"], "exp_comp": ["0", "0.3"]})"));
    rig.http.answer(200, "");
    posts.submitCameraProfile(
        {.model = "Z8", .serial = "", .lens = std::nullopt, .choices = {.shutter = {"0.0125s"}}, .error = {}},
        "", "", done());
    EXPECT_EQ(body("/api/camera-profile", 60)["shutter"][0]["shutter_fraction"], "1/80")
        << "the standard one where the body has no list of them";
}

TEST_F(FeedbackPostsTest, aMessageAndARatingGoOnceAndTheAnswerIsOneSentence) {
    posts.postContact(
        {.kind = "bug", .text = "It \"stopped\"\nat C2", .email = "a@b.example", .facts = "Zenka 9.9"},
        done());
    EXPECT_EQ(body("/api/contact", 30), Json::parse(R"({"app_version": "9.9", "kind": "bug",
        "message": "It \"stopped\"\nat C2", "email": "a@b.example", "facts": "Zenka 9.9"})"));
    rig.http.fail("the time ran out");
    EXPECT_FALSE(answer.sent);
    EXPECT_EQ(answer.words, "Could not be sent: the time ran out. Try again when there is a network.");
    rig.run(4000);
    EXPECT_TRUE(rig.http.waiting.empty()) << "not tried again";

    posts.postTrust(4, done());
    EXPECT_EQ(body("/api/trust", 30), Json::parse(R"({"app_version": "9.9", "score": 4})"));
    rig.http.answer(503, "");
    EXPECT_THAT(answer.words, HasSubstr("status 503"));
    EXPECT_FALSE(answer.sent);

    rig.machine.settings.setText(services::serviceHostKey, "");
    posts.postTrust(4, done());
    EXPECT_EQ(answers, 2) << "never from within the call";
    rig.run(0.1);
    EXPECT_EQ(answers, 3);
    EXPECT_FALSE(answer.sent);
    EXPECT_TRUE(rig.http.waiting.empty());
}
