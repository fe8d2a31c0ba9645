#pragma once

#include "eclipse/EclipsePath.h"

#include <optional>

namespace zenka::eclipse {

/// Where the axis of the shadow comes to the ground at an instant, at height 0; nothing where it passes the
/// Earth by. The Sun is up there.
std::optional<PathPoint> axisOnGround(const EclipseRecord& rec, double tHours);

/// The instant of greatest eclipse, at which the axis passes nearest to the Earth's centre, in tHours.
double greatestEclipseHours(const EclipseRecord& rec);

} // namespace zenka::eclipse
