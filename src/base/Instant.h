#pragma once

#include <chrono>
#include <compare>

namespace zenka::base {

/// A span of time. Seconds, fractional.
using Seconds = std::chrono::duration<double>;

/// An instant: seconds since 1970-01-01 00:00 UTC, without leap seconds, in double precision
/// (better than a microsecond through 2100).
struct Instant {
    double epochSec = 0;

    friend auto operator<=>(const Instant&, const Instant&) = default;
};

inline Instant operator+(Instant instant, Seconds span) {
    return {instant.epochSec + span.count()};
}

inline Instant operator-(Instant instant, Seconds span) {
    return {instant.epochSec - span.count()};
}

inline Seconds operator-(Instant later, Instant earlier) {
    return Seconds{later.epochSec - earlier.epochSec};
}

} // namespace zenka::base
