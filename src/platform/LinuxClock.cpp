#include "platform/LinuxClock.h"

#include "platform/Nanoseconds.h"

#include <sys/timex.h>

namespace zenka::platform {

base::Instant LinuxClock::now() const {
    return {secondsOf(readClock(CLOCK_REALTIME))};
}

double LinuxClock::continuousSeconds() const {
    return secondsOf(readClock(CLOCK_BOOTTIME));
}

double LinuxClock::uptimeSeconds() const {
    return secondsOf(readClock(CLOCK_MONOTONIC));
}

std::optional<bool> LinuxClock::synchronised() const {
    timex state{}; // no modes: it is only read
    if (::adjtimex(&state) < 0)
        return std::nullopt;
    // Not by STA_UNSYNC, which some services leave set so that the kernel keeps its hands off the hardware
    // clock; timedatectl decides likewise.
    constexpr long errorLimitUs = 16'000'000;
    return state.maxerror < errorLimitUs;
}

} // namespace zenka::platform
