#pragma once

#include "painting/EclipseTrack.h"
#include "painting/MapProjection.h"

#include <QColor>
#include <QFont>
#include <QPainter>

#include <optional>

namespace zenka::painting {

struct MapColors {
    QColor sea;
    QColor land;
    QColor coast;
    QColor border;
    QColor path;
    QColor text;
    QColor page;
    QColor mark;
};

/// What lies over the land.
struct MapMarks {
    const EclipseTrack* track = nullptr;
    geo::GeoPoint site;               ///< in use
    geo::GeoPoint draft;              ///< being chosen
    std::optional<QPointF> crossHair; ///< pixel
};

/// Sea, land, coasts and borders, as far as they are to be seen.
void paintLand(QPainter& painter, const MapProjection& map, const MapColors& colors);

/// The path with its edges and its central line.
void paintTrack(QPainter& painter, const MapProjection& map, const MapColors& colors,
                const EclipseTrack& track);

/// The path with its central line and greatest duration, sites, cross-hair and a scale.
void paintMarks(QPainter& painter, const MapProjection& map, const MapColors& colors, const MapMarks& marks,
                const QFont& font);

} // namespace zenka::painting
