#pragma once

#include "gps/GPSFix.h"

#include <optional>
#include <string_view>

/// The sentences that a satellite receiver streams, by NMEA 0183. Nothing in them is trusted: a field that
/// is empty, cannot be read or lies out of its range leaves the value before it.
namespace zenka::gps::NMEA {

/// Takes a sentence, without its line end, into a fix. True when it was understood and changed or confirmed
/// the fix; any talker's RMC, GGA and GSV are.
bool apply(std::string_view line, GPSFix& fix);

/// The sum behind the "*" is that of the sentence.
bool checksumOK(std::string_view line);

/// Degrees of a field of degrees and minutes, "4807.038" with two digits of degrees.
std::optional<double> coord(std::string_view value, std::string_view hemi, int degWidth);

/// The instant of "123519.50" and "230394", in the years 2000 to 2099.
std::optional<base::Instant> rmcDate(std::string_view time, std::string_view date);

} // namespace zenka::gps::NMEA
