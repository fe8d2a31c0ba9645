#pragma once

#include <optional>
#include <span>
#include <string>

namespace zenka::cli {

struct HorizonPlace {
    double lat = 0; ///< degrees, north positive
    double lon = 0; ///< degrees, east positive
};

/// The place that two values tell of; nothing when one is no number.
std::optional<HorizonPlace> placeIn(std::span<const std::string> values);

/// --horizon-test LAT LON: finds the horizon of a place, buildings included, and prints it. What could not
/// be had goes to the error stream.
void printHorizon(const HorizonPlace& place);

} // namespace zenka::cli
