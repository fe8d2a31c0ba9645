#include "eclipse/Besselian.h"
#include "eclipse/Search.h"
#include "eclipse/Shadow.h"

#include <cmath>
#include <utility>

namespace zenka::eclipse {

using namespace detail;

namespace {

/// The largest absolute value and slope that a polynomial can have within ±4 hours, from the absolute
/// values of its coefficients.
struct PolynomialBound {
    double value = 0;
    double slope = 0;

    explicit PolynomialBound(const std::vector<double>& coefficients) {
        double power = 1; // of 4 hours
        double lowerPower = 0;
        for (std::size_t i = 0; i < coefficients.size(); ++i) {
            value += std::abs(coefficients[i]) * power;
            slope += static_cast<double>(i) * std::abs(coefficients[i]) * lowerPower;
            lowerPower = power;
            power *= searchHours;
        }
    }
};

struct ChangeBounds {
    ChangeBound outer; ///< of m − L1
    ChangeBound inner; ///< of m − |L2|
};

/// The observer turns about the Earth's axis by the rate of mu at the distance ρcos, and about the ξ axis
/// by the rate of d at a distance of at most ρ, so (ξ, η, ζ) moves by no more than
///     w = ρcos |mu'| + ρ |d'|
/// an hour. The axis moves by hypot(x', y'). As m is the length of (x − ξ, y − η), and L = l − tanF ζ,
///     |(m − L)'| <= hypot(x', y') + w + |l'| + |tanF| w,
/// and taking |L| for L changes nothing. Each primed value is the largest one in ±4 hours.
///
/// The margin stands a thousandfold above the rounding of the lengths (some units of 1e-16 of them) and of
/// the angles, which for an absurd longitude is all that counts.
ChangeBounds changeBounds(const EclipseRecord& rec, const Parallel& parallel, double lon) {
    const PolynomialBound x(rec.x);
    const PolynomialBound y(rec.y);
    const PolynomialBound d(rec.d);
    const PolynomialBound mu(rec.mu);
    const double rho = std::hypot(parallel.rhoCos, parallel.rhoSin);
    const double turning = (std::abs(parallel.rhoCos) * mu.slope + rho * d.slope) * degree;
    const double axis = std::hypot(x.slope, y.slope);
    const double degrees = 1 + std::abs(lon) + mu.value + d.value + std::abs(rec.deltaT);
    const auto bound = [&](const PolynomialBound& radius, double tangent) {
        const double spread = 1 + std::abs(tangent);
        const double lengths = x.value + y.value + radius.value + rho * spread;
        return ChangeBound{.perHour = axis + radius.slope + turning * spread,
                           .margin = 1e-12 * lengths * degrees};
    };
    return {.outer = bound(PolynomialBound(rec.l1), rec.tanF1),
            .inner = bound(PolynomialBound(rec.l2), rec.tanF2)};
}

ContactEvent contactEvent(const Eclipse& eclipse, const Observer& observer, std::string_view key,
                          std::string_view label, double tHours) {
    const Geom geom = eclipse.geometry(tHours, observer);
    return {.id = base::Uuid::fresh(),
            .key = std::string(key),
            .label = std::string(label),
            .tHours = tHours,
            .utc = eclipse.utc(tHours),
            .sunAltDeg = geom.altDeg,
            .sunAzDeg = geom.azDeg};
}

} // namespace

LocalCircumstances Eclipse::localCircumstances(const Observer& observer) const {
    const Parallel parallel(observer.lat, observer.elev);
    const FixedSite site(rec, parallel, observer.lon);
    const ChangeBounds bounds = changeBounds(rec, parallel, observer.lon);
    const auto [c1, c4] = findCrossings([&](double t) { return site.outsideOuter(t); }, bounds.outer);
    const auto [c2, c3] = findCrossings([&](double t) { return site.outsideInner(t); }, bounds.inner);
    const double greatest = goldenMinimum([&](double t) { return site.axisDistance(t); },
                                          c1.value_or(-searchHours), c4.value_or(searchHours));

    LocalCircumstances circumstances;
    circumstances.eclipseId = rec.id;
    const auto add = [&](std::string_view key, std::string_view label, std::optional<double> tHours) {
        if (tHours) {
            circumstances.events.push_back(contactEvent(*this, observer, key, label, *tHours));
        }
    };
    add("C1", "First contact, partial begins", c1);
    add("C2", "Second contact, totality begins", c2);
    add("MAX", "Maximum eclipse", greatest);
    add("C3", "Third contact, totality ends", c3);
    add("C4", "Fourth contact, partial ends", c4);

    const Geom geom = geometry(greatest, observer);
    circumstances.maxMagnitude = magnitude(geom);
    circumstances.maxObscuration = obscuration(geom.m, geom.L1, std::abs(geom.L2));
    circumstances.totalitySeconds = c2 && c3 ? (*c3 - *c2) * 3600 : 0;
    circumstances.isTotal = circumstances.maxMagnitude >= 1.0 || (c2 && c3);
    SunTimes sun = sunriseSunset(observer.lat, observer.lon);
    circumstances.sunriseUTC = sun.rise;
    circumstances.sunsetUTC = sun.set;
    return circumstances;
}

} // namespace zenka::eclipse
