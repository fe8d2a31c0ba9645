#pragma once

#include "ui/site/HorizonScene.h"

#include <QColor>
#include <QFont>
#include <QPainter>

namespace zenka::ui {

struct HorizonColors {
    QColor sky;
    QColor ground;
    QColor ridge; ///< the edge of the ground
    QColor sun;   ///< its path, and contacts that are seen
    QColor hidden;
    QColor line;
    QColor text;
    QColor page; ///< behind the names of contacts
};

/// Draws the horizon with the Sun's path over it: azimuth to the right, altitude up. A contact that is seen
/// is a disc, a hidden one a triangle.
void paintHorizon(QPainter& painter, const QSizeF& size, const HorizonScene& scene,
                  const HorizonColors& colors, const QFont& font);

} // namespace zenka::ui
