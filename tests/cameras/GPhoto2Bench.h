#pragma once

#include "cameras/gphoto2/GPhoto2Camera.h"
#include "platform/virtual/VirtualPorts.h"
#include "support/Drivers.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedChildren.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zenka::test {

inline const cameras::Shot totality{.iso = 200, .aperture = 8, .shutterSec = 0.002};

/// gphoto2 drivers on scripted children in virtual time.
struct GPhoto2Bench {
    MemoryFiles files;
    MemoryFolders folders;
    platform::VirtualPorts ports{base::Instant{1786557600}, folders, files};
    ScriptedChildren children{ports.time};
    ScriptedProcesses processes;
    cameras::CameraDaemons daemons{processes, ports.queues};
    std::vector<std::string> warnings;
    std::vector<std::string> events; ///< "event key=value ..."
    cameras::GPhoto2Program program{machine()};

    GPhoto2Bench() = default;
    GPhoto2Bench(const GPhoto2Bench&) = delete;
    GPhoto2Bench& operator=(const GPhoto2Bench&) = delete;
    ~GPhoto2Bench() { settle(); } // cameras that have gone let their sessions go

    cameras::GPhoto2Machine machine() {
        cameras::GPhoto2Machine machine{.children = children,
                                        .daemons = daemons,
                                        .queues = ports.queues,
                                        .loop = ports.loop,
                                        .clock = ports.time,
                                        .settings = ports.settings,
                                        .folders = folders,
                                        .files = files};
        machine.warn = [this](const std::string& sentence) { warnings.push_back(sentence); };
        machine.report = [this](const std::string& event, const cameras::GPhoto2Machine::Fields& fields) {
            std::string text = event;
            for (const auto& [key, value] : fields)
                text += " " + key + "=" + value;
            events.push_back(text);
        };
        machine.pause = [this](base::Seconds span) { ports.time.sleepFor(span); };
        return machine;
    }

    std::unique_ptr<cameras::GPhoto2Camera> body(const std::string& model = "Nikon DSC D750") {
        return std::make_unique<cameras::GPhoto2Camera>(
            program, cameras::GPhoto2Camera::Body{.id = "gp1", .model = model, .port = "usb:001,004"});
    }

    void run(double seconds) { ports.time.runFor(base::Seconds{seconds}); }

    /// Runs what is due, also what work that takes time leaves behind.
    void settle() {
        for (int round = 0; round < 4; ++round)
            run(0);
    }

    cameras::CaptureOutcome shoot(cameras::GPhoto2Camera& camera, const cameras::Shot& shot = {}) {
        return shotOn(ports, camera, shot);
    }

    /// The commands since the last call, set-up and "exit" left out.
    std::vector<std::string> sent() {
        std::vector<std::string> shots;
        for (const std::string& command : std::exchange(children.commands, {}))
            if (!command.starts_with("get-config") && command.find("capturetarget") == command.npos &&
                command.find("controlmode") == command.npos && command != "exit")
                shots.push_back(command);
        return shots;
    }
};

/// A body in Manual with a full ladder.
inline ScriptedChildren::Answer fullAnswer(const std::string& command) {
    const auto list = [](std::initializer_list<const char*> values) {
        std::string text = "Current: M\n";
        int index = 0;
        for (const char* value : values)
            text += "Choice: " + std::to_string(index++) + " " + value + "\n";
        return ScriptedChildren::Answer{.text = text + "END\n"};
    };
    if (command == "get-config shutterspeed")
        return list({"0.0005s", "0.0010s", "0.0020s", "0.0040s", "0.5000s", "1.0000s", "bulb"});
    if (command == "get-config shutterspeed2")
        return list({"1/2000", "1/1000", "1/500", "1/250", "1/2", "1", "Bulb"});
    if (command == "get-config iso")
        return list({"Auto", "100", "200", "400"});
    if (command == "get-config f-number")
        return list({"f/5.6", "f/8", "f/11"});
    if (command == "capture-image")
        return {.text = "New file is in location /store_00010001/DCIM/IMG_0001.JPG on the camera\n"};
    return {};
}

} // namespace zenka::test
