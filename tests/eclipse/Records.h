#pragma once

#include "eclipse/EclipseRecord.h"

/// Eclipses made up so that their circumstances can be worked out by hand.
namespace zenka::eclipse::testing {

/// The axis moves along x alone over an Earth that does not turn, with the Sun over latitude 0, longitude
/// 0, and shadows that are cylinders: there m = hypot(x, y), L1 = 0.5 and L2 = −0.01.
inline EclipseRecord standingStill() {
    EclipseRecord rec;
    rec.id = "2030-01-01";
    rec.dateUTC = rec.id;
    rec.type = "Total";
    rec.t0Hour = 12;
    rec.x = {0, 0.5, 0, 0};
    rec.y = {0, 0, 0, 0};
    rec.d = {0, 0, 0, 0};
    rec.l1 = {0.5, 0, 0, 0};
    rec.l2 = {-0.01, 0, 0, 0};
    rec.mu = {0, 0, 0, 0};
    return rec;
}

} // namespace zenka::eclipse::testing
