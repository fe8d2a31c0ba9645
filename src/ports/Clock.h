#pragma once

#include "base/Instant.h"

#include <optional>

namespace zenka::ports {

/// The clocks of the machine. Any thread.
class Clock {
public:
    virtual ~Clock() = default;

    /// Wall time. It may jump when the system's time is set.
    virtual base::Instant now() const = 0;

    /// Seconds of a clock that never jumps and runs on while the machine sleeps.
    virtual double continuousSeconds() const = 0;

    /// Seconds of a clock that never jumps and stands still while the machine sleeps.
    virtual double uptimeSeconds() const = 0;

    /// Whether a time service of the system says that it keeps the wall time right; absent where it cannot
    /// be told.
    virtual std::optional<bool> synchronised() const { return std::nullopt; }
};

} // namespace zenka::ports
