// The Lumix helper as a process of its own on an emulated bus: the program, its PTP, libusb and usbfs are
// real, the bodies are not.
#include "UsbCameras.h"
#include "platform/LinuxPorts.h"
#include "platform/Waiting.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/links/LumixFamily.h"
#include "support/Child.h"
#include "support/ScriptedUsb.h"
#include "support/TempFolder.h"
#include "support/TestFolders.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

using namespace zenka;
using base::Seconds;
using nlohmann::json;
using test::serveUntil;
using testing::HasSubstr;

namespace {

constexpr int panasonic = 0x04da;

struct RealLumix : testing::Test {
    test::UsbCameras bus;
    test::TempFolder root;
    platform::MemorySettings settings;
    test::FoldersBelow folders{root.path()};
    platform::LinuxPorts machine{settings, folders};
    test::ScriptedProcessTable nobody; // the desktop of who runs the test is left alone
    cameras::CameraDaemons daemons{nobody, machine.queues};
    cameras::LumixMachine here{
        .drivers = {.queues = machine.queues, .loop = machine.loop, .clock = machine.clock},
        .children = machine.children,
        .programFolder = root.path()};
    rig::LumixFamily family{here, machine.usb, daemons};
    std::string serial;
    int address = 0;
    std::vector<std::string> told;

    /// Descriptors apart from those of any other program on the bus, see gphoto2_apart.
    void SetUp() override {
        const auto wrapper = root.path() / "zenka-lumix-helper";
        std::ofstream(wrapper) << "#!/usr/bin/env bash\n"
                                  "for ((i = 0; i < 60 + ${4-0}; i++)); do exec {spare}</dev/null; done\n"
                                  "exec '" ZENKA_LUMIX_HELPER "' \"$@\"\n";
        std::filesystem::permissions(wrapper, std::filesystem::perms::owner_all);
    }
    void TearDown() override {
        EXPECT_TRUE(serveUntil([] { return test::childless(); }));
        if (!serial.empty())
            bus.pull(serial);
    }
    void plug(const std::string& itsSerial, int at) {
        serial = itsSerial;
        address = at;
        bus.plug(serial, "Panasonic", "DC-G9M2", panasonic, address);
    }
    rig::CameraFamily::Camera connect() {
        const auto make = family.connect({.model = "Panasonic LUMIX DC-G9M2", .port = port(address)},
                                         [this](const std::string& words) { told.push_back(words); });
        return make ? make() : nullptr;
    }
    static std::string port(int at) {
        return "usb:001,0" + std::string(at < 10 ? "0" : "") + std::to_string(at);
    }

    cameras::CaptureOutcome shoot(cameras::CameraControl& camera, const cameras::Shot& shot) {
        std::optional<cameras::CaptureOutcome> outcome;
        camera.capture(shot, [&](const cameras::CaptureOutcome& came) { outcome = came; });
        EXPECT_TRUE(serveUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(cameras::CaptureOutcome{});
    }

    /// The helper as a bare process.
    std::unique_ptr<ports::ChildProcess> helper() {
        return machine.children
            .start({.program = (root.path() / "zenka-lumix-helper").string(),
                    .arguments = {"--bus", "1", "--address", std::to_string(address)}})
            .child;
    }
    static std::string ask(ports::ChildProcess& child, const std::string& line) {
        child.write(line + "\n", Seconds{5});
        std::string answer;
        while (answer.find('\n') == answer.npos) {
            const auto output = child.read(Seconds{20});
            answer += output.out + output.err;
            if (output.ended || (output.out.empty() && output.err.empty()))
                break;
        }
        return answer;
    }
};

} // namespace

TEST_F(RealLumix, aBodyIsHeldFiresWithItsSettingsAndConfirmsItsFrames) {
    plug("P1", 21);
    const auto camera = connect();
    ASSERT_TRUE(camera) << testing::PrintToString(told);
    const auto outcome = shoot(*camera, {.iso = 400, .aperture = 8, .shutterSec = 0.004});
    EXPECT_TRUE(outcome.ok) << outcome.note;
    EXPECT_EQ(outcome.note, "");
    EXPECT_EQ(bus.tell("P1", "lumixIso"), 400);
    EXPECT_EQ(bus.tell("P1", "lumixAperture"), 80);
    EXPECT_EQ(bus.tell("P1", "lumixShutter"), 250000);
    for (int i = 0; i < 9; ++i)
        EXPECT_TRUE(shoot(*camera, {.iso = 400, .aperture = 8, .shutterSec = 0.004}).ok);
    EXPECT_EQ(bus.tell("P1", "sets"), 3) << "what the body has been told is not told again";
    EXPECT_TRUE(shoot(*camera, {.iso = 100, .shutterSec = 0.3, .bulb = true}).ok);
    EXPECT_EQ(bus.tell("P1", "bulbs"), 1);
    EXPECT_EQ(bus.tell("P1", "shots"), 11);
    camera->keepAlive();
    EXPECT_TRUE(serveUntil([&] { return camera->confirmedFrames() == 11; }))
        << camera->confirmedFrames().value_or(-1);

    cameras::CameraStatus status;
    camera->probe([&](const cameras::CameraStatus& said) { status = said; });
    EXPECT_TRUE(serveUntil([&] { return status.isManual == true; }));
    EXPECT_EQ(status.modeName, "M");
    EXPECT_EQ(status.batteryPercent, 84);
    camera->shutDown(Seconds{5});
    EXPECT_EQ(bus.tell("P1", "sessions"), 0) << "it was closed in order";
}

TEST_F(RealLumix, aStallIsClearedAndTheFrameIsTaken) {
    plug("P2", 22);
    const auto camera = connect();
    ASSERT_TRUE(camera) << testing::PrintToString(told);
    bus.stall("P2");
    EXPECT_TRUE(shoot(*camera, {.iso = 400}).ok);
    EXPECT_EQ(bus.tell("P2", "stalled"), 1);
}

TEST_F(RealLumix, aPulledBodyIsGoneAtOnceAndBackAtAnotherAddress) {
    plug("P3", 23);
    auto camera = connect();
    ASSERT_TRUE(camera) << testing::PrintToString(told);
    ASSERT_TRUE(shoot(*camera, {.iso = 400}).ok);
    bus.pull("P3");
    const auto begin = std::chrono::steady_clock::now();
    const auto outcome = shoot(*camera, {.iso = 400});
    EXPECT_EQ(outcome.note, "no response");
    EXPECT_FALSE(outcome.responded);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10))
        << "not the 20 s of a silent body";
    EXPECT_EQ(family.goneFromBus({{.id = "x", .serial = "P3", .port = camera->port()}}).size(), 1U);
    plug("P3", 24);
    const auto back =
        family.rebind({{.id = "x", .serial = "P3", .model = "Panasonic LUMIX DC-G9M2"}}, [](const auto&) {});
    ASSERT_EQ(back.size(), 1U);
    camera = back[0].make();
    EXPECT_EQ(camera->port(), "usb:001,024");
    EXPECT_TRUE(shoot(*camera, {.iso = 800}).ok);
    EXPECT_EQ(bus.tell("P3", "lumixIso"), 800);
}

TEST_F(RealLumix, aSilentBodyIsToldOfWithinTheLimitAndTheHelperGoesOn) {
    plug("P4", 25);
    const auto camera = connect();
    ASSERT_TRUE(camera) << testing::PrintToString(told);
    bus.silence("P4");
    const auto outcome = shoot(*camera, {.iso = 400});
    EXPECT_EQ(outcome.note, "no response");
    EXPECT_FALSE(outcome.responded || outcome.deviceGone);
    std::optional<cameras::PollReply> reply;
    camera->poll([&](const cameras::PollReply& said) { reply = said; });
    EXPECT_TRUE(serveUntil([&] { return reply.has_value(); }));
    EXPECT_FALSE(reply->answered || reply->linkEnded);
    EXPECT_FALSE(connect()) << "nor can a second helper have it";
    EXPECT_THAT(told.at(0), HasSubstr("wouldn't connect (stuck)"));
}

TEST_F(RealLumix, eachWayOutLetsTheBodyGo) {
    plug("P5", 26);
    using Way = std::function<void(std::unique_ptr<ports::ChildProcess>&)>;
    const std::vector<std::pair<const char*, Way>> ways{
        {"quit", [](auto& child) { EXPECT_EQ(ask(*child, R"({"cmd":"quit"})"), "{\"quit\":true}\n"); }},
        {"SIGTERM", [](auto& child) { child->terminate(); }},
        {"SIGTERM in a bulb", [](auto& child) {
             child->write("{\"cmd\":\"fire\",\"iso\":100,\"bulb_s\":60}\n", Seconds{5});
             EXPECT_EQ(child->waitForEnd(Seconds{1}), std::nullopt);
             child->terminate();
         }}};
    for (const auto& [name, leave] : ways) {
        auto child = helper();
        ASSERT_THAT(ask(*child, R"({"cmd":"status"})"), HasSubstr("\"pc_mode\":true")) << name;
        EXPECT_EQ(bus.tell("P5", "sessions"), 1) << name;
        leave(child);
        EXPECT_EQ(child->waitForEnd(Seconds{5}), 0) << name;
        EXPECT_EQ(bus.tell("P5", "sessions"), 0) << name;
    }
    EXPECT_EQ(bus.tell("P5", "bulbs"), 1) << "the shutter was closed";

    ::setenv("HELPER", (root.path() / "zenka-lumix-helper").c_str(), 1);
    const auto piped =
        machine.children
            .start({.program = "bash",
                    .arguments = {"-c", "echo '{\"cmd\":\"status\"}' | \"$HELPER\" --bus 1 --address 26"}})
            .child;
    EXPECT_EQ(piped->waitForEnd(Seconds{10}), 0) << "the end of its input";
    EXPECT_THAT(piped->read(Seconds{1}).out, HasSubstr("\"pc_mode\":true"));
    EXPECT_EQ(bus.tell("P5", "sessions"), 0);
}

TEST_F(RealLumix, badLinesEndNothing) {
    plug("P6", 27);
    const auto child = helper();
    for (const std::string line :
         {"", "nonsense", "{", "[1]", R"({"cmd":"format"})", R"({"cmd":"fire","iso":[]})"})
        EXPECT_THAT(ask(*child, line), HasSubstr("\"error\"")) << line;
    EXPECT_THAT(ask(*child, std::string(200'000, 'x')), HasSubstr("\"error\""));
    EXPECT_THAT(ask(*child, R"({"cmd":"fire","iso":"auto"})"), HasSubstr("\"fired\":true"));
    EXPECT_EQ(bus.tell("P6", "shots"), 1);
}
