#pragma once

#include "ports/Clock.h"

namespace zenka::platform {

/// CLOCK_REALTIME, CLOCK_BOOTTIME and CLOCK_MONOTONIC.
class LinuxClock final : public ports::Clock {
public:
    base::Instant now() const override;
    double continuousSeconds() const override;
    double uptimeSeconds() const override;

    /// What the time services tell the kernel (adjtimex): a limit of the error below 16 s. It grows by half a
    /// millisecond a second while no service tells anew, so a time that was kept right stays so for nine
    /// hours.
    std::optional<bool> synchronised() const override;
};

} // namespace zenka::platform
