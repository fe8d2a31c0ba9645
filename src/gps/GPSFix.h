#pragma once

#include "base/Instant.h"

#include <optional>

namespace zenka::gps {

/// What a receiver knows of time and place.
struct GPSFix {
    bool hasFix = false;
    std::optional<base::Instant> utc; ///< of the last sentence with a valid time
    std::optional<double> lat;        ///< degrees, south negative
    std::optional<double> lon;        ///< degrees, west negative
    std::optional<double> altitudeM;  ///< above mean sea level
    int satsUsed = 0;
    int satsInView = 0;
    std::optional<double> hdop; ///< horizontal dilution of precision

    friend bool operator==(const GPSFix&, const GPSFix&) = default;
};

} // namespace zenka::gps
