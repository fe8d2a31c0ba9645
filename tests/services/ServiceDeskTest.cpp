#include "services/ServiceDesk.h"

#include "services/ServiceAddress.h"
#include "support/ToldNames.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

using namespace zenka;
using services::ServiceDesk;
using testing::ElementsAre;
using testing::IsEmpty;
using Json = nlohmann::json;

namespace {

struct ServiceDeskTest : testing::Test {
    test::VirtualRig rig;
    test::ToldNames names;
    std::optional<ServiceDesk> desk;

    void begin(const char* host = "https://zenka.example", std::optional<bool> allowed = true) {
        rig.machine.settings.setText(services::serviceHostKey, host);
        if (allowed)
            rig.machine.settings.setFlag(services::telemetryAllowedKey, *allowed);
        start();
    }
    void start() {
        desk.reset();
        rig.http.waiting.clear();
        desk.emplace(rig.machine.all, names, rig.model, "9.9");
        desk->start();
        rig.run(0.1);
    }
    /// The events that are on their way, taken by the service.
    std::vector<Json> taken() {
        std::vector<Json> events;
        while (!rig.http.waiting.empty()) {
            events.push_back(Json::parse(rig.http.waiting.front().request.body)["events"][0]);
            rig.http.answer(200, "");
            rig.run(0.1);
        }
        return events;
    }
    /// Another start, so much later.
    void startAfter(double seconds) {
        rig.machine.time.setWall(rig.machine.time.now() + base::Seconds{seconds});
        start();
    }
    /// A rehearsal of three frames, the last of which is dropped.
    void rehearse() {
        rig.addBody("CAM1")->outcomes = {
            {.ok = true, .responded = true}, {.ok = true, .responded = true}, {.responded = true}};
        const double first = rig.model.transport().clock() + 100;
        rig.load(rig.frameAt(first) + rig.frameAt(first + 5) + rig.frameAt(first + 10));
        rig.playFrom(first - 2);
        rig.run(70);
        ASSERT_FALSE(rig.model.transport().runActive());
    }
};

} // namespace

TEST_F(ServiceDeskTest, aStartARunAndAMeasurementAreTold) {
    begin();
    const auto launch = taken();
    ASSERT_EQ(launch.size(), 1U);
    EXPECT_EQ(launch[0]["event"], "launch");

    rehearse();
    const auto run = taken();
    ASSERT_EQ(run.size(), 1U);
    EXPECT_EQ(run[0]["event"], "run_complete");
    EXPECT_EQ(run[0]["props"],
              Json::parse(R"({"kind": "simulated", "complete": true, "bodies": 1, "frames": 3,
        "ok": 2, "dropped": 1, "drop_rate": 0.3333333333333333, "backends": ["gphoto2"], "models": ["Z8"],
        "asymmetry": "", "thermal": "nominal"})"));

    rig.model.floors().saveMeasuredFloor("Z8", 0.4249, true);
    rig.model.floors().saveLongFrameFloor("Z8", 2, 3.5, false);
    rig.model.outcomes().checkSentShutterMatches(0.002, "1/60", false, "CAM1");
    desk->report("error", {{"kind", "canon_fire"}, {"code", "0x8d01"}});
    rig.run(0.1);
    const auto others = taken();
    ASSERT_EQ(others.size(), 4U);
    EXPECT_EQ(others[0]["event"], "profile");
    EXPECT_EQ(others[0]["props"], Json::parse(R"({"model": "Z8", "floor_ms": 425, "settings": "same"})"));
    EXPECT_EQ(others[1]["props"], Json::parse(R"({"model": "Z8", "long_shutter_s": 2.0, "long_cadence": 3.5,
                                                  "long_held": false})"));
    EXPECT_EQ(others[2]["event"], "error");
    EXPECT_EQ(others[2]["props"]["kind"], "shutter_divergence");
    EXPECT_EQ(others[2]["props"]["camera"], "CAM1");
    EXPECT_EQ(others[2]["props"]["asked"], 0.002);
    EXPECT_EQ(others[2]["props"]["sent"], "1/60");
    EXPECT_NEAR(others[2]["props"]["stops"].get<double>(), 3.06, 0.01);
    EXPECT_EQ(others[3]["props"], Json::parse(R"({"kind": "canon_fire", "code": "0x8d01"})"));
}

TEST_F(ServiceDeskTest, aRunCutShortIsToldAsSuchWithTheLinesOfTheLumixLinkAndOnlyWhenItIsOver) {
    begin();
    taken();
    const auto body = rig.addBody("CAM1");
    body->family = "LumixPTP";
    body->confirmed = 0;
    body->onCapture = [camera = body.get()](const auto&) { *camera->confirmed += camera->shotCount() % 2; };
    const double first = rig.model.transport().clock() + 100;
    rig.load(rig.frameAt(first) + rig.frameAt(first + 5) + rig.frameAt(first + 50));
    rig.playFrom(first - 2);
    rig.run(10);
    rig.model.outcomes().checkSentShutterMatches(0.002, "1/60", false, "CAM1");
    rig.run(2);
    EXPECT_THAT(rig.http.waiting, IsEmpty()) << "the run has the computer to itself";
    rig.model.transport().togglePlay();
    rig.run(1);
    const auto events = taken();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0]["event"], "error");
    EXPECT_EQ(events[1]["props"]["complete"], false);
    EXPECT_EQ(events[1]["props"]["frames"], 2);
    ASSERT_EQ(events[1]["props"]["confirm_lumix"].size(), 1U);
    EXPECT_THAT(events[1]["props"]["confirm_lumix"][0].get<std::string>(), testing::StartsWith("CAM1: "));
}

TEST_F(ServiceDeskTest, withoutAServiceNothingIsAskedKeptOrSent) {
    begin("", true);
    rehearse();
    EXPECT_THAT(rig.http.waiting, IsEmpty());
    EXPECT_FALSE(desk->mayAsk());
    EXPECT_FALSE(desk->trust().showTrustBanner().get());
    EXPECT_TRUE(rig.model.analyzer().toSend().empty());
    desk->setAddress(" https://zenka.example/ ");
    rig.run(0.1);
    EXPECT_EQ(desk->host().get(), "zenka.example");
    EXPECT_FALSE(rig.model.analyzer().toSend().empty());
    EXPECT_TRUE(desk->trust().showTrustBanner().get());
    EXPECT_THAT(rig.http.waiting, IsEmpty()) << "nothing was kept";
    desk->setAddress("");
    EXPECT_TRUE(rig.model.analyzer().toSend().empty());
    EXPECT_FALSE(desk->trust().showTrustBanner().get());
}

TEST_F(ServiceDeskTest, theUserIsAskedUntilThereIsAnAnswer) {
    begin("https://zenka.example", std::nullopt);
    EXPECT_TRUE(desk->mayAsk());
    EXPECT_THAT(rig.http.waiting, IsEmpty());
    const Json example = Json::parse(desk->telemetry().example().get());
    EXPECT_EQ(example["mac_model"], "ThinkPad T480");
    desk->allow(false);
    EXPECT_FALSE(desk->mayAsk());
    start();
    EXPECT_FALSE(desk->mayAsk());
    EXPECT_EQ(desk->allowed().get(), false);
}

TEST_F(ServiceDeskTest, aRatingSilencesTheQuestionForThisVersionAndPuttingItOffForAWeek) {
    begin("https://zenka.example", false);
    const auto shown = [&] { return desk->trust().showTrustBanner().get(); };
    EXPECT_TRUE(shown());
    desk->trust().dismissTrustBanner();
    EXPECT_FALSE(shown());
    EXPECT_FALSE(rig.machine.settings.text(services::trustRatedVersionKey));
    startAfter(604700);
    EXPECT_FALSE(shown());
    startAfter(101);
    ASSERT_TRUE(shown());
    desk->trust().submitTrust(4);
    EXPECT_FALSE(shown());
    EXPECT_TRUE(rig.logged("Trust rating 4/5 for v9.9. Thank you."));
    ASSERT_EQ(rig.http.waiting.size(), 1U);
    EXPECT_EQ(rig.http.waiting[0].request.url, "https://zenka.example/api/trust");
    rig.http.fail("there is no network");
    EXPECT_TRUE(rig.logged("Could not be sent: there is no network."));
    EXPECT_EQ(rig.machine.settings.number(services::trustRatedAtKey), rig.machine.time.now().epochSec);
    startAfter(700000);
    EXPECT_FALSE(shown()) << "this version is rated for good";
    rig.machine.settings.setText(services::trustRatedVersionKey, "9.8");
    start();
    EXPECT_TRUE(shown()) << "another one may be asked for";
}
