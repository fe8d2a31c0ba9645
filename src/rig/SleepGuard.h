#pragma once

#include "ports/KeepAwake.h"
#include "rig/RigLog.h"

#include <optional>

namespace zenka::rig {

/// Keeps the machine awake while a run is on, and says so.
class SleepGuard {
public:
    SleepGuard(ports::KeepAwake& keepAwake, RigLog& log) : keepAwake_(keepAwake), log_(log) {}

    /// Takes the state that the run is in now.
    void update(bool live, bool playing);

private:
    ports::KeepAwake& keepAwake_;
    RigLog& log_;
    std::optional<bool> heldForLive_; // absent while nothing is held
};

} // namespace zenka::rig
