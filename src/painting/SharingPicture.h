#pragma once

#include "eclipse/Besselian.h"
#include "painting/EclipseTrack.h"
#include "painting/MapProjection.h"

#include <QImage>

#include <vector>

namespace zenka::painting {

/// A window on the world of a size in pixels that shows a path as large as it fits; of a very long one, the
/// part that has most places beside it.
MapProjection frameOf(const std::vector<EclipseTrack>& pieces, QSizeF size);

/// A picture to share an eclipse with, 1200 by 630 pixels: its path on the map, its name, where and for how
/// long. Needs a QGuiApplication, for there is text in it. Slow: not for the main thread of a window.
QImage sharingPicture(const eclipse::Eclipse& eclipse);

/// Whether there is a font that has the letters of the picture; else they would be boxes.
bool canWriteLetters();

} // namespace zenka::painting
