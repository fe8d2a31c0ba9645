#include "geo/GeoPoint.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::geo {

namespace {

constexpr double radians = std::numbers::pi / 180; ///< in a degree
constexpr double earthRadiusKm = 6371;

} // namespace

double wrappedLongitude(double lon) {
    if (lon >= -180 && lon <= 180) {
        return lon;
    }
    const double wrapped = std::fmod(lon + 180, 360);
    return wrapped < 0 ? wrapped + 180 : wrapped - 180;
}

double distanceKm(const GeoPoint& a, const GeoPoint& b) {
    const double sinLat = std::sin((b.lat - a.lat) / 2 * radians);
    const double sinLon = std::sin((b.lon - a.lon) / 2 * radians);
    const double h =
        sinLat * sinLat + std::cos(a.lat * radians) * std::cos(b.lat * radians) * sinLon * sinLon;
    return 2 * earthRadiusKm * std::asin(std::sqrt(std::min(1.0, h)));
}

double bearingDeg(const GeoPoint& from, const GeoPoint& to) {
    const double across = (to.lon - from.lon) * radians;
    const double east = std::sin(across) * std::cos(to.lat * radians);
    const double north = std::cos(from.lat * radians) * std::sin(to.lat * radians) -
                         std::sin(from.lat * radians) * std::cos(to.lat * radians) * std::cos(across);
    const double bearing = std::atan2(east, north) / radians;
    return bearing < 0 ? bearing + 360 : bearing;
}

GeoPoint destination(const GeoPoint& from, double bearingDeg, double km) {
    const double arc = km / earthRadiusKm;
    const double way = bearingDeg * radians;
    const double lat = from.lat * radians;
    const double sinLat = std::sin(lat) * std::cos(arc) + std::cos(lat) * std::sin(arc) * std::cos(way);
    const double across =
        std::atan2(std::sin(way) * std::sin(arc) * std::cos(lat), std::cos(arc) - std::sin(lat) * sinLat);
    return {std::asin(std::clamp(sinLat, -1.0, 1.0)) / radians, from.lon + across / radians};
}

} // namespace zenka::geo
