#pragma once

#include <QSize>

namespace zenka::screenshots {

/// Of the whole window, with all its panels, and of one in which a sheet is large.
constexpr QSize wholeSize(1200, 750);
constexpr QSize sheetSize(960, 600);

} // namespace zenka::screenshots
