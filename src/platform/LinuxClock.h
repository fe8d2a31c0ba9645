#pragma once

#include "ports/Clock.h"

namespace zenka::platform {

/// CLOCK_REALTIME, CLOCK_BOOTTIME and CLOCK_MONOTONIC.
class LinuxClock final : public ports::Clock {
public:
    base::Instant now() const override;
    double continuousSeconds() const override;
    double uptimeSeconds() const override;
};

} // namespace zenka::platform
