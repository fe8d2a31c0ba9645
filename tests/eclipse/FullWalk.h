#pragma once

#include "eclipse/Besselian.h"

#include <cmath>
#include <functional>
#include <vector>

/// The reference for `localCircumstances`: the plain search over every point of the grid, with `geometry`
/// for each value, sharing no search code with the program.
namespace zenka::eclipse::testing {

struct Contacts {
    std::optional<double> entry;
    std::optional<double> exit;
};

inline double bisected(const std::function<double(double)>& f, double low, double high, double atLow) {
    for (int round = 0; round < 80; ++round) {
        const double middle = (low + high) / 2;
        const double value = f(middle);
        if (std::abs(value) < 1e-7 || high - low < 1e-9) {
            return middle;
        }
        if ((value < 0) == (atLow < 0)) {
            low = middle;
            atLow = value;
        } else {
            high = middle;
        }
    }
    return (low + high) / 2;
}

/// The walk over the values of a function at the points of the grid.
inline Contacts walked(const std::vector<double>& values, const std::function<double(double)>& f) {
    Contacts contacts;
    for (std::size_t k = 1; k < values.size(); ++k) {
        const double low = -4.0 + static_cast<double>(k - 1) / 900.0;
        const double high = -4.0 + static_cast<double>(k) / 900.0;
        if (values[k - 1] > 0 && values[k] <= 0 && !contacts.entry) {
            contacts.entry = bisected(f, low, high, values[k - 1]);
        }
        if (values[k - 1] < 0 && values[k] >= 0) {
            contacts.exit = bisected(f, low, high, values[k - 1]);
        }
    }
    return contacts;
}

inline LocalCircumstances fullWalk(const Eclipse& eclipse, const Observer& observer) {
    const auto at = [&](double t) { return eclipse.geometry(t, observer); };
    const auto outsideOuter = [](const Geom& geom) { return geom.m - geom.L1; };
    const auto outsideInner = [](const Geom& geom) { return geom.m - std::abs(geom.L2); };
    std::vector<double> outerValues;
    std::vector<double> innerValues;
    for (int k = 0; k <= 7200; ++k) {
        const Geom geom = at(-4.0 + k / 900.0);
        outerValues.push_back(outsideOuter(geom));
        innerValues.push_back(outsideInner(geom));
    }
    const Contacts outer = walked(outerValues, [&](double t) { return outsideOuter(at(t)); });
    const Contacts inner = walked(innerValues, [&](double t) { return outsideInner(at(t)); });
    double a = outer.entry.value_or(-4.0);
    double b = outer.exit.value_or(4.0);
    for (int round = 0; round < 200 && std::abs(b - a) >= 1e-7; ++round) {
        const double c = b - (b - a) * 0.6180339887498949;
        const double d = a + (b - a) * 0.6180339887498949;
        if (at(c).m < at(d).m) {
            b = d;
        } else {
            a = c;
        }
    }
    const double greatest = (a + b) / 2;

    LocalCircumstances result;
    result.eclipseId = eclipse.rec.id;
    const Geom geom = at(greatest);
    result.maxMagnitude = magnitude(geom);
    result.maxObscuration = Eclipse::obscuration(geom.m, geom.L1, std::abs(geom.L2));
    if (inner.entry && inner.exit) {
        result.totalitySeconds = (*inner.exit - *inner.entry) * 3600;
    }
    result.isTotal = result.maxMagnitude >= 1.0 || (inner.entry && inner.exit);
    const auto add = [&](const char* key, const char* label, std::optional<double> t) {
        if (t) {
            const Geom then = at(*t);
            result.events.push_back(
                {base::Uuid::fresh(), key, label, *t, eclipse.utc(*t), then.altDeg, then.azDeg});
        }
    };
    add("C1", "First contact, partial begins", outer.entry);
    add("C2", "Second contact, totality begins", inner.entry);
    add("MAX", "Maximum eclipse", greatest);
    add("C3", "Third contact, totality ends", inner.exit);
    add("C4", "Fourth contact, partial ends", outer.exit);
    const Eclipse::SunTimes sun = eclipse.sunriseSunset(observer.lat, observer.lon);
    result.sunriseUTC = sun.rise;
    result.sunsetUTC = sun.set;
    return result;
}

} // namespace zenka::eclipse::testing
