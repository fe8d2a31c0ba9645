#pragma once

#include "geo/GeoPoint.h"

#include <QPointF>
#include <QSizeF>

namespace zenka::painting {

/// A window on the equirectangular world, which repeats to the east and to the west. The parallel of its
/// centre is true to scale, so that near the centre shapes and distances are right in every direction.
/// Longitudes in pixels are unwrapped: 190 lies to the right of 170 and not at the other end.
class MapProjection {
public:
    /// Keeps centre and scale; the world is never smaller than the window in both directions.
    void resize(QSizeF size);
    void centreOn(const geo::GeoPoint& point);
    /// Degrees of latitude from the bottom to the top of the window.
    void showHeight(double degrees);

    /// Makes a pixel smaller (factor below 1) or larger; the place under a pixel stays there, except where
    /// the map would show what is beyond a pole.
    void zoom(double factor, QPointF around);
    /// Moves the map so that the place at one pixel comes to another.
    void drag(QPointF from, QPointF to);

    /// Of an unwrapped longitude.
    QPointF pixel(double lat, double lon) const;
    /// The place under a pixel, its longitude from -180 to 180 degrees.
    geo::GeoPoint place(QPointF pixel) const;

    QSizeF size() const { return size_; }
    /// The centre with an unwrapped longitude, which lies from -180 to 180.
    geo::GeoPoint centre() const { return {.lat = lat_, .lon = lon_}; }
    /// Height of a pixel.
    double degreesPerPixel() const { return scale_; }
    double kilometresPerPixel() const;
    /// What a pixel of the map shows to the pixel, for numbers of a point picked there: decimals of a degree.
    int decimals() const;

    double south() const { return lat_ - size_.height() / 2 * scale_; }
    double north() const { return lat_ + size_.height() / 2 * scale_; }
    double west() const { return lon_ - size_.width() / 2 * degreesPerPixelAcross(); }
    double east() const { return lon_ + size_.width() / 2 * degreesPerPixelAcross(); }

    friend bool operator==(const MapProjection&, const MapProjection&) = default;

private:
    double degreesPerPixelAcross() const;
    void clampScale();
    /// Centre and scale such that a place comes to a pixel.
    void put(double lat, double lon, QPointF pixel);
    void wrapCentre();

    QSizeF size_{1, 1};
    double lat_ = 0;
    double lon_ = 0;
    double scale_ = 180;
};

} // namespace zenka::painting
