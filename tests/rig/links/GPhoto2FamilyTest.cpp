#include "rig/links/GPhoto2Family.h"

#include "cameras/gphoto2/GPhoto2Camera.h"
#include "support/ScriptedChildren.h"
#include "support/ScriptedUsb.h"
#include "support/VirtualRig.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using base::Seconds;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr char version[] = "gphoto2 2.5.28\n\nCopyright (c) 2000-2021 Marcus Meissner and others\n";

/// A rig with gphoto2's family on scripted children and a scripted bus.
struct GPhoto2FamilyTest : testing::Test {
    std::optional<test::ScriptedChildren> children;
    test::ScriptedProcesses processes;
    std::optional<cameras::CameraDaemons> daemons;
    std::optional<cameras::GPhoto2Program> program;
    test::ScriptedUsbBus bus;
    std::shared_ptr<rig::GPhoto2Family> family;
    std::vector<std::string> warnings;

    std::string versionSaid = version;
    std::string table; ///< of the bodies that gphoto2 lists
    std::vector<std::string> singles;
    std::vector<std::string> shutters{"1/2000", "1/1000", "1/500", "1/250", "1/2", "1", "Bulb"};

    test::VirtualRig rig{[this](platform::VirtualPorts& machine) { return familyOn(machine); }};

    rig::CameraDetector::Families familyOn(platform::VirtualPorts& machine) {
        children.emplace(machine.time);
        daemons.emplace(processes, machine.queues);
        cameras::GPhoto2Machine here{.children = *children,
                                     .daemons = *daemons,
                                     .queues = machine.queues,
                                     .loop = machine.loop,
                                     .clock = machine.time,
                                     .settings = machine.settings,
                                     .folders = machine.all.folders,
                                     .files = machine.all.files};
        here.pause = [&machine](Seconds span) { machine.time.sleepFor(span); };
        here.warn = [this](const std::string& words) { warnings.push_back(words); };
        program.emplace(here);
        children->single = [this](const std::vector<std::string>& arguments) { return single(arguments); };
        children->answer = [this](const std::string& command) { return answer(command); };
        family = std::make_shared<rig::GPhoto2Family>(*program, bus);
        return {family};
    }

    test::ScriptedChildren::Single single(const std::vector<std::string>& arguments) {
        singles.push_back(arguments.back());
        if (arguments.back() == "--version")
            return {.out = versionSaid};
        if (arguments.back() == "--auto-detect")
            return {.out = "Model                          Port\n"
                           "----------------------------------------------------------\n" +
                           table};
        return {};
    }

    test::ScriptedChildren::Answer answer(const std::string& command) const {
        std::string text;
        if (command == "get-config expprogram")
            text = "Current: M\n";
        if (command.starts_with("get-config shutterspeed"))
            for (std::size_t i = 0; i < shutters.size(); ++i)
                text += absl::StrFormat("Choice: %d %s\n", i, shutters[i]);
        return {.text = text + "END\n"};
    }

    void plugIn(int address, const std::string& listedAs, const std::string& product,
                const std::string& serial) {
        table += absl::StrFormat("%-30s usb:001,%03d\n", listedAs, address);
        bus.plugged->push_back({.product = product,
                                .vendor = "Nikon",
                                .serial = serial.empty() ? std::nullopt : std::optional(serial),
                                .vid = 0x04b0,
                                .pid = 0x0437,
                                .busNumber = 1,
                                .address = address,
                                .hub = "1-2"});
    }

    void detect() {
        rig.model.detector().detectCameras();
        rig.run(5);
        ASSERT_FALSE(rig.model.detector().detecting().get());
    }

    std::vector<std::string> bodies() {
        std::vector<std::string> list;
        for (const auto& camera : rig.model.roster().cameras())
            list.push_back(rig.model.roster().labelFor(*camera) + " " + camera->serial());
        return list;
    }

    /// What the shells were told to fire with since the last call.
    std::vector<std::string> sent() {
        std::vector<std::string> shots;
        for (const std::string& write : std::exchange(children->writes, {}))
            if (write.ends_with("trigger-capture\n"))
                shots.push_back(write);
        return shots;
    }
};

} // namespace

TEST_F(GPhoto2FamilyTest, aProgramThatCannotDriveBodiesIsToldInASentence) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "6001");
    const auto said = [&](const std::string& answer) {
        versionSaid = answer;
        rig.lines.clear();
        detect();
        EXPECT_THAT(bodies(), IsEmpty()) << answer;
        EXPECT_EQ(rig.countLines("⚠️"), 1) << answer;
        for (const std::string& line : rig.lines)
            if (line.starts_with("⚠️"))
                return line;
        return std::string();
    };
    EXPECT_THAT(said("gphoto2 2.4.14\n"), HasSubstr("gphoto2 2.4.14 is too old: 2.5 or later is needed"));
    EXPECT_THAT(said("gphoto2 1.99\n"), HasSubstr("too old"));
    for (const char* answer :
         {"", "\n\n", "gphoto2", "Version 2.5.28 von gphoto2\n", "sh: 1: gphoto2: not found\n",
          "\x7f"
          "ELF\x02\x01\xff\xfe\n"})
        EXPECT_THAT(said(answer), HasSubstr("does not answer as it should (no version in its answer)"));
    EXPECT_EQ(std::ranges::count(singles, "--auto-detect"), 0) << "what is no gphoto2 is not asked further";

    children->launchFault = "No such file or directory";
    EXPECT_THAT(said(version), HasSubstr("gphoto2 is not installed"));
    children->launchFault.clear();
    for (const char* good :
         {"gphoto2 2.5.28\n", "gphoto2 2.5\r\n", "gphoto2 2.10.1-rc1 \n", "gphoto2 3.0\n"}) {
        versionSaid = good;
        detect();
        EXPECT_THAT(bodies(), ElementsAre("Nikon DSC D750 6001")) << good;
    }
}

TEST_F(GPhoto2FamilyTest, aProgramThatHangsIsToldAndCostsNoMoreThanItsLimit) {
    children->single = [](const std::vector<std::string>&) {
        return test::ScriptedChildren::Single{.seconds = 1e6};
    };
    const double begin = rig.machine.time.continuousSeconds();
    rig.model.detector().detectCameras();
    while (rig.model.detector().detecting().get())
        rig.run(0.1);
    EXPECT_TRUE(rig.logged("does not answer as it should (timed out after 5s"));
    EXPECT_LT(rig.machine.time.continuousSeconds() - begin, 8);
    EXPECT_EQ(children->living, 0);
}

TEST_F(GPhoto2FamilyTest, bodiesGetTheirProperNamesAndPhonesStayOut) {
    plugIn(4, "Nikon DSC D750 (PTP mode)", "NIKON DSC D750", "6001");
    plugIn(5, "USB PTP Class Camera", "NIKON DSC Z 8", "6002");
    plugIn(6, "Apple iPhone (PTP mode)", "iPhone", "6003");
    plugIn(7, "Canon EOS R5", "Canon Digital Camera", "");
    rig.model.roster().setLabelOfSerial("6002", "WIDE");
    detect();
    EXPECT_THAT(bodies(), ElementsAre(HasSubstr("D750"), "WIDE 6002", HasSubstr("EOS R5")));
    EXPECT_EQ(rig.model.detector().hubs().at("6001"), "1-2");

    bus.plugged.reset(); // what cannot be looked at hides no body that gphoto2 sees
    detect();
    EXPECT_EQ(bodies().size(), 4U);
}

TEST_F(GPhoto2FamilyTest, aLabelWithCommasAndQuotesStaysOneFieldOfTheRunLog) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "6001");
    rig.model.roster().setLabelOfSerial("6001", "LEFT, \"wide\"; 24 mm");
    detect();
    rig.load(rig.frameAt(0, "LEFT"));
    rig.playFrom(-1);
    rig.run(5);
    EXPECT_THAT(rig.files.only(".csv"), HasSubstr(",LEFT,\"LEFT, \"\"wide\"\"; 24 mm\",6001,gphoto2,"));
    EXPECT_THAT(sent(), ElementsAre("set-config-value iso=200\nset-config-value f-number=f/8\n"
                                    "set-config-value shutterspeed2=1/500\ntrigger-capture\n"));
}

// A dial that is not on M shows one shutter or none. The frames go out as they are written.
TEST_F(GPhoto2FamilyTest, aBodyWithOneShutterOrNoneGetsTheFramesAsWritten) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "6001");
    program->modelStats().set({{"Nikon DSC D750", 53}});
    rig.model.roster().setLabelOfSerial("6001", "CAM1");
    for (const std::size_t offered : {std::size_t{1}, std::size_t{0}}) {
        shutters.assign(offered, "1/60");
        warnings.clear();
        detect();
        rig.run(1); // its warm-up
        ASSERT_EQ(warnings.size(), 1U) << offered;
        EXPECT_THAT(warnings[0], HasSubstr(absl::StrFormat("reported only %d shutter speed(s)", offered)));
        sent();
        rig.load(rig.frameAt(0));
        rig.playFrom(-1);
        rig.run(5);
        EXPECT_THAT(sent(), ElementsAre(HasSubstr("set-config-value shutterspeed=1/500\n"))) << offered;
        EXPECT_FALSE(rig.logged("SHUTTER MISMATCH"));
        rig.model.transport().togglePlay();
    }
}

TEST_F(GPhoto2FamilyTest, aBodyThatWasTooBusyToTellItsShuttersIsAskedAgain) {
    plugIn(4, "Fuji Fujifilm X-T5", "X-T5", "F77");
    children->silentPort = "usb:001,004";
    rig.model.batteries().startBatteryHeartbeat();
    detect();
    const auto body = std::dynamic_pointer_cast<cameras::GPhoto2Camera>(rig.model.roster().cameras().front());
    ASSERT_TRUE(body);
    rig.run(20); // the reading at Detect has given up
    EXPECT_TRUE(body->exposureChoices().empty());
    children->silentPort.clear();
    rig.run(50);
    EXPECT_EQ(body->exposureChoices().shutter.size(), shutters.size());
}

TEST_F(GPhoto2FamilyTest, aBodyThatNeverGivesAPromptIsListedAndDropsItsFrames) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "6001");
    plugIn(5, "Nikon DSC D850", "NIKON DSC D850", "6002");
    children->silentPort = "usb:001,005";
    rig.model.roster().setLabelOfSerial("6001", "CAM1");
    rig.model.roster().setLabelOfSerial("6002", "CAM2");
    detect();
    rig.run(120); // its warm-up has given up
    EXPECT_THAT(bodies(), ElementsAre("CAM1 6001", "CAM2 6002"));
    rig.load(rig.frameAt(0) + rig.frameAt(0.5, "CAM2") + rig.frameAt(60));
    rig.playFrom(-1);
    rig.run(90);
    std::vector<std::string> results;
    for (const auto& row : rig.rows())
        results.push_back(row[5] + " " + row[13]);
    EXPECT_THAT(results, ElementsAre("CAM1 ok", "CAM2 dropped", "CAM1 ok"));
    EXPECT_TRUE(rig.logged("couldn't claim the camera (session rebuild failed)"));
    EXPECT_EQ(children->living, 1);
}

TEST_F(GPhoto2FamilyTest, twoBodiesOfOneSerialNumberFireEachForItself) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "1");
    plugIn(5, "Nikon DSC D850", "NIKON DSC D850", "1");
    detect();
    EXPECT_TRUE(rig.logged("Two bodies report the serial number 1"));
    const auto& cameras = rig.model.roster().cameras();
    ASSERT_EQ(cameras.size(), 2U);
    EXPECT_NE(cameras[0]->id(), cameras[1]->id());
    rig.model.roster().setLabel(*cameras[0], "CAM1");
    rig.model.roster().setLabel(*cameras[1], "CAM2");
    rig.load(rig.frameAt(0) + rig.frameAt(1, "CAM2"));
    rig.playFrom(-1);
    rig.run(5);
    EXPECT_EQ(sent().size(), 2U);
    EXPECT_EQ(cameras[0]->shotCount(), 1);
    EXPECT_EQ(cameras[1]->shotCount(), 1);

    const auto healthy = cameras[1];
    rig.model.reconnect().requestReconnect(cameras[0]);
    EXPECT_TRUE(rig.logged("CAM1 can't be single-camera reconnected (no serial). Use Detect."));
    rig.model.reconnect().flagDisconnect(cameras[0]);
    rig.run(20);
    EXPECT_FALSE(rig.logged("RECONNECTED")) << "the healthy one would be taken for the lost one";
    EXPECT_EQ(rig.model.roster().cameras()[1], healthy);
}

TEST_F(GPhoto2FamilyTest, aBodyIsGoneWhenItsPortIsEmptyOrAnothersAndNotWhenTheBusCannotBeSeen) {
    plugIn(4, "Nikon DSC D750", "NIKON DSC D750", "1");
    plugIn(5, "Nikon DSC D850", "NIKON DSC D850", "2");
    const std::vector<rig::HeldBody> held{{.id = "a", .serial = "1", .port = "usb:001,004"},
                                          {.id = "b", .serial = "1", .port = "usb:001,005"},
                                          {.id = "c", .serial = "", .port = "usb:001,005"},
                                          {.id = "d", .serial = "", .port = "usb:001,006"}};
    EXPECT_THAT(family->goneFromBus(held), ElementsAre("b", "d"));
    bus.plugged.reset();
    EXPECT_THAT(family->goneFromBus(held), IsEmpty());
}

TEST_F(GPhoto2FamilyTest, aLostBodyIsFoundOnAnotherPortByItsSerialNumberAlone) {
    plugIn(9, "Nikon DSC D750", "NIKON DSC D750", "6002");
    plugIn(12, "Nikon DSC D750", "NIKON DSC D750", "6001");
    const rig::DownBody lost{
        .id = "old", .serial = "6001", .model = "Nikon DSC D750", .label = "CAM1", .backend = "gphoto2"};
    const auto back = family->rebind({lost}, [](const std::string&) {});
    ASSERT_EQ(back.size(), 1U);
    EXPECT_EQ(back[0].id, "old");
    const auto camera = std::dynamic_pointer_cast<cameras::GPhoto2Camera>(back[0].make());
    ASSERT_TRUE(camera);
    EXPECT_EQ(camera->port(), "usb:001,012");
    EXPECT_EQ(camera->serial(), "6001");
    EXPECT_THAT(singles, ElementsAre("--auto-detect", "--summary")) << "the other body was not troubled";
}
