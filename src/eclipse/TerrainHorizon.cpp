#include "eclipse/TerrainHorizon.h"

#include <algorithm>
#include <cmath>

namespace zenka::eclipse::TerrainHorizon {

namespace {

/// The air bends a ray along the ground as if the Earth were so much larger.
constexpr double meanRefraction = 1.13;

constexpr double standsAtM = 8;
constexpr double nearestM = 15; ///< closer ones count as so far, or a shed would fill the sky
constexpr double halfWidthM = 12;
constexpr double widestHalfDeg = 22;
constexpr double steepestDeg = 80;
constexpr double sweepDeg = 0.5;

} // namespace

double elevationAt(const std::vector<double>& samples, double azDeg) {
    if (samples.empty() || !std::isfinite(azDeg))
        return 0;
    const auto count = static_cast<double>(samples.size());
    double place = std::fmod(azDeg / 360 * count, count);
    if (place < 0)
        place += count;
    const auto before = static_cast<std::size_t>(place) % samples.size();
    const double share = place - std::floor(place);
    return samples[before] * (1 - share) + samples[(before + 1) % samples.size()] * share;
}

double elevationAngle(double riseM, double distanceM) {
    const double drop = distanceM * distanceM / (2 * earthRadiusM * meanRefraction);
    return std::atan2(riseM - drop, distanceM) / perDegree;
}

void raiseByBuildings(std::vector<double>& samples, std::span<const Building> buildings) {
    const auto count = static_cast<long>(samples.size());
    for (const Building& building : buildings) {
        if (building.distanceM < standsAtM)
            continue;
        const double away = std::max(building.distanceM, nearestM);
        const double angle = std::min(elevationAngle(building.heightM, away), steepestDeg);
        const double half = std::min(std::atan2(halfWidthM, away) / perDegree, widestHalfDeg);
        for (double az = building.bearingDeg - half; az <= building.bearingDeg + half; az += sweepDeg) {
            const auto index = std::lround(std::fmod(az, 360.0) + 360) % count;
            double& sample = samples[static_cast<std::size_t>(index)];
            sample = std::max(sample, angle);
        }
    }
}

} // namespace zenka::eclipse::TerrainHorizon
