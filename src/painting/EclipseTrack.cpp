#include "painting/EclipseTrack.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::painting {

namespace {

constexpr double stepSeconds = 60;
constexpr double radians = std::numbers::pi / 180;
constexpr double earthRadiusKm = 6371;

/// The turn of a longitude that is nearest to another.
double near(double lon, double other) {
    return lon + 360 * std::round((other - lon) / 360);
}

/// The bearing of the great circle from one point to another, radians from north through east.
double bearing(const geo::GeoPoint& from, const geo::GeoPoint& to) {
    const double dLon = (to.lon - from.lon) * radians;
    const double fromLat = from.lat * radians;
    const double toLat = to.lat * radians;
    return std::atan2(std::sin(dLon) * std::cos(toLat),
                      std::cos(fromLat) * std::sin(toLat) -
                          std::sin(fromLat) * std::cos(toLat) * std::cos(dLon));
}

/// The point at a distance along a bearing.
geo::GeoPoint away(const geo::GeoPoint& from, double bearingRad, double km) {
    const double arc = km / earthRadiusKm;
    const double lat = from.lat * radians;
    const double sinLat =
        std::sin(lat) * std::cos(arc) + std::cos(lat) * std::sin(arc) * std::cos(bearingRad);
    const double dLon = std::atan2(std::sin(bearingRad) * std::sin(arc) * std::cos(lat),
                                   std::cos(arc) - std::sin(lat) * sinLat);
    return {.lat = std::asin(std::clamp(sinLat, -1.0, 1.0)) / radians, .lon = from.lon + dLon / radians};
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
        const double way = last ? bearing(track.central[i - 1], here) : bearing(here, track.central[i + 1]);
        const double km = path.halfWidthKm[i];
        geo::GeoPoint left = away(here, way - std::numbers::pi / 2, km);
        geo::GeoPoint right = away(here, way + std::numbers::pi / 2, km);
        if (i > 0) { // past a pole the far side runs on from its own last point
            left.lon = near(left.lon, track.left.back().lon);
            right.lon = near(right.lon, track.right.back().lon);
        }
        track.left.push_back(left);
        track.right.push_back(right);
    }
    return track;
}

EclipseTrack computeTrack(const eclipse::Eclipse& eclipse) {
    return trackOf(eclipse::tracePath(eclipse, stepSeconds), eclipse::greatestDurationPoint(eclipse));
}

} // namespace zenka::painting
