#include "services/Telemetry.h"

#include "base/Text.h"
#include "services/ServiceAddress.h"
#include "support/ToldNames.h"
#include "support/VirtualRig.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>

using namespace zenka;
using services::Telemetry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Json = nlohmann::json;

namespace {

struct TelemetryTest : testing::Test {
    test::VirtualRig rig;
    test::ToldNames names;
    std::unique_ptr<Telemetry> telemetry;
    const std::filesystem::path spool = rig.folders.applicationSupport() / "telemetry-spool.jsonl";
    const std::filesystem::path outbox = rig.folders.applicationSupport() / "telemetry-outbox";

    void SetUp() override {
        rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
        rig.machine.settings.setFlag(services::telemetryAllowedKey, true);
        begin();
    }
    /// As another start of the program.
    void begin() {
        telemetry.reset();
        rig.http.waiting.clear();
        telemetry = std::make_unique<Telemetry>(rig.machine.all, names, "9.9");
        telemetry->start();
        rig.run(0.1);
    }
    void track(const std::string& event, const Json& props = Json::object()) {
        telemetry->track(event, props);
        rig.run(0.1);
    }
    void answer(int status) {
        rig.http.answer(status, "");
        rig.run(0.1);
    }
    /// What is in the file, by the word of each event; damaged lines count as such.
    std::vector<std::string> kept() {
        std::vector<std::string> events;
        for (const auto line : base::splitPieces(rig.files.contents[spool], '\n')) {
            const Json record = Json::parse(line, nullptr, false);
            events.push_back(record.is_object() ? record["body"]["events"][0]["event"].get<std::string>()
                                                : "damaged");
        }
        return events;
    }
    std::vector<std::string> onTheWay() {
        std::vector<std::string> events;
        for (const auto& exchange : rig.http.waiting)
            events.push_back(Json::parse(exchange.request.body)["events"][0]["event"].get<std::string>());
        return events;
    }
};

} // namespace

TEST_F(TelemetryTest, anEventIsKeptFirstThenSentAndGoneWhenTheServiceHasIt) {
    track("error", {{"kind", "shutter_divergence"}, {"stops", 1.5}, {"bytes", "\xFF"}});
    EXPECT_THAT(kept(), ElementsAre("error"));
    ASSERT_THAT(rig.http.waiting, SizeIs(1));
    const ports::HttpRequest request = rig.http.waiting.front().request;
    EXPECT_EQ(request.method + " " + request.url, "POST https://zenka.example/api/telemetry");
    EXPECT_EQ(request.headers.at("Content-Type"), "application/json");
    const Json body = Json::parse(request.body);
    EXPECT_EQ(body["app_version"], "9.9");
    EXPECT_EQ(body["os"], "Debian GNU/Linux 12 (bookworm)");
    EXPECT_EQ(body["mac_model"], "ThinkPad T480");
    ASSERT_THAT(body["events"], SizeIs(1));
    const Json& event = body["events"][0];
    EXPECT_EQ(event["props"]["stops"], 1.5);
    EXPECT_EQ(event["id"].get<std::string>().size(), 36U);
    EXPECT_THAT(event["ts"].get<std::string>(), testing::MatchesRegex("2026-08-12T..:..:..\\....Z"));
    const std::string name = event["id"].get<std::string>() + ".json";
    EXPECT_EQ(rig.files.contents[outbox / name], request.body);

    answer(200);
    rig.run(2);
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_THAT(rig.files.namesIn(outbox), IsEmpty());
    telemetry->flush();
    rig.run(2);
    EXPECT_THAT(rig.http.waiting, IsEmpty());
}

TEST_F(TelemetryTest, aRecordStaysUntilA2xxAndTwoFlushesSendItOnce) {
    track("launch");
    telemetry->flush();
    telemetry->flush();
    rig.run(1);
    ASSERT_THAT(rig.http.waiting, SizeIs(1));
    answer(500);
    rig.run(10);
    EXPECT_THAT(kept(), ElementsAre("launch"));
    EXPECT_THAT(rig.files.namesIn(outbox), IsEmpty()) << "it is not on its way";
    begin();
    EXPECT_THAT(onTheWay(), ElementsAre("launch")) << "what an earlier process left";
    rig.http.fail("there is no network");
    rig.run(31);
    EXPECT_THAT(onTheWay(), ElementsAre("launch"));
    answer(204);
    rig.run(2);
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(TelemetryTest, withoutANetworkItAsksMoreAndMoreSeldomAndASuccessEndsThat) {
    track("first");
    double begun = rig.machine.time.continuousSeconds();
    std::vector<int> pauses;
    for (int i = 0; i < 9; ++i) {
        rig.http.fail("there is no network");
        begun = rig.machine.time.continuousSeconds();
        ASSERT_TRUE(
            rig.machine.time.runUntil([&] { return !rig.http.waiting.empty(); }, base::Seconds{5000}));
        pauses.push_back(static_cast<int>(rig.machine.time.continuousSeconds() - begun + 0.5));
    }
    EXPECT_THAT(pauses, ElementsAre(30, 60, 120, 240, 480, 960, 1920, 3600, 3600));
    rig.http.fail("there is no network");
    for (int i = 0; i < 6; ++i)
        track("more");
    EXPECT_THAT(rig.http.waiting, IsEmpty()) << "an event does not shorten the pause";
    rig.run(3601);
    EXPECT_THAT(rig.http.waiting, SizeIs(4)) << "at once";
    for (int i = 0; i < 7; ++i)
        answer(200);
    track("last");
    rig.http.fail("there is no network");
    rig.run(31);
    EXPECT_THAT(onTheWay(), ElementsAre("last")) << "30 s again";
}

TEST_F(TelemetryTest, oneThatTheServiceNeverTakesDoesNotHoldTheOthersUp) {
    for (int i = 0; i < 6; ++i)
        telemetry->track("bad", {});
    for (int i = 0; i < 3; ++i)
        telemetry->track("good", {});
    rig.run(0.1);
    for (int i = 0; i < 200; ++i) {
        rig.run(100);
        while (!rig.http.waiting.empty())
            answer(onTheWay().front() == "bad" ? 400 : 200);
    }
    EXPECT_THAT(kept(), testing::AllOf(SizeIs(6), testing::Each("bad")));
}

TEST_F(TelemetryTest, withoutAYesAndAServiceNothingIsKeptOrSentAndANoDeletesWhatWaits) {
    track("before");
    telemetry->allow(false);
    rig.run(1);
    EXPECT_THAT(rig.http.waiting, IsEmpty()) << "called off";
    EXPECT_FALSE(rig.files.exists(spool));
    EXPECT_THAT(rig.files.namesIn(outbox), IsEmpty());
    track("no");
    rig.machine.settings.remove(services::telemetryAllowedKey); // never asked
    begin();
    track("unasked");
    rig.machine.settings.setFlag(services::telemetryAllowedKey, true);
    rig.machine.settings.setText(services::serviceHostKey, "");
    begin();
    track("no service");
    EXPECT_FALSE(rig.files.exists(spool));
    EXPECT_THAT(rig.http.waiting, IsEmpty());
    rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
    telemetry->followSettings();
    track("yes");
    EXPECT_THAT(onTheWay(), ElementsAre("yes"));
    // One that was tracked before the no and is kept after it.
    telemetry->track("late", {});
    telemetry->allow(false);
    rig.run(1);
    EXPECT_FALSE(rig.files.exists(spool));
}

TEST_F(TelemetryTest, nothingIsSentInARun) {
    telemetry->hold(true);
    track("in the run");
    EXPECT_THAT(kept(), ElementsAre("in the run"));
    EXPECT_THAT(rig.http.waiting, IsEmpty());
    telemetry->hold(false);
    rig.run(0.1);
    EXPECT_THAT(onTheWay(), ElementsAre("in the run"));
}

TEST_F(TelemetryTest, aCutLineIsMendedAndDamagedOnesAreDropped) {
    telemetry->hold(true);
    track("one");
    const std::string whole = rig.files.contents[spool];
    rig.files.contents[spool] += R"({"id":"AB","body":{"events":[{"ev)";
    begin();
    telemetry->hold(true);
    track("two");
    rig.files.contents[spool] += "\n\n[]\n{\"id\":\"../../x\",\"body\":{}}\n{\"id\":7}\n" + whole;
    begin();
    EXPECT_THAT(kept(), ElementsAre("one", "two"));
    EXPECT_THAT(onTheWay(), ElementsAre("one", "two")) << "each once";
    // A last line that only lacks its end is a record.
    rig.files.contents[spool].pop_back();
    begin();
    telemetry->hold(true);
    track("three");
    EXPECT_THAT(kept(), ElementsAre("one", "two", "three"));
}

TEST_F(TelemetryTest, aFullDiskLosesTheEventAndNothingElse) {
    track("one");
    track("two");
    rig.files.broken = true;
    track("lost");
    answer(200);
    rig.run(5);
    EXPECT_THAT(kept(), ElementsAre("one", "two")) << "it could not be written anew";
    telemetry->flush();
    rig.run(5);
    EXPECT_THAT(onTheWay(), ElementsAre("two")) << "the service has the first one";
    rig.files.broken = false;
    track("three");
    answer(200);
    rig.run(5);
    EXPECT_THAT(kept(), ElementsAre("three"));
    EXPECT_THAT(onTheWay(), ElementsAre("three"));
}

TEST_F(TelemetryTest, overFiveMegabytesTheOldestGo) {
    telemetry->hold(true);
    const std::string filling(9000, 'x');
    const int before = rig.files.wholeWrites;
    for (int i = 0; i < 700; ++i)
        track(absl::StrFormat("%03d", i), {{"filling", filling}});
    EXPECT_LE(rig.files.contents[spool].size(), 5'000'000U);
    EXPECT_GT(rig.files.contents[spool].size(), 3'000'000U);
    EXPECT_LE(rig.files.wholeWrites - before, 3);
    const auto events = kept();
    EXPECT_EQ(events.back(), "699");
    for (std::size_t i = 1; i < events.size(); ++i)
        EXPECT_EQ(std::stoi(events[i]), std::stoi(events[i - 1]) + 1);
    track("too long", {{"filling", std::string(5'000'000, 'x')}});
    EXPECT_EQ(kept(), events);
}

TEST_F(TelemetryTest, aThousandRecordsAreClearedInFewRewritesAndNeverMoreThanFourAreOnTheirWay) {
    telemetry->hold(true);
    for (int i = 0; i < 1000; ++i)
        telemetry->track("event", {{"number", i}});
    rig.run(1);
    ASSERT_THAT(kept(), SizeIs(1000));
    telemetry->hold(false);
    const int before = rig.files.wholeWrites;
    int sent = 0;
    for (; sent < 1000; ++sent) {
        rig.run(0.01);
        ASSERT_FALSE(rig.http.waiting.empty());
        EXPECT_LE(rig.http.waiting.size(), 4U);
        EXPECT_LE(rig.files.namesIn(outbox).size(), 120U);
        rig.http.answer(200, "");
    }
    rig.run(3);
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_THAT(rig.files.namesIn(outbox), IsEmpty());
    EXPECT_LE(rig.files.wholeWrites - before, 15);
}

TEST_F(TelemetryTest, whatTheServiceHasIsNotSentAgainByTheNextProcess) {
    track("one");
    rig.http.answer(200, "");
    begin(); // before the rewrite was due
    EXPECT_THAT(rig.http.waiting, IsEmpty());
    EXPECT_THAT(kept(), IsEmpty());
}
