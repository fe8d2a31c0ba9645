#pragma once

#include "base/Instant.h"
#include "eclipse/Besselian.h"
#include "geo/GeoPoint.h"

#include <vector>

namespace zenka::webdata {

/// The central line at an instant, and the edges of the path abreast of it.
struct LinePoint {
    base::Instant utc;
    geo::GeoPoint at;
    geo::GeoPoint north;    ///< limit to the left of the shadow's way; over a pole that may lie further south
    geo::GeoPoint south;    ///< limit to the right
    double halfWidthKm = 0; ///< half of what lies between the limits
    double durationSec = 0; ///< of the central phase
    double sunAltDeg = 0;   ///< geometric
};

/// The central line of an eclipse from sunrise to sunset: a point at each whole minute of UTC, and closer
/// ones at the ends, where the shadow is fastest. Limits go no further than the Sun is up. Empty for an
/// eclipse without a central line.
std::vector<LinePoint> centralLine(const eclipse::Eclipse& eclipse);

} // namespace zenka::webdata
