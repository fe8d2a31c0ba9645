#include "script/MagnitudeSearch.h"

#include <cmath>
#include <limits>

namespace zenka::script {

namespace {

constexpr std::size_t keptNodes = 1 << 12;
constexpr int mostRounds = 80;
constexpr double magnitudeTolerance = 1e-7;
constexpr double hoursTolerance = 1e-9;

/// 0 counts as positive.
bool sameSide(double a, double b) {
    return (a >= 0) == (b >= 0);
}

} // namespace

MagnitudeSearch::MagnitudeSearch(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
                                 double loHours, double hiHours)
    : eclipse_(eclipse), parallel_(observer.lat, observer.elev), lon_(observer.lon), lo_(loHours),
      hi_(hiHours), magnitudeLo_(magnitudeAt(loHours)), magnitudeHi_(magnitudeAt(hiHours)),
      middles_(keptNodes, std::numeric_limits<double>::quiet_NaN()) {
}

std::optional<double> MagnitudeSearch::find(double magnitude) {
    if (lastTarget_ != magnitude) {
        lastAnswer_ = bisect(magnitude);
        lastTarget_ = magnitude;
    }
    return lastAnswer_;
}

std::optional<double> MagnitudeSearch::bisect(double target) {
    double lo = lo_;
    double hi = hi_;
    double valueLo = magnitudeLo_ - target;
    if (sameSide(valueLo, magnitudeHi_ - target))
        return std::nullopt;
    std::size_t node = 1;
    for (int round = 0; round < mostRounds; ++round) {
        const double middle = (lo + hi) / 2;
        double magnitude = node < keptNodes ? middles_[node] : std::numeric_limits<double>::quiet_NaN();
        if (std::isnan(magnitude)) {
            magnitude = magnitudeAt(middle);
            if (node < keptNodes)
                middles_[node] = magnitude;
        }
        const double value = magnitude - target;
        if (std::abs(value) < magnitudeTolerance || hi - lo < hoursTolerance)
            return middle;
        const bool upper = sameSide(value, valueLo);
        if (upper) {
            lo = middle;
            valueLo = value;
        } else {
            hi = middle;
        }
        if (node < keptNodes)
            node = 2 * node + (upper ? 1 : 0);
    }
    return (lo + hi) / 2;
}

/// What eclipse::magnitude makes of Eclipse::geometry, to the last bit, without the angles that cost most.
double MagnitudeSearch::magnitudeAt(double tHours) const {
    using namespace eclipse::detail;
    const eclipse::EclipseRecord& rec = eclipse_.rec;
    const ShadowInstant shadow(rec, tHours);
    const Offset offset(shadow, parallel_, HourAngle(lon_, shadow.mu, rec.deltaT));
    eclipse::Geom geom;
    geom.m = offset.m();
    geom.L1 = outerRadius(rec, shadow, offset.zeta);
    geom.L2 = innerRadius(rec, shadow, offset.zeta);
    return eclipse::magnitude(geom);
}

} // namespace zenka::script
