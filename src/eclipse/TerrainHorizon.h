#pragma once

#include <numbers>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zenka::eclipse::TerrainHorizon {

/// Radians in a degree.
inline constexpr double perDegree = std::numbers::pi / 180;
inline constexpr double earthRadiusM = 6.371e6;
inline constexpr int azimuths = 360;

/// How high ground and buildings stand around a place.
struct Result {
    /// The horizon's elevation angle in degrees at each whole degree of azimuth, from north through east;
    /// 360 of them, none below 0.
    std::vector<double> samples = std::vector<double>(azimuths, 0.0);
    std::optional<double> observerHeightM; ///< of the ground at the place; absent when its tile is missing
    std::string source = "terrain";        ///< or "terrain + buildings"

    friend bool operator==(const Result&, const Result&) = default;
};

/// The horizon at any azimuth in degrees, interpolated between the samples of a profile.
double elevationAt(const std::vector<double>& samples, double azDeg);

/// How far a thing at a distance that stands so much higher than the eye rises above the level plane, in
/// degrees. The Earth's curvature and the mean refraction of the air are taken off.
double elevationAngle(double riseM, double distanceM);

struct Building {
    double distanceM = 0;
    double bearingDeg = 0; ///< from north through east
    double heightM = 0;    ///< above the ground
};

/// Raises a profile where buildings stand above it. One nearer than 8 m is where the observer stands, and is
/// left out. Each counts as 24 m wide.
void raiseByBuildings(std::vector<double>& samples, std::span<const Building> buildings);

} // namespace zenka::eclipse::TerrainHorizon
