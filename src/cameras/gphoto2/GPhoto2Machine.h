#pragma once

#include "base/Instant.h"
#include "cameras/usb/CameraDaemons.h"
#include "ports/ChildProcess.h"
#include "ports/Clock.h"
#include "ports/Files.h"
#include "ports/Folders.h"
#include "ports/MainLoop.h"
#include "ports/Settings.h"
#include "ports/WorkQueues.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <thread>

namespace zenka::cameras {

/// What the gphoto2 drivers stand on. All of it outlives them and their queues.
struct GPhoto2Machine {
    ports::ChildProcesses& children;
    CameraDaemons& daemons;
    ports::WorkQueues& queues;
    ports::MainLoop& loop;
    ports::Clock& clock;
    ports::Settings& settings; ///< main thread
    ports::Folders& folders;
    ports::Files& files;

    std::filesystem::path programFolder; ///< of this executable; a gphoto2 of our own lies beside it

    /// A sentence for the operator on a body's profile. Main thread.
    std::function<void(const std::string& sentence)> warn = [](const std::string&) {};

    using Fields = std::map<std::string, std::string>;
    /// An event worth reporting. Main thread.
    std::function<void(const std::string& event, const Fields& fields)> report = [](const std::string&,
                                                                                    const Fields&) {};

    /// How a worker waits where there is nothing to hear from. Never on the main thread.
    std::function<void(base::Seconds)> pause = [](base::Seconds span) { std::this_thread::sleep_for(span); };
};

} // namespace zenka::cameras
