#include "platform/LinuxClock.h"

#include "platform/Nanoseconds.h"

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

} // namespace zenka::platform
