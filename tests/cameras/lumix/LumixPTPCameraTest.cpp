#include "cameras/lumix/LumixPTPCamera.h"

#include "platform/virtual/VirtualPorts.h"
#include "support/Drivers.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedHelpers.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>

using namespace zenka;
using namespace zenka::cameras;
using base::Seconds;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using HelperSaid = test::ScriptedHelpers::Answer;

namespace {

struct LumixBench : testing::Test {
    test::MemoryFiles files;
    test::MemoryFolders folders;
    platform::VirtualPorts ports{base::Instant{1786557600}, folders, files};
    test::ScriptedHelpers helpers{ports.time};
    test::TempFolder root;
    std::map<std::string, std::string> variables;

    void put(const std::string& path) {
        const auto file = root.path() / path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << "x";
    }
    std::string at(const std::string& path) const { return (root.path() / path).string(); }

    LumixMachine machine() {
        return {.drivers = test::driversOn(ports),
                .children = helpers,
                .programFolder = root.path() / "bin",
                .environment = [this](const std::string& name) -> std::optional<std::string> {
                    const auto found = variables.find(name);
                    return found == variables.end() ? std::nullopt : std::optional(found->second);
                }};
    }
    std::shared_ptr<LumixHelper> started() {
        put("bin/zenka-lumix-helper");
        auto helper = std::make_shared<LumixHelper>(machine(), 3, 7);
        EXPECT_TRUE(helper->start());
        return helper;
    }
    std::unique_ptr<LumixPTPCamera> body() {
        return std::make_unique<LumixPTPCamera>(
            machine(),
            LumixPTPCamera::Body{
                .id = "l1", .model = "Panasonic LUMIX DC-G9M2", .port = "usb:003,007", .serial = "S1"},
            started(), LumixHelper::Json{{"confirmed", 0}});
    }
    void settle() {
        for (int round = 0; round < 4; ++round)
            ports.time.runFor(Seconds{0});
    }
    CaptureOutcome shoot(LumixPTPCamera& camera,
                         const Shot& shot = {.iso = 200, .aperture = 8, .shutterSec = 0.002}) {
        return test::shotOn(ports, camera, shot);
    }
    ~LumixBench() override {
        settle();
        EXPECT_EQ(helpers.living, 0) << "a helper was left running";
    }
};

} // namespace

TEST_F(LumixBench, aProgramOrScriptOfTheUsersTakesThePlaceOfOurHelper) {
    EXPECT_EQ(LumixPlaces::startOf(machine(), 3, 7), std::nullopt);
    LumixHelper none(machine(), 3, 7);
    EXPECT_FALSE(none.start());
    EXPECT_THAT(none.fault(), HasSubstr("not installed"));
    EXPECT_EQ(none.request({{"cmd", "status"}}, Seconds{1}), std::nullopt);

    const std::vector<std::string> place{"--bus", "3", "--address", "7"};
    put("bin/zenka-lumix-helper");
    EXPECT_EQ(LumixPlaces::startOf(machine(), 3, 7)->program, at("bin/zenka-lumix-helper"));
    put("lib/zenka/lumix/lumix_helper.py");
    put("home/.pyenv/versions/3.9.2/bin/python3");
    put("home/.pyenv/versions/3.12.1/bin/python3");
    variables = {{"HOME", at("home")}};
    auto start = LumixPlaces::startOf(machine(), 3, 7).value();
    EXPECT_EQ(start.program, at("home/.pyenv/versions/3.12.1/bin/python3"))
        << "the newest, not the last by letters";
    EXPECT_THAT(start.arguments,
                ElementsAre(at("lib/zenka/lumix/lumix_helper.py"), "--bus", "3", "--address", "7"));

    put("own/lumix_helper.py");
    put("my python");
    variables["ECLIPSE_LUMIX_DIR"] = at("own");
    variables["ECLIPSE_PYTHON"] = at("my python");
    start = LumixPlaces::startOf(machine(), 3, 7).value();
    EXPECT_EQ(start.program, at("my python"));
    EXPECT_EQ(start.arguments.front(), at("own/lumix_helper.py"));
    EXPECT_THAT(start.environment, IsEmpty());

    put("lib/zenka/gphoto2/lib/libusb-1.0.so.0");
    put("lib/zenka/vendor/usb/core.py");
    put("lib/zenka/standalone/zenka-lumix-helper");
    variables["LD_LIBRARY_PATH"] = "/elsewhere";
    start = LumixPlaces::startOf(machine(), 3, 7).value();
    EXPECT_EQ(start.program, at("lib/zenka/standalone/zenka-lumix-helper"));
    EXPECT_EQ(start.arguments, place);
    EXPECT_EQ(start.environment.at("LD_LIBRARY_PATH"), at("lib/zenka/gphoto2/lib") + ":/elsewhere");
    EXPECT_EQ(start.environment.at("LIBUSB"), at("lib/zenka/gphoto2/lib/libusb-1.0.so.0"));
    EXPECT_EQ(start.environment.at("PYTHONPATH"), at("lib/zenka/vendor"));
}

TEST_F(LumixBench, aFrameIsAskedForInOneLineAndCountedWithWhatTheBodyConfirms) {
    const auto camera = body();
    EXPECT_EQ(camera->confirmedFrames(), 0);
    EXPECT_EQ(camera->usbBus(), 3);
    EXPECT_EQ(camera->minIntervalSec(), 0.6);
    EXPECT_EQ(camera->measuredFloorSec(), 0.18);
    const auto outcome = shoot(*camera);
    EXPECT_EQ(outcome,
              (CaptureOutcome{.ok = true, .latencyMs = 61.5, .responded = true, .sentShutter = "1/500"}));
    shoot(*camera, {.shutterSec = 4, .bulb = true});
    camera->forceFullExposureNextFrame();
    shoot(*camera);
    EXPECT_THAT(
        helpers.sent(),
        ElementsAre(R"({"aperture":8.0,"bulb_s":0.0,"cmd":"fire","full":true,"iso":200,"shutter_s":0.002})",
                    R"({"bulb_s":4.0,"cmd":"fire","iso":"auto","shutter_s":4.0})",
                    R"({"aperture":8.0,"bulb_s":0.0,"cmd":"fire","full":true,"iso":200,"shutter_s":0.002})"));
    EXPECT_EQ(camera->shotCount(), 3);
    EXPECT_EQ(camera->confirmedFrames(), 3);
    helpers.confirmed = 9;
    camera->keepAlive();
    settle();
    EXPECT_EQ(camera->confirmedFrames(), 9);
}

TEST_F(LumixBench, eachWayAFrameFailsHasItsNote) {
    const auto camera = body();
    helpers.answer = [](const auto&) {
        return HelperSaid{.words = {{"fired", true}, {"set_ok", false}}, .seconds = 0.25};
    };
    auto outcome = shoot(*camera);
    EXPECT_EQ(outcome.note, "settings rejected (mode?)");
    EXPECT_TRUE(outcome.ok && outcome.responded && outcome.sentShutter.empty());
    EXPECT_NEAR(outcome.latencyMs, 250, 1e-6) << "measured where the helper tells none";

    helpers.answer = [](const auto&) { return HelperSaid{.words = {{"error", "busy"}}}; };
    outcome = shoot(*camera);
    EXPECT_EQ(outcome.note, "dropped (couldn't keep up)");
    EXPECT_TRUE(outcome.responded);

    helpers.answer = [](const auto&) {
        return HelperSaid{.words = {{"fired", false}, {"responded", false}, {"gone", true}}};
    };
    outcome = shoot(*camera);
    EXPECT_EQ(outcome.note, "no response");
    EXPECT_TRUE(!outcome.responded && outcome.deviceGone);

    helpers.answer = [](const auto&) { return HelperSaid{.raw = "Traceback (most recent call last):\n"}; };
    EXPECT_EQ(shoot(*camera).note, "no response");

    helpers.answer = [](const auto&) { return HelperSaid{.silent = true}; };
    const double before = ports.time.continuousSeconds();
    EXPECT_EQ(shoot(*camera).note, "no response");
    EXPECT_NEAR(ports.time.continuousSeconds() - before, 20, 0.1);
    helpers.answer = [](const auto&) { return HelperSaid{.dies = true}; };
    EXPECT_FALSE(shoot(*camera).responded);
    const double dead = ports.time.continuousSeconds();
    EXPECT_EQ(shoot(*camera).note, "no response") << "of a helper that has ended";
    EXPECT_LT(ports.time.continuousSeconds() - dead, 0.1);
    EXPECT_EQ(camera->shotCount(), 1);
    EXPECT_EQ(helpers.starts.size(), 1U) << "starting anew is not for the driver to decide";
}

TEST_F(LumixBench, anAnswerThatComesTooLateIsNotTakenForTheNextOne) {
    for (const double pause : {5.0, 0.0}) { // it comes before the next request, or behind it
        const auto helper = started();
        int asked = 0;
        helpers.answer = [&](const auto&) {
            const int number = ++asked;
            return HelperSaid{.words = {{"number", number}}, .seconds = number == 1 ? 3.0 : 4.0};
        };
        EXPECT_EQ(helper->request({{"cmd", "status"}}, Seconds{1}), std::nullopt);
        ports.time.sleepFor(Seconds{pause});
        EXPECT_EQ(helper->request({{"cmd", "status"}}, Seconds{5}).value()["number"], 2) << pause;
        EXPECT_EQ(helper->request({{"cmd", "status"}}, Seconds{5}).value()["number"], 3) << pause;
    }
}

TEST_F(LumixBench, aSecondFrameIsRefusedWhileTheFirstIsUnderWay) {
    const auto camera = body();
    std::vector<std::string> notes;
    const auto note = [&](const CaptureOutcome& outcome) { notes.push_back(outcome.note); };
    camera->capture({}, note);
    camera->capture({}, note);
    EXPECT_TRUE(camera->busy());
    settle();
    EXPECT_THAT(notes, ElementsAre("dropped, camera busy", ""));
    EXPECT_FALSE(camera->busy());
}

TEST_F(LumixBench, everyShotCompletesOnceThoughTheCameraIsReleasedShutDownOrGone) {
    const auto fate = [&](const std::function<void(std::unique_ptr<LumixPTPCamera>&)>& happens) {
        auto camera = body();
        int completions = 0;
        camera->capture({}, [&](const CaptureOutcome&) { ++completions; });
        happens(camera);
        settle();
        EXPECT_EQ(completions, 1);
        camera.reset();
        settle();
        EXPECT_EQ(helpers.living, 0);
    };
    fate([](auto& camera) { camera->disconnect(); });
    fate([](auto& camera) { camera->suspend(); });
    fate([](auto& camera) { camera->shutDown(Seconds{2}); });
    fate([](auto& camera) { camera.reset(); });
}

TEST_F(LumixBench, anIdleHelperIsAskedToQuitAtTheEnd) {
    const auto camera = body();
    settle();
    camera->shutDown(Seconds{4});
    EXPECT_THAT(helpers.sent(), ElementsAre(R"({"cmd":"quit"})"));
    EXPECT_EQ(helpers.living, 0);
}

TEST_F(LumixBench, aSuspendedBodyIsFreeAndCountsOnWhenItsHelperIsStartedAnew) {
    const auto camera = body();
    shoot(*camera);
    camera->suspend();
    settle();
    EXPECT_EQ(helpers.living, 0);
    EXPECT_TRUE(camera->connected());
    helpers.confirmed = 0;
    camera->resume();
    EXPECT_TRUE(shoot(*camera).ok);
    EXPECT_EQ(camera->confirmedFrames(), 2);
}

TEST_F(LumixBench, theDialsAreToldAsFarAsTheHelperKnows) {
    const auto camera = body();
    const auto mode = [&](const LumixHelper::Json& words) {
        helpers.answer = [&](const auto&) { return HelperSaid{.words = words}; };
        std::string told = "nothing";
        camera->probe([&](const CameraStatus& status) {
            told =
                !status.isManual ? "?" : (*status.isManual ? "yes " : "no ") + status.modeName.value_or("-");
            if (status.batteryPercent)
                told += " " + std::to_string(*status.batteryPercent);
        });
        settle();
        return told;
    };
    EXPECT_EQ(mode({{"status", "ok"}, {"is_manual", true}, {"mode_guess", "M"}, {"battery", 84}}),
              "yes M 84");
    EXPECT_EQ(mode({{"status", "ok"}, {"is_manual", true}, {"manual_lens", true}}), "yes M · manual lens");
    EXPECT_EQ(mode({{"status", "aperture_unconfirmed"}, {"is_manual", true}}),
              "yes M · aperture unconfirmed");
    EXPECT_EQ(mode({{"status", "ok"}, {"is_manual", false}, {"mode_guess", "A"}}), "no A");
    EXPECT_EQ(mode({{"status", "error"}, {"is_manual", true}, {"mode_guess", "P"}}), "no P");
    EXPECT_EQ(mode({{"status", "unknown"}, {"battery", 999}}), "?") << "what nobody knows accuses nobody";
    EXPECT_EQ(mode({{"status", 3}, {"is_manual", "yes"}}), "?");

    helpers.answer = [](const auto&) {
        return HelperSaid{.words = {{"auto_iso", true}, {"drive_burst", true}}};
    };
    AutoIsoStatus iso;
    camera->probeAutoISO([&](const AutoIsoStatus& status) { iso = status; });
    settle();
    EXPECT_EQ(iso.isAuto, true);
    EXPECT_EQ(iso.detail, "Auto-ISO on");
    EXPECT_TRUE(camera->driveModeBurst());
    EXPECT_FALSE(camera->singleShotImmuneToDrive());
}

TEST_F(LumixBench, aPollTellsABodyThatIsSilentFromAHelperThatHasEnded) {
    const auto camera = body();
    const auto poll = [&] {
        std::optional<PollReply> told;
        camera->poll([&](const PollReply& reply) { told = reply; });
        settle();
        return told.value();
    };
    EXPECT_EQ(poll(), (PollReply{.answered = true, .battery = 84.0}));
    helpers.answer = [](const auto&) {
        return HelperSaid{.words = {{"responded", false}, {"confirmed", 0}}};
    };
    EXPECT_EQ(poll(), PollReply{});
    helpers.answer = [](const auto&) { return HelperSaid{.dies = true}; };
    EXPECT_EQ(poll(), PollReply{.linkEnded = true});
}
