#include "painting/EclipseTrack.h"

#include <algorithm>
#include <cmath>

namespace zenka::painting {

namespace {

constexpr double stepSeconds = 60;

/// The turn of a longitude that is nearest to another.
double near(double lon, double other) {
    return lon + 360 * std::round((other - lon) / 360);
}

} // namespace

EclipseTrack trackOf(const eclipse::CentralPath& path, std::optional<eclipse::DurationPoint> greatest) {
    EclipseTrack track{.central = {}, .left = {}, .right = {}, .greatest = greatest};
    for (const eclipse::PathPoint& point : path.central) {
        const double before = track.central.empty() ? point.lon : track.central.back().lon;
        track.central.push_back({.lat = point.lat, .lon = near(point.lon, before)});
    }
    if (track.central.size() < 2)
        return track;
    for (std::size_t i = 0; i < track.central.size(); ++i) {
        const geo::GeoPoint& here = track.central[i];
        const bool last = i + 1 == track.central.size();
        const double way =
            last ? geo::bearingDeg(track.central[i - 1], here) : geo::bearingDeg(here, track.central[i + 1]);
        const double km = path.halfWidthKm[i];
        geo::GeoPoint left = geo::destination(here, way - 90, km);
        geo::GeoPoint right = geo::destination(here, way + 90, km);
        if (i > 0) { // past a pole the far side runs on from its own last point
            left.lon = near(left.lon, track.left.back().lon);
            right.lon = near(right.lon, track.right.back().lon);
        }
        track.left.push_back(left);
        track.right.push_back(right);
    }
    return track;
}

std::vector<EclipseTrack> piecesOf(std::span<const webdata::LinePoint> line) {
    constexpr double leastJump = 100; // degrees from one point to the next
    const auto longest = std::ranges::max_element(line, {}, &webdata::LinePoint::durationSec);
    if (longest == line.end())
        return {};
    const EclipseTrack none{.central = {},
                            .left = {},
                            .right = {},
                            .greatest = eclipse::DurationPoint{.lat = longest->at.lat,
                                                               .lon = longest->at.lon,
                                                               .seconds = longest->durationSec}};
    std::vector<EclipseTrack> pieces{none};
    geo::GeoPoint before = line.front().at;
    const auto append = [](EclipseTrack& piece, const geo::GeoPoint& at, const geo::GeoPoint& left,
                           const geo::GeoPoint& right) {
        piece.central.push_back(at);
        piece.left.push_back({.lat = left.lat, .lon = near(left.lon, at.lon)});
        piece.right.push_back({.lat = right.lat, .lon = near(right.lon, at.lon)});
    };
    for (const webdata::LinePoint& point : line) {
        const geo::GeoPoint at{.lat = point.at.lat, .lon = near(point.at.lon, before.lon)};
        EclipseTrack next = none;
        append(next, at, point.north, point.south);
        const EclipseTrack& last = pieces.back();
        if (!last.central.empty() && (std::abs(next.left[0].lon - last.left.back().lon) > leastJump ||
                                      std::abs(next.right[0].lon - last.right.back().lon) > leastJump)) {
            EclipseTrack bare = none;
            append(bare, before, before, before);
            append(bare, at, at, at);
            pieces.push_back(std::move(bare));
            pieces.push_back(none);
        }
        append(pieces.back(), at, point.north, point.south);
        before = at;
    }
    return pieces;
}

EclipseTrack computeTrack(const eclipse::Eclipse& eclipse) {
    return trackOf(eclipse::tracePath(eclipse, stepSeconds), eclipse::greatestDurationPoint(eclipse));
}

} // namespace zenka::painting
