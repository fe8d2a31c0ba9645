#pragma once

#include "painting/Corona.h"
#include "ui/sky/SkyScene.h"

#include <QFont>
#include <QPainter>

namespace zenka::ui {

struct SkyColors {
    QColor sky;
    QColor sun;
    QColor moon;
    QColor corona;       ///< and the core of the diamond
    QColor chromosphere; ///< and prominences
    QColor ground;
    QColor line; ///< outline of the Moon, scale
    QColor text; ///< numbers of the scale
};

/// Draws Sun, Moon and what there is of corona, ring, beads, horizon and altitude scale: zenith up, greater
/// azimuth to the right, the Sun in the middle. Sizes of the discs, their distance and direction and the
/// height above the horizon are true and to one scale.
void paintSky(QPainter& painter, const QSizeF& size, const SkyScene& scene, const SkyColors& colors,
              const QFont& font, painting::CoronaCache& corona);

/// The Sun's radius in a picture of a size, pixels.
double sunRadiusIn(const QSizeF& size);

/// The height on the picture of a horizon that the Sun stands altitudeDeg above, pixels from the top.
double horizonIn(const QSizeF& size, double altitudeDeg);

} // namespace zenka::ui
