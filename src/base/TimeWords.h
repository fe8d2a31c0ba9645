#pragma once

#include "base/Instant.h"

#include <optional>
#include <string>
#include <string_view>

/// Times as a person reads them. A zone is given by its identifier; an unknown one counts as UTC.
namespace zenka::base {

/// The time of day, "20:29:03", cut.
std::string localHMS(Instant instant, std::string_view tz);

/// The short name of the zone at an instant, "CEST". Zones without one go by their identifier: "Sao Paulo",
/// and those of a fixed offset by that, "UTC−6".
std::string tzAbbr(std::string_view tz, Instant at);

/// A duration, "00:11:41", from a day on "8d 23:03:04". Cut; the sign is not told.
std::string durHMS(double seconds);

struct TimeOfDay {
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Reads "20:29" or "20:29:03", blanks around it allowed; nothing for any other text.
std::optional<TimeOfDay> readTimeOfDay(std::string_view text);

/// The time of day so many seconds on, around midnight, as "20:29:03".
std::string laterTimeOfDay(const TimeOfDay& time, int seconds);

} // namespace zenka::base
