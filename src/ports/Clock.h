#pragma once

#include "base/Instant.h"

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
};

} // namespace zenka::ports
