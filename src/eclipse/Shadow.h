#pragma once

#include "eclipse/EclipseRecord.h"

#include <cmath>
#include <numbers>
#include <span>

/// The arithmetic of the shadow in three steps: what an instant fixes, what a place fixes, and what the
/// two give together. `Eclipse::geometry` and all searches go through these same functions, so that a
/// search which holds on to a step gets the very numbers that `geometry` gives.
namespace zenka::eclipse::detail {

inline constexpr double degree = std::numbers::pi / 180;
inline constexpr double polarRatio = 0.99664719;      ///< b/a of the ellipsoid
inline constexpr double equatorialMetres = 6378140.0; ///< its radius a

/// Horner's scheme; 0 for an empty polynomial.
inline double evaluate(std::span<const double> c, double t) {
    if (c.size() == 4) {
        return ((c[3] * t + c[2]) * t + c[1]) * t + c[0];
    }
    double value = 0;
    for (auto i = c.size(); i-- > 0;) {
        value = value * t + c[i];
    }
    return value;
}

/// The shadow at an instant, for no place in particular.
struct ShadowInstant {
    double x = 0;
    double y = 0;
    double sinD = 0;
    double cosD = 0;
    double l1 = 0;
    double l2 = 0;
    double mu = 0; ///< degrees

    ShadowInstant(const EclipseRecord& rec, double tHours)
        : x(evaluate(rec.x, tHours)), y(evaluate(rec.y, tHours)), l1(evaluate(rec.l1, tHours)),
          l2(evaluate(rec.l2, tHours)), mu(evaluate(rec.mu, tHours)) {
        const double declination = evaluate(rec.d, tHours) * degree;
        sinD = std::sin(declination);
        cosD = std::cos(declination);
    }
};

/// What the latitude and height of a place fix.
struct Parallel {
    double sinPhi = 0;
    double cosPhi = 0;
    double rhoCos = 0; ///< distance from the Earth's axis, Earth radii
    double rhoSin = 0; ///< distance from the plane of the equator, Earth radii

    Parallel(double lat, double elev) {
        const double phi = lat * degree;
        sinPhi = std::sin(phi);
        cosPhi = std::cos(phi);
        const double reduced = std::atan(polarRatio * std::tan(phi));
        const double height = elev / equatorialMetres;
        rhoCos = std::cos(reduced) + height * cosPhi;
        rhoSin = polarRatio * std::sin(reduced) + height * sinPhi;
    }
};

struct HourAngle {
    double sinH = 0;
    double cosH = 0;

    /// The elements' hour angle is of dynamical time; the term in ΔT turns it to the Earth's rotation in UT.
    HourAngle(double lon, double mu, double deltaT) {
        const double angle = (lon + mu - 0.00417807 * deltaT) * degree;
        sinH = std::sin(angle);
        cosH = std::cos(angle);
    }
};

/// The observer against the axis of the shadow.
struct Offset {
    double u = 0;
    double v = 0;
    double zeta = 0;

    Offset(const ShadowInstant& shadow, const Parallel& parallel, const HourAngle& hour) {
        const double xi = hour.sinH * parallel.rhoCos;
        const double eta = shadow.cosD * parallel.rhoSin - shadow.sinD * hour.cosH * parallel.rhoCos;
        zeta = shadow.sinD * parallel.rhoSin + shadow.cosD * hour.cosH * parallel.rhoCos;
        u = shadow.x - xi;
        v = shadow.y - eta;
    }

    double m() const { return std::hypot(u, v); }
};

inline double outerRadius(const EclipseRecord& rec, const ShadowInstant& shadow, double zeta) {
    return shadow.l1 - rec.tanF1 * zeta;
}

inline double innerRadius(const EclipseRecord& rec, const ShadowInstant& shadow, double zeta) {
    return shadow.l2 - rec.tanF2 * zeta;
}

/// Sine of the Sun's geometric altitude.
inline double sinAltitude(const ShadowInstant& shadow, const Parallel& parallel, const HourAngle& hour) {
    const double sine = parallel.sinPhi * shadow.sinD + parallel.cosPhi * shadow.cosD * hour.cosH;
    return sine < -1 ? -1 : sine > 1 ? 1 : sine;
}

/// The Sun's geometric altitude in degrees.
inline double altitudeDeg(const ShadowInstant& shadow, const Parallel& parallel, const HourAngle& hour) {
    return std::asin(sinAltitude(shadow, parallel, hour)) / degree;
}

/// One observer through the whole eclipse.
class FixedSite {
public:
    FixedSite(const EclipseRecord& rec, const Parallel& parallel, double lon)
        : rec_(rec), parallel_(parallel), lon_(lon) {}

    /// m, the distance from the axis.
    double axisDistance(double tHours) const {
        const ShadowInstant shadow(rec_, tHours);
        return offset(shadow).m();
    }

    /// m − L1: negative while any eclipse is seen.
    double outsideOuter(double tHours) const {
        const ShadowInstant shadow(rec_, tHours);
        const Offset at = offset(shadow);
        return at.m() - outerRadius(rec_, shadow, at.zeta);
    }

    /// m − |L2|: negative inside the inner shadow or its extension beyond the apex.
    double outsideInner(double tHours) const {
        const ShadowInstant shadow(rec_, tHours);
        const Offset at = offset(shadow);
        return at.m() - std::abs(innerRadius(rec_, shadow, at.zeta));
    }

    double sunAltitudeDeg(double tHours) const {
        const ShadowInstant shadow(rec_, tHours);
        return altitudeDeg(shadow, parallel_, HourAngle(lon_, shadow.mu, rec_.deltaT));
    }

private:
    Offset offset(const ShadowInstant& shadow) const {
        return {shadow, parallel_, HourAngle(lon_, shadow.mu, rec_.deltaT)};
    }

    const EclipseRecord& rec_;
    Parallel parallel_;
    double lon_;
};

} // namespace zenka::eclipse::detail
