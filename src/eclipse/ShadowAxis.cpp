#include "eclipse/ShadowAxis.h"

#include "eclipse/Search.h"
#include "eclipse/Shadow.h"

#include <algorithm>
#include <cmath>

namespace zenka::eclipse {

std::optional<PathPoint> axisOnGround(const EclipseRecord& rec, double tHours) {
    const detail::ShadowInstant shadow(rec, tHours);
    // a point of the axis towards the equator and the pole; with the latter divided by b/a the ellipsoid is
    // a sphere, and z is where the axis comes out of it
    const double b = detail::polarRatio;
    const double equatorY = -shadow.y * shadow.sinD;
    const double poleY = shadow.y * shadow.cosD / b;
    const double poleZ = shadow.sinD / b;
    const double aa = shadow.cosD * shadow.cosD + poleZ * poleZ;
    const double bb = equatorY * shadow.cosD + poleY * poleZ;
    const double cc = equatorY * equatorY + poleY * poleY + shadow.x * shadow.x - 1;
    const double square = bb * bb - aa * cc;
    if (!(square >= 0))
        return std::nullopt;
    const double z = (-bb + std::sqrt(square)) / aa;
    const double hourAngle = std::atan2(shadow.x, equatorY + z * shadow.cosD) / detail::degree;
    const double reduced = std::asin(std::clamp(poleY + z * poleZ, -1.0, 1.0));
    return PathPoint{.lon = std::remainder(hourAngle - shadow.mu + 0.00417807 * rec.deltaT, 360),
                     .lat = std::atan(std::tan(reduced) / b) / detail::degree};
}

double greatestEclipseHours(const EclipseRecord& rec) {
    return detail::goldenMinimum(
        [&](double at) { return std::hypot(detail::evaluate(rec.x, at), detail::evaluate(rec.y, at)); }, -2,
        2);
}

} // namespace zenka::eclipse
