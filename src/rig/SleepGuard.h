#pragma once

#include "base/Published.h"
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

    /// Whether sleep is being held off, as far as the desktop lets it.
    const base::Published<bool>& holding() const { return holding_; }

private:
    ports::KeepAwake& keepAwake_;
    RigLog& log_;
    std::optional<bool> heldForLive_; // absent while nothing is held
    base::Published<bool> holding_{false};
};

} // namespace zenka::rig
