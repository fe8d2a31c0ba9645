#pragma once

#include "base/CivilTime.h"

#include <absl/strings/str_format.h>

#include <cmath>
#include <string>
#include <string_view>

/// Sentences as a satellite receiver writes them, with their sums and line ends.
namespace zenka::test::nmea {

/// What a made-up receiver sees.
struct Sky {
    bool hasFix = true;
    double lat = 42.5; ///< degrees, south negative
    double lon = -3.7; ///< degrees, west negative
    double altitudeM = 850;
    int satsUsed = 8;
    int satsInView = 11;
    double hdop = 0.9;
    std::string talker = "GP";
};

inline std::string sentence(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    return absl::StrFormat("$%s*%02X\r\n", std::string(body), sum);
}

/// An instant to the nearest millisecond, its whole seconds by a pattern: "170005.250".
inline std::string toMilliseconds(const std::string& pattern, base::Instant instant) {
    const long long milliseconds = std::llround(instant.epochSec * 1e3);
    const base::Instant second{static_cast<double>(milliseconds / 1000)};
    return base::formatTime(pattern, second, absl::UTCTimeZone()) +
           absl::StrFormat(".%03d", milliseconds % 1000);
}

/// "4230.0000,N"; empty fields without a fix.
inline std::string angle(double degrees, int width, std::string_view hemispheres, bool known) {
    if (!known)
        return ",";
    const double size = std::round(std::abs(degrees) * 60 * 1e4) / 1e4; // whole minutes do not read 60.0000
    const double whole = std::floor(size / 60);
    return absl::StrFormat("%0*d%07.4f,%c", width, static_cast<int>(whole), size - whole * 60,
                           hemispheres[degrees < 0 ? 1 : 0]);
}

inline std::string position(const Sky& sky) {
    return angle(sky.lat, 2, "NS", sky.hasFix) + "," + angle(sky.lon, 3, "EW", sky.hasFix);
}

/// A receiver without a fix tells the time of its own clock, with the status "V".
inline std::string rmc(base::Instant utc, const Sky& sky = {}) {
    return sentence(sky.talker + "RMC," + toMilliseconds("%H%M%S", utc) + (sky.hasFix ? ",A," : ",V,") +
                    position(sky) + ",0.0,0.0," + base::formatTime("%d%m%y", utc, absl::UTCTimeZone()) +
                    ",,," + (sky.hasFix ? "A" : "N"));
}

inline std::string gga(base::Instant utc, const Sky& sky = {}) {
    const std::string time = base::formatTime("%H%M%E3S", utc, absl::UTCTimeZone());
    return sentence(
        sky.talker + "GGA," + time + "," + position(sky) +
        (sky.hasFix ? absl::StrFormat(",1,%02d,%.1f,%.1f,M,46.9,M,,", sky.satsUsed, sky.hdop, sky.altitudeM)
                    : std::string(",0,00,99.99,,,,,,")));
}

inline std::string gsv(const Sky& sky = {}) {
    return sentence(absl::StrFormat("%sGSV,1,1,%02d,01,40,083,46", sky.talker, sky.satsInView));
}

/// All that a plain receiver sends in one second.
inline std::string second(base::Instant utc, const Sky& sky = {}) {
    return rmc(utc, sky) + gga(utc, sky) + gsv(sky);
}

} // namespace zenka::test::nmea
