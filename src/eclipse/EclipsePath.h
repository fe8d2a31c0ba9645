#pragma once

#include "eclipse/Besselian.h"

#include <optional>
#include <vector>

namespace zenka::eclipse {

struct PathPoint {
    double lon = 0; ///< degrees, east positive
    double lat = 0; ///< degrees, north positive

    friend bool operator==(const PathPoint&, const PathPoint&) = default;
};

/// The central line with, at each point, the half width of the path in kilometres.
struct CentralPath {
    std::vector<PathPoint> central;
    std::vector<double> halfWidthKm;
};

/// Traces the central line at height 0, a point each stepSeconds of time where the axis meets the
/// Earth with the Sun up. Slow: not for the main thread.
CentralPath tracePath(const Eclipse& eclipse, double stepSeconds);

struct DurationPoint {
    double lat = 0;     ///< degrees
    double lon = 0;     ///< degrees
    double seconds = 0; ///< length of the central phase there
};

/// The point of the central line where the central phase is longest; nothing for an eclipse with no
/// central line. Slow: not for the main thread.
std::optional<DurationPoint> greatestDurationPoint(const Eclipse& eclipse);

} // namespace zenka::eclipse
