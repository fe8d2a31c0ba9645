#include "painting/MapProjection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::painting {

namespace {

/// A window of 600 pixels is then a little more than 3 km high.
constexpr double smallestScale = 5e-5;

/// Nearer to a pole than 75 degrees the map is no longer drawn out.
double narrowing(double lat) {
    return std::max(std::cos(lat * std::numbers::pi / 180), 0.25);
}

} // namespace

double MapProjection::degreesPerPixelAcross() const {
    return scale_ / narrowing(lat_);
}

double MapProjection::kilometresPerPixel() const {
    return scale_ * 111.195;
}

int MapProjection::decimals() const {
    return std::clamp(static_cast<int>(std::ceil(-std::log10(scale_))), 2, 5);
}

void MapProjection::resize(QSizeF size) {
    size_ = QSizeF(std::max(size.width(), 1.0), std::max(size.height(), 1.0));
    clampScale();
    put(lat_, lon_, QPointF(size_.width() / 2, size_.height() / 2));
}

void MapProjection::centreOn(const geo::GeoPoint& point) {
    put(point.lat, point.lon, QPointF(size_.width() / 2, size_.height() / 2));
    wrapCentre();
}

void MapProjection::showHeight(double degrees) {
    scale_ = degrees / size_.height();
    clampScale();
    put(lat_, lon_, QPointF(size_.width() / 2, size_.height() / 2));
}

void MapProjection::zoom(double factor, QPointF around) {
    const double lat = lat_ - (around.y() - size_.height() / 2) * scale_;
    const double lon = lon_ + (around.x() - size_.width() / 2) * degreesPerPixelAcross();
    scale_ *= factor;
    clampScale();
    put(lat, lon, around);
    wrapCentre();
}

void MapProjection::drag(QPointF from, QPointF to) {
    const double lat = lat_ - (from.y() - size_.height() / 2) * scale_;
    const double lon = lon_ + (from.x() - size_.width() / 2) * degreesPerPixelAcross();
    put(lat, lon, to);
    wrapCentre();
}

QPointF MapProjection::pixel(double lat, double lon) const {
    return {size_.width() / 2 + (lon - lon_) / degreesPerPixelAcross(),
            size_.height() / 2 - (lat - lat_) / scale_};
}

geo::GeoPoint MapProjection::place(QPointF pixel) const {
    const double lat = lat_ - (pixel.y() - size_.height() / 2) * scale_;
    const double lon = lon_ + (pixel.x() - size_.width() / 2) * degreesPerPixelAcross();
    return {.lat = std::clamp(lat, -90.0, 90.0), .lon = geo::wrappedLongitude(lon)};
}

void MapProjection::clampScale() {
    scale_ = std::clamp(scale_, smallestScale, std::max(180 / size_.height(), 360 / size_.width()));
}

void MapProjection::put(double lat, double lon, QPointF pixel) {
    const double room = std::max(90 - size_.height() / 2 * scale_, 0.0);
    lat_ = std::clamp(lat + (pixel.y() - size_.height() / 2) * scale_, -room, room);
    lon_ = lon - (pixel.x() - size_.width() / 2) * degreesPerPixelAcross(); // which depends on lat_
}

void MapProjection::wrapCentre() {
    lon_ = geo::wrappedLongitude(lon_);
}

} // namespace zenka::painting
