#pragma once

#include "base/Instant.h"

#include <absl/time/civil_time.h>
#include <absl/time/time.h>

#include <optional>
#include <string>
#include <string_view>

namespace zenka::base {

/// The zone of an identifier such as "Europe/Madrid" or "UTC"; nothing when it is unknown.
/// The first look-up of a zone reads its file, later ones are remembered. Any thread.
std::optional<absl::TimeZone> findTimeZone(std::string_view id);

/// The same, with UTC for an unknown identifier.
absl::TimeZone timeZoneOrUtc(std::string_view id);

/// The zone of the machine.
absl::TimeZone machineTimeZone();

absl::Time toAbsl(Instant instant);
Instant fromAbsl(absl::Time time);

/// Formats an instant in a zone. The pattern is absl::FormatTime's, with %E1S and %E3S for fractional
/// seconds, which are cut and not rounded: 18:59:59.9996 reads 18:59:59.999.
std::string formatTime(std::string_view pattern, Instant instant, const absl::TimeZone& zone);

/// The civil date and time of an instant in a zone.
absl::CivilSecond civilTime(Instant instant, const absl::TimeZone& zone);

/// The instant of a civil time. In a gap of the zone the time is read with the offset before it, in an
/// overlap the earlier instant is taken.
Instant instantOf(absl::CivilSecond civil, const absl::TimeZone& zone);

} // namespace zenka::base
