#include "eclipse/SkyCurve.h"

#include "eclipse/Shadow.h"

#include <cmath>

namespace zenka::eclipse {

namespace {

ViewSample sampleOf(const Geom& geom, double tHours) {
    ViewSample sample{.t = tHours * 3600,
                      .coverage = Eclipse::obscuration(geom.m, geom.L1, std::abs(geom.L2)),
                      .alt = geom.altDeg,
                      .az = geom.azDeg,
                      .sep = 0,
                      .moonR = 1,
                      .mag = magnitude(geom)};
    const double sun = (geom.L1 + geom.L2) / 2;
    if (sun > 0) {
        sample.sep = geom.m / sun;
        sample.moonR = (geom.L1 - geom.L2) / 2 / sun;
    }
    // from the fundamental plane's north to the observer's zenith by the parallactic angle
    const double sinQ = std::sin(geom.q);
    const double cosQ = std::cos(geom.q);
    sample.ang = std::atan2(sinQ * geom.u + cosQ * geom.v, sinQ * geom.v - cosQ * geom.u) / detail::degree;
    return sample;
}

/// The way from one angle to another on the shorter side of the circle, −180 to 180 degrees.
double turn(double from, double to) {
    const double difference = std::fmod(to - from, 360);
    return difference > 180 ? difference - 360 : difference < -180 ? difference + 360 : difference;
}

} // namespace

std::vector<ViewSample> sampleCurve(const Eclipse& eclipse, const Observer& observer, double startHours,
                                    double endHours) {
    constexpr int last = 240;
    std::vector<ViewSample> curve;
    curve.reserve(last + 1);
    for (int i = 0; i <= last; ++i) {
        const double tHours = startHours + (endHours - startHours) * i / last;
        curve.push_back(sampleOf(eclipse.geometry(tHours, observer), tHours));
    }
    return curve;
}

std::optional<ViewSample> sampleAt(const std::vector<ViewSample>& curve, double t) {
    if (curve.empty()) {
        return std::nullopt;
    }
    if (t <= curve.front().t) {
        return curve.front();
    }
    if (t >= curve.back().t) {
        return curve.back();
    }
    std::size_t low = 0;
    std::size_t high = curve.size() - 1;
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        (curve[middle].t < t ? low : high) = middle;
    }
    const ViewSample& from = curve[low];
    const ViewSample& to = curve[high];
    const double part = (t - from.t) / (to.t - from.t);
    const auto mixed = [&](double ViewSample::*member) {
        return from.*member + (to.*member - from.*member) * part;
    };
    return ViewSample{.t = t,
                      .coverage = mixed(&ViewSample::coverage),
                      .alt = mixed(&ViewSample::alt),
                      .az = mixed(&ViewSample::az),
                      .sep = mixed(&ViewSample::sep),
                      .moonR = mixed(&ViewSample::moonR),
                      .ang = from.ang + turn(from.ang, to.ang) * part,
                      .mag = mixed(&ViewSample::mag)};
}

} // namespace zenka::eclipse
