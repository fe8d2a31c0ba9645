#pragma once

#include <algorithm>
#include <cstdint>
#include <sys/timerfd.h>
#include <time.h>

namespace zenka::platform {

/// Instants and spans of the system's clocks as whole nanoseconds, so that sums are exact.
using Nanoseconds = std::int64_t;

inline constexpr Nanoseconds oneSecondNs = 1'000'000'000;

/// A span that no process lives through, and that may still be added to any instant.
inline constexpr Nanoseconds foreverNs = INT64_MAX / 4;

/// Of a timer that repeats: less would keep a processor busy.
inline constexpr Nanoseconds shortestPeriodNs = 100'000;

inline Nanoseconds readClock(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return Nanoseconds{time.tv_sec} * oneSecondNs + time.tv_nsec;
}

inline double secondsOf(Nanoseconds span) {
    const Nanoseconds whole = span / oneSecondNs;
    return static_cast<double>(whole) + static_cast<double>(span % oneSecondNs) * 1e-9;
}

/// Held to 0 ... forever; what is no number is 0.
inline Nanoseconds nanosecondsOf(double seconds) {
    if (!(seconds > 0))
        return 0;
    const double span = seconds * 1e9;
    return span < static_cast<double>(foreverNs) ? static_cast<Nanoseconds>(span) : foreverNs;
}

inline timespec timespecOf(Nanoseconds span) {
    return {.tv_sec = span / oneSecondNs, .tv_nsec = span % oneSecondNs};
}

/// Sets a timerfd to one absolute instant of its clock, at once for a past one; forever disarms it.
inline void armTimer(int timer, Nanoseconds instant) {
    itimerspec setting{};
    if (instant < foreverNs)
        setting.it_value = timespecOf(std::max<Nanoseconds>(instant, 1)); // 0 would disarm
    timerfd_settime(timer, TFD_TIMER_ABSTIME, &setting, nullptr);
}

/// The first instant behind `now` on the grid of `instant` plus whole periods.
inline Nanoseconds nextOnGrid(Nanoseconds instant, Nanoseconds period, Nanoseconds now) {
    return now < instant ? instant : instant + ((now - instant) / period + 1) * period;
}

} // namespace zenka::platform
