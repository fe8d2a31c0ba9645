#pragma once

#include "base/Published.h"
#include "ports/KeepAwake.h"
#include "rig/shared/RigLog.h"

#include <optional>

namespace zenka::rig {

/// Keeps the machine awake while a run is on, and says so.
class SleepGuard {
public:
    SleepGuard(ports::KeepAwake& keepAwake, RigLog& log) : keepAwake_(keepAwake), log_(log) {}

    /// Takes the state that the run is in now.
    void update(bool live, bool playing);

    /// Sleep is held off, as far as the desktop lets it: for a live run or for another; absent while it is
    /// not.
    const base::Published<std::optional<bool>>& heldForLive() const { return heldForLive_; }

private:
    ports::KeepAwake& keepAwake_;
    RigLog& log_;
    base::Published<std::optional<bool>> heldForLive_;
};

} // namespace zenka::rig
