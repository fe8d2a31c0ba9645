#pragma once

#include "cameras/gphoto2/GPhoto2Program.h"
#include "cameras/usb/USBHolders.h"
#include "rig/links/CanonFamily.h"
#include "rig/links/GPhoto2Family.h"
#include "rig/links/LumixFamily.h"
#include "rig/links/SonyFamily.h"
#include "support/Drivers.h"
#include "support/FakeCrSDK.h"
#include "support/ScriptedChildren.h"
#include "support/ScriptedHelpers.h"
#include "support/ScriptedUsb.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"
#include "support/fake_edsdk/EdsdkLibrary.h"

#include <absl/strings/str_format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace zenka::test {

/// A rig on all ways to real bodies, each of which fails now and then: a Canon, a Sony, two Lumix, a Nikon in
/// a held session and a Fujifilm fired one run of gphoto2 a frame.
struct SixFailingBodies {
    struct Kind {
        std::string listedAs;
        std::string serial;
        int vid = 0;
    };
    const std::vector<Kind> listed{
        {.listedAs = "Sony Alpha-A7 IV (Control)", .serial = "ab01", .vid = 0x054c},
        {.listedAs = "Panasonic DC-G9M2 LUMIX", .serial = "L1", .vid = 0x04da},
        {.listedAs = "Panasonic DC-S5M2 LUMIX", .serial = "L2", .vid = 0x04da},
        {.listedAs = "Nikon DSC D750", .serial = "N1", .vid = 0x04b0},
        {.listedAs = "Fuji Fujifilm X-T5", .serial = "F1", .vid = 0x04cb}};

    std::mt19937 random;
    ScriptedUsbBus bus;
    ScriptedProcessTable processes;
    EdsdkLibrary edsdk;
    FakeCrSDK crsdk;
    std::optional<ScriptedChildren> children;
    std::optional<ScriptedHelpers> helpers;
    std::optional<cameras::CameraDaemons> daemons;
    std::optional<cameras::DriverMachine> driver;
    std::optional<cameras::GPhoto2Program> program;
    std::optional<cameras::CanonEDSDK> sdk;
    std::shared_ptr<rig::CanonFamily> canon;
    TempFolder programs; // where a Lumix helper is to be found
    bool faults = false;
    double busyShare = 0.02; ///< of the frames that a body refuses
    double battery = 84;     ///< of the Lumix bodies, percent; without any they are gone
    /// A body that is fired by gphoto2.
    struct Fired {
        double floor = 0.002; ///< seconds for which a frame keeps it from another one
        double readyAt = 0;   ///< continuous seconds
        int frames = 0;
        int tooEarly = 0; ///< triggers that came before it was ready

        void trigger(double now, bool takes) {
            tooEarly += now < readyAt - 1e-9;
            frames += takes;
            if (takes)
                readyAt = now + floor;
        }
    };
    Fired nikon;
    Fired fuji{.floor = 0.05};

    std::unique_ptr<VirtualRig> rig =
        std::make_unique<VirtualRig>([this](platform::VirtualPorts& machine) { return familiesOn(machine); });

    bool chance(double share) { return faults && std::uniform_real_distribution<>(0, 1)(random) < share; }

    void plugIn(const Kind& kind) {
        bus.plugged->push_back({.product = kind.listedAs,
                                .vendor = {},
                                .serial = kind.serial,
                                .vid = kind.vid,
                                .pid = 1,
                                .busNumber = 1,
                                .address = static_cast<int>(&kind - listed.data()) + 4,
                                .hub = {}});
    }

    rig::CameraDetector::Families familiesOn(platform::VirtualPorts& machine) {
        children.emplace(machine.time);
        helpers.emplace(machine.time);
        daemons.emplace(processes, machine.queues);
        driver.emplace(driversOn(machine));
        cameras::GPhoto2Machine here{.children = *children,
                                     .daemons = *daemons,
                                     .queues = machine.queues,
                                     .loop = machine.loop,
                                     .clock = machine.time,
                                     .settings = machine.settings,
                                     .folders = machine.all.folders,
                                     .files = machine.all.files};
        here.pause = driver->pause;
        program.emplace(here);
        sdk.emplace(canonOn(*driver, edsdk, bus, processes, *daemons));
        std::ofstream(programs.path() / "zenka-lumix-helper") << "\n";
        script();
        canon = std::make_shared<rig::CanonFamily>(*sdk, machine.settings);
        const auto waits = std::make_shared<VirtualSonyWaits>(machine.time);
        return {
            canon,
            std::make_shared<rig::LumixFamily>(cameras::LumixMachine{.drivers = *driver,
                                                                     .children = *helpers,
                                                                     .programFolder = programs.path()},
                                               bus, *daemons),
            std::make_shared<rig::SonyFamily>(rig::SonyFamily::Machine{
                .driver = *driver, .libraries = crsdk, .daemons = *daemons, .rivals = {}, .waits = waits}),
            std::make_shared<rig::GPhoto2Family>(*program, bus)};
    }

    /// What each body does, and how it fails.
    void script() {
        crsdk.bodies.push_back({.model = "ILCE-7M4", .id = {0xab, 0x01}});
        children->single = [this](const std::vector<std::string>& arguments) { return single(arguments); };
        children->answer = [this](const std::string& command) { return shell(command); };
        helpers->answer = [this](const auto& request) { return helper(request["cmd"] == "fire"); };
        for (const Kind& kind : listed)
            plugIn(kind);
    }

    ScriptedChildren::Single single(const std::vector<std::string>& arguments) {
        if (arguments.back() == "--version")
            return {.out = "gphoto2 2.5.28\n"};
        if (arguments.back() == "--auto-detect") {
            std::string table = "Model                          Port\n"
                                "----------------------------------------------------------\n";
            for (const auto& device : *bus.plugged)
                if (device.vid != cameras::USBHolders::canonVendorID)
                    table += absl::StrFormat("%-30s usb:001,%03d\n", device.product, device.address);
            return {.out = table};
        }
        const bool trigger = std::ranges::find(arguments, "--trigger-capture") != arguments.end();
        const bool busy = chance(busyShare);
        const bool hangs = !busy && chance(0.005);
        if (trigger)
            fuji.trigger(rig->machine.time.continuousSeconds(), !busy && !hangs);
        if (busy)
            return {.code = 1, .err = "*** Error ***\nPTP Device Busy\n"};
        return {.seconds = hangs ? 1e6 : trigger ? fuji.floor : 0.05};
    }

    ScriptedChildren::Answer shell(const std::string& command) {
        const bool trigger = command.starts_with("trigger-capture");
        const bool busy = trigger && chance(busyShare);
        const bool hangs = !busy && chance(0.002);
        const bool dies = !busy && !hangs && chance(0.002);
        if (trigger)
            nikon.trigger(rig->machine.time.continuousSeconds(), !busy && !hangs && !dies);
        if (busy)
            return {.text = "*** Error ***\nPTP Device Busy\n"};
        if (hangs || dies)
            return {.hangs = hangs, .dies = dies};
        std::string text;
        if (command == "get-config expprogram")
            text = "Current: M\n";
        if (command.starts_with("get-config shutterspeed"))
            for (int i = 0; const char* choice : {"1/2000", "1/1000", "1/500", "1/250", "1/2", "1", "Bulb"})
                text += absl::StrFormat("Choice: %d %s\n", i++, choice);
        return {.text = text + "END\n", .seconds = trigger ? nikon.floor : 0.002};
    }

    ScriptedHelpers::Answer helper(bool fire) {
        if (chance(0.004) || battery <= 0)
            return {.dies = true};
        if (chance(0.001))
            return {.silent = true};
        if (chance(0.003))
            return {.raw = "nonsense\n"};
        if (!fire)
            return {.words = {{"confirmed", helpers->confirmed}, {"battery", std::max(0.0, battery)}}};
        const bool fires = !chance(busyShare);
        helpers->confirmed += fires;
        return {.words = {{"fired", fires}, {"set_ok", !chance(0.02)}, {"confirmed", helpers->confirmed}}};
    }

    /// Between the frames: what the next frames of Canon and Sony come to, cables pulled and put back.
    void stir() {
        auto& canonFires = edsdk.fake().results["fire"];
        for (const auto& [share, code] : {std::pair(0.2, 0x81U), {0.1, 97U}, {0.05, 132U}})
            if (chance(share))
                canonFires.push_back(code);
        crsdk.bodies[0].fireError = chance(0.05) ? 33288 : 0;
        crsdk.bodies[0].silentConnects = chance(0.05) ? 1 : 0;
        crsdk.bodies[0].answers = !chance(0.05);
        if (chance(0.03))
            crsdk.warn(0, 0x20002);
        else
            crsdk.warn(0, 0x20001);
        for (const Kind& kind : listed)
            pullOrPutBack(kind);
        auto& bodies = edsdk.fake().bodies;
        if (bodies.empty()) {
            plugInCanon();
        } else if (chance(0.02)) {
            edsdk.fake().events.emplace_back(0x301, bodies.front().model);
            bodies.clear();
            std::erase_if(*bus.plugged, [](const auto& device) { return device.serial == "C1"; });
        }
    }
    void pullOrPutBack(const Kind& kind) {
        const auto gone = std::erase_if(
            *bus.plugged, [&](const auto& device) { return device.serial == kind.serial && chance(0.01); });
        const bool there = std::ranges::any_of(
            *bus.plugged, [&](const auto& device) { return device.serial == kind.serial; });
        if (gone > 0)
            bus.tellChange();
        else if (!there)
            plugIn(kind);
    }
    void plugInCanon() {
        edsdk.fake().bodies.push_back({.model = "Canon EOS R5", .serial = "C1"});
        bus.plugged->push_back({.product = "Canon Digital Camera",
                                .vendor = {},
                                .serial = "C1",
                                .vid = cameras::USBHolders::canonVendorID,
                                .pid = 1,
                                .busNumber = 1,
                                .address = 20,
                                .hub = {}});
    }

    /// All six in the roster. Canon's library wants the bus for itself at a detection, so it comes behind.
    void detectAll() {
        auto& model = rig->model;
        model.detector().detectCameras();
        rig->run(30);
        plugInCanon();
        auto bodies = model.roster().cameras();
        const auto tell = [](const std::string&) {};
        const auto seen = canon->enumerate({}, tell);
        ASSERT_EQ(seen.size(), 1U);
        bodies.push_back(canon->connect(seen[0], tell)());
        model.roster().setRealCameras(bodies);
        ASSERT_EQ(bodies.size(), 6U);
        for (std::size_t i = 0; i < bodies.size(); ++i)
            model.roster().setLabel(*bodies[i], absl::StrFormat("CAM%d", i + 1));
        std::set<std::string> backends;
        for (const auto& body : bodies)
            backends.insert(body->backend());
        ASSERT_EQ(backends.size(), 4U);
    }
};

} // namespace zenka::test
