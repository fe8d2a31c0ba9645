#include "painting/WorldMapPainter.h"

#include "eclipse/SiteWords.h"
#include "geo/Bundled.h"

#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <string>
#include <vector>

namespace zenka::painting {

namespace {

using Line = std::vector<geo::GeoPoint>;

QPolygonF pixels(const Line& line, const MapProjection& map, double turn) {
    QPolygonF polygon;
    polygon.reserve(static_cast<qsizetype>(line.size()));
    for (const geo::GeoPoint& point : line)
        polygon.append(map.pixel(point.lat, point.lon + turn));
    return polygon;
}

/// Calls with 360 degrees times a whole number for each copy of a range of longitudes that is in view.
template <typename Draw>
void forEachTurn(const MapProjection& map, double west, double east, Draw draw) {
    const int first = static_cast<int>(std::ceil((map.west() - east) / 360));
    const int last = static_cast<int>(std::floor((map.east() - west) / 360));
    for (int turn = first; turn <= last; ++turn)
        draw(360.0 * turn);
}

void fillLand(QPainter& painter, const MapProjection& map, geo::Detail detail, const geo::GeoBox& box,
              double turn) {
    QPainterPath land;
    for (const geo::LandArea& area : geo::bundledOutlines().land(detail, box)) {
        for (const geo::Polyline& ring : area.rings)
            land.addPolygon(pixels(ring, map, turn));
    }
    painter.drawPath(land);
}

/// Whether the piece of the path from one point to the next may be in view.
bool inView(const MapProjection& map, const EclipseTrack& track, std::size_t i, double turn) {
    const std::array corners{track.left[i], track.right[i], track.left[i + 1], track.right[i + 1]};
    const auto [south, north] = std::ranges::minmax(corners, {}, &geo::GeoPoint::lat);
    const auto [west, east] = std::ranges::minmax(corners, {}, &geo::GeoPoint::lon);
    return south.lat < map.north() && north.lat > map.south() && west.lon + turn < map.east() &&
           east.lon + turn > map.west();
}

/// The points from begin to end, an edge of the path along its way and the other one back.
void paintStretch(QPainter& painter, const MapProjection& map, const MapColors& colors,
                  const EclipseTrack& track, std::size_t begin, std::size_t end, double turn) {
    const auto stretch = [&](const Line& line) {
        const auto first = line.begin();
        return pixels({first + static_cast<std::ptrdiff_t>(begin), first + static_cast<std::ptrdiff_t>(end)},
                      map, turn);
    };
    const QPolygonF left = stretch(track.left);
    const QPolygonF right = stretch(track.right);
    QPolygonF outline = left;
    std::copy(right.rbegin(), right.rend(), std::back_inserter(outline));
    QColor band = colors.path;
    band.setAlpha(60);
    painter.setPen(Qt::NoPen);
    painter.setBrush(band);
    painter.drawPolygon(outline, Qt::WindingFill);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colors.path, 1));
    painter.drawPolyline(left);
    painter.drawPolyline(right);
    painter.setPen(QPen(colors.path, 2));
    painter.drawPolyline(stretch(track.central));
}

/// A word on a ground of its own, so that it can be read over anything; to the right of a mark, or left.
void tag(QPainter& painter, const MapColors& colors, QPointF at, const QString& text, bool right = true) {
    constexpr double room = 18;
    QRectF box = painter.fontMetrics().boundingRect(text);
    box.moveTo(at + QPointF(right ? room : -room - box.width(), -box.height() / 2));
    QColor ground = colors.page;
    ground.setAlpha(210);
    painter.fillRect(box.adjusted(-4, -2, 4, 2), ground);
    painter.setPen(colors.text);
    painter.drawText(box, Qt::AlignCenter | Qt::TextDontClip, text);
}

template <typename Draw>
void forEachCopy(const MapProjection& map, double lat, double lon, Draw draw) {
    forEachTurn(map, lon, lon, [&](double turn) { draw(map.pixel(lat, lon + turn)); });
}

void paintScale(QPainter& painter, const MapProjection& map, const MapColors& colors) {
    const double most = 140 * map.kilometresPerPixel();
    double km = std::pow(10, std::floor(std::log10(most)));
    km *= most / km >= 5 ? 5 : most / km >= 2 ? 2 : 1;
    const double length = km / map.kilometresPerPixel();
    const QPointF right(map.size().width() - 16, map.size().height() - 12);
    const QPointF left = right - QPointF(length, 0);
    const QPointF up(0, -6);
    painter.setPen(QPen(colors.text, 2));
    painter.drawPolyline(QPolygonF{left + up, left, right, right + up});
    const QString text = km >= 1 ? QStringLiteral("%1 km").arg(km) : QStringLiteral("%1 m").arg(km * 1000);
    tag(painter, colors, left - QPointF(0, 4), text, false);
}

} // namespace

void paintTrack(QPainter& painter, const MapProjection& map, const MapColors& colors,
                const EclipseTrack& track) {
    if (track.left.empty())
        return;
    const auto [west, east] = std::ranges::minmax(track.central, {}, &geo::GeoPoint::lon);
    constexpr double room = 180; // near a pole the band reaches far round
    forEachTurn(map, west.lon - room, east.lon + room, [&](double turn) {
        std::size_t begin = 0;
        for (std::size_t i = 0; i + 1 < track.left.size(); ++i) {
            if (inView(map, track, i, turn))
                continue;
            if (begin < i)
                paintStretch(painter, map, colors, track, begin, i + 1, turn);
            begin = i + 1;
        }
        if (begin + 1 < track.left.size())
            paintStretch(painter, map, colors, track, begin, track.left.size(), turn);
    });
}

void paintLand(QPainter& painter, const MapProjection& map, const MapColors& colors) {
    const geo::Detail detail = geo::detailFor(map.degreesPerPixel());
    painter.fillRect(QRectF(QPointF(0, 0), map.size()), colors.page); // beyond the poles
    const QPointF northWest(0, map.pixel(90, 0).y());
    const QPointF southEast(map.size().width(), map.pixel(-90, 0).y());
    painter.fillRect(QRectF(northWest, southEast), colors.sea);
    forEachTurn(map, -180, 180, [&](double turn) {
        const geo::GeoBox box{.south = std::max(map.south(), -90.0),
                              .west = std::max(map.west() - turn, -180.0),
                              .north = std::min(map.north(), 90.0),
                              .east = std::min(map.east() - turn, 180.0)};
        if (!(box.west < box.east))
            return;
        // The pieces of the land fit together only where their edges are not smoothed.
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.land);
        fillLand(painter, map, detail, box, turn);
        painter.setRenderHint(QPainter::Antialiasing, true);
        painter.setPen(QPen(colors.border, 1));
        for (const geo::Polyline& line : geo::bundledOutlines().borders(detail, box))
            painter.drawPolyline(pixels(line, map, turn));
        painter.setPen(QPen(colors.coast, 1));
        for (const geo::Polyline& line : geo::bundledOutlines().coasts(detail, box))
            painter.drawPolyline(pixels(line, map, turn));
    });
}

void paintMarks(QPainter& painter, const MapProjection& map, const MapColors& colors, const MapMarks& marks,
                const QFont& font) {
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setFont(font);
    painter.setBrush(Qt::NoBrush);
    if (marks.track) {
        paintTrack(painter, map, colors, *marks.track);
        if (const auto& greatest = marks.track->greatest)
            forEachCopy(map, greatest->lat, greatest->lon, [&](QPointF at) {
                painter.setPen(QPen(colors.text, 1.5));
                painter.setBrush(colors.path);
                painter.drawPolygon(QPolygonF{at + QPointF(0, -7), at + QPointF(7, 0), at + QPointF(0, 7),
                                              at + QPointF(-7, 0)});
                tag(painter, colors, at,
                    QString::fromStdString("longest " + eclipse::durationText(greatest->seconds)));
            });
    }
    if (marks.site != marks.draft)
        forEachCopy(map, marks.site.lat, marks.site.lon, [&](QPointF at) {
            painter.setPen(QPen(colors.text, 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(at, 5, 5);
            tag(painter, colors, at, QStringLiteral("in use"), false);
        });
    forEachCopy(map, marks.draft.lat, marks.draft.lon, [&](QPointF at) {
        painter.setPen(QPen(colors.page, 2));
        painter.setBrush(colors.mark);
        painter.drawEllipse(at, 7, 7);
        painter.setPen(QPen(colors.mark, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(at, 11, 11);
    });
    if (marks.crossHair) {
        const QPointF at = *marks.crossHair;
        painter.setPen(QPen(colors.text, 1.5));
        for (const QPointF arm : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)})
            painter.drawLine(at + 5 * arm, at + 26 * arm);
        painter.drawEllipse(at, 15, 15);
    }
    paintScale(painter, map, colors);
}

} // namespace zenka::painting
