#pragma once

#include "painting/Corona.h"
#include "ui/framing/FramingScene.h"

#include <QColor>
#include <QFont>
#include <QPainter>

namespace zenka::ui {

struct FramingColors {
    QColor sky;   ///< dark in all themes: what glows is light on it
    QColor light; ///< corona, rings and their numbers
    QColor sun;
    QColor moon;
    QColor frame;
    QColor path;
};

/// Draws the frame to scale around the Sun, the Moon, the corona with rings at 2, 4, 6 and 8 solar radii, and
/// the Sun's way through the frame.
void paintFraming(QPainter& painter, const QSizeF& size, const FramingScene& scene,
                  const FramingColors& colors, const QFont& font, painting::CoronaCache& corona);

} // namespace zenka::ui
