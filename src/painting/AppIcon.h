#pragma once

#include <QImage>
#include <QList>

#include <string>

namespace zenka::painting {

/// The program's icon, a total eclipse with its diamond ring, at a size in pixels; with fewer details where
/// they would be a blur. Needs no application object.
QImage appIcon(int size);

/// The same in the sizes that desktops ask for. Takes a fifth of a second. Any thread.
QList<QImage> windowIcons();

/// The bytes of a PNG file.
std::string pngOf(const QImage& image);

} // namespace zenka::painting
