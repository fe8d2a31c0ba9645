#include "rig/bodies/BurstDrift.h"

#include <cmath>

namespace zenka::rig {

namespace Framing = eclipse::Framing;

BurstDrift burstDrift(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
                      const Framing::Optics& optics, const script::Burst& burst, double aimedHours,
                      double coronaRadii) {
    const double from = burst.beginSec / 3600;
    const double to = burst.endSec / 3600;
    const Framing::SkyPlace aimed = Framing::sunAt(eclipse, aimedHours, observer);
    BurstDrift drift;
    drift.first = Framing::onSensor(optics, aimed, Framing::sunAt(eclipse, from, observer));
    drift.last = Framing::onSensor(optics, aimed, Framing::sunAt(eclipse, to, observer));
    if (drift.first && drift.last) {
        drift.pixels = Framing::pixelsBetween(optics, *drift.first, *drift.last);
        drift.ofHeight =
            std::hypot(drift.last->right - drift.first->right, drift.last->up - drift.first->up) /
            (optics.portrait() ? optics.widthMm : optics.heightMm);
    }
    drift.trailPx = burst.longestSec *
                    Framing::pixelsPerSecond(optics, Framing::sunSpeed(eclipse, (from + to) / 2, observer));

    const double sunMm =
        Framing::facts(optics, Framing::sunRadiusDeg(eclipse, aimedHours, observer)).sunMm / 2;
    const auto circle = [&](double radii) {
        const auto holds = [&](const auto& point) {
            return point && Framing::holds(optics, *point, radii * sunMm);
        };
        CircleInFrame found{.atFirst = holds(drift.first), .atLast = holds(drift.last)};
        if (const auto at = Framing::leavesAt(eclipse, observer, optics, aimed, radii, from, to))
            found.leavesAfterSec = (*at - from) * 3600;
        return found;
    };
    drift.sun = circle(1);
    drift.corona = circle(coronaRadii);
    return drift;
}

} // namespace zenka::rig
