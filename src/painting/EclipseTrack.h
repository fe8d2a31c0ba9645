#pragma once

#include "eclipse/EclipsePath.h"
#include "geo/GeoPoint.h"
#include "webdata/CentralLine.h"

#include <optional>
#include <span>
#include <vector>

namespace zenka::painting {

/// The path of a central eclipse as a map draws it. The longitudes run on beyond 180 degrees, so that
/// neighbouring points are always less than half the world apart.
struct EclipseTrack {
    std::vector<geo::GeoPoint> central;
    std::vector<geo::GeoPoint> left;  ///< edge of the path to the left of the way of the shadow
    std::vector<geo::GeoPoint> right; ///< the other edge
    std::optional<eclipse::DurationPoint> greatest;
};

EclipseTrack trackOf(const eclipse::CentralPath& path, std::optional<eclipse::DurationPoint> greatest);

/// The path with its limits, each where it is, in pieces: it is cut where a pole lies within it, as a limit
/// jumps to the other side of the world there. The line goes on between them as a piece without a width. Each
/// has the greatest duration of the whole.
std::vector<EclipseTrack> piecesOf(std::span<const webdata::LinePoint> line);

/// Slow: not for the main thread.
EclipseTrack computeTrack(const eclipse::Eclipse& eclipse);

} // namespace zenka::painting
