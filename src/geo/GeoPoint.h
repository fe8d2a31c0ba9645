#pragma once

namespace zenka::geo {

/// Degrees, north and east positive; longitude from -180 to 180.
struct GeoPoint {
    double lat = 0;
    double lon = 0;

    bool operator==(const GeoPoint&) const = default;
};

/// A longitude of any turn, in -180 up to and without 180; 180 itself stays.
double wrappedLongitude(double lon);

/// Along the great circle of a sphere of 6371 km.
double distanceKm(const GeoPoint& a, const GeoPoint& b);

/// The direction in which the great circle from one point to another begins: degrees from north through east,
/// 0 to 360.
double bearingDeg(const GeoPoint& from, const GeoPoint& to);

/// The point at a distance along the great circle that begins with a bearing. Its longitude runs on from that
/// of the first point, beyond 180 degrees as well.
GeoPoint destination(const GeoPoint& from, double bearingDeg, double km);

} // namespace zenka::geo
