#include "base/CivilTime.h"

#include <cmath>
#include <cstdint>

namespace zenka::base {

std::optional<absl::TimeZone> findTimeZone(std::string_view id) {
    absl::TimeZone zone;
    // Besides zone names the loader takes file paths ("file:..." and "/..."), which no identifier may be.
    if (id.empty() || id.starts_with('/') || id.starts_with("file:") || id.find("..") != id.npos ||
        !absl::LoadTimeZone(std::string(id), &zone))
        return std::nullopt;
    return zone;
}

absl::TimeZone timeZoneOrUtc(std::string_view id) {
    return findTimeZone(id).value_or(absl::UTCTimeZone());
}

absl::TimeZone machineTimeZone() {
    return absl::LocalTimeZone();
}

absl::Time toAbsl(Instant instant) {
    // To whole microseconds, so that 0.1 s stays 100 ms where the double lies a hair below; as an integer, as
    // a double of nanoseconds has gaps of 256 of them.
    constexpr double most = 9e18;
    const double microseconds = std::round(instant.epochSec * 1e6);
    const bool countable = microseconds > -most && microseconds < most;
    return absl::UnixEpoch() + (countable ? absl::Microseconds(static_cast<std::int64_t>(microseconds))
                                          : absl::Microseconds(microseconds));
}

Instant fromAbsl(absl::Time time) {
    return {absl::ToDoubleSeconds(time - absl::UnixEpoch())};
}

std::string formatTime(std::string_view pattern, Instant instant, const absl::TimeZone& zone) {
    return absl::FormatTime(std::string(pattern), toAbsl(instant), zone);
}

absl::CivilSecond civilTime(Instant instant, const absl::TimeZone& zone) {
    return absl::ToCivilSecond(toAbsl(instant), zone);
}

Instant instantOf(absl::CivilSecond civil, const absl::TimeZone& zone) {
    return fromAbsl(absl::FromCivil(civil, zone));
}

} // namespace zenka::base
