#include "geo/GeoPoint.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::geo {

double wrappedLongitude(double lon) {
    if (lon >= -180 && lon <= 180) {
        return lon;
    }
    const double wrapped = std::fmod(lon + 180, 360);
    return wrapped < 0 ? wrapped + 180 : wrapped - 180;
}

double distanceKm(const GeoPoint& a, const GeoPoint& b) {
    constexpr double earthRadiusKm = 6371;
    constexpr double radians = std::numbers::pi / 180;
    const double sinLat = std::sin((b.lat - a.lat) / 2 * radians);
    const double sinLon = std::sin((b.lon - a.lon) / 2 * radians);
    const double h =
        sinLat * sinLat + std::cos(a.lat * radians) * std::cos(b.lat * radians) * sinLon * sinLon;
    return 2 * earthRadiusKm * std::asin(std::sqrt(std::min(1.0, h)));
}

} // namespace zenka::geo
