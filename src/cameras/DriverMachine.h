#pragma once

#include "base/Instant.h"
#include "ports/Clock.h"
#include "ports/MainLoop.h"
#include "ports/WorkQueues.h"

#include <functional>
#include <map>
#include <string>
#include <thread>

namespace zenka::cameras {

/// What the drivers of the makers' own links stand on. All of it outlives them and their queues.
struct DriverMachine {
    ports::WorkQueues& queues;
    ports::MainLoop& loop;
    ports::Clock& clock;

    using Fields = std::map<std::string, std::string>;
    /// An event worth reporting. Main thread.
    std::function<void(const std::string& event, const Fields& fields)> report = [](const std::string&,
                                                                                    const Fields&) {};

    /// How a worker waits where there is nothing to hear from. Never on the main thread.
    std::function<void(base::Seconds)> pause = [](base::Seconds span) { std::this_thread::sleep_for(span); };
};

} // namespace zenka::cameras
