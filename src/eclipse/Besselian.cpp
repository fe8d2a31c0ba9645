#include "eclipse/Besselian.h"

#include "base/CivilTime.h"
#include "eclipse/Calendar.h"
#include "eclipse/Shadow.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace zenka::eclipse {

using namespace detail;

namespace {

base::Instant referenceInstant(const EclipseRecord& rec) {
    const double hour = std::trunc(rec.t0Hour);
    const double minute = std::trunc((rec.t0Hour - hour) * 60);
    const absl::CivilSecond civil =
        absl::CivilMinute(absl::CivilHour(dateOf(rec.dateUTC)) + static_cast<int>(hour)) +
        static_cast<int>(minute);
    return base::instantOf(civil, absl::UTCTimeZone());
}

double azimuthDeg(const ShadowInstant& shadow, const Parallel& parallel, const HourAngle& hour, double sinAlt,
                  double cosAlt) {
    if (!(cosAlt > 1e-9)) {
        return 0; // the Sun stands in the zenith
    }
    const double azimuth = std::atan2(-(shadow.cosD * hour.sinH) / cosAlt,
                                      (shadow.sinD - parallel.sinPhi * sinAlt) / (parallel.cosPhi * cosAlt));
    const double turned = std::fmod(azimuth / degree, 360);
    return azimuth < 0 ? turned + 360 : turned;
}

} // namespace

Eclipse::Eclipse(EclipseRecord record) : rec(std::move(record)), baseTDT_(referenceInstant(rec)) {
}

base::Instant Eclipse::utc(double tHours) const {
    return baseTDT_ + base::Seconds(tHours * 3600) - base::Seconds(rec.deltaT);
}

Geom Eclipse::geometry(double tHours, const Observer& observer) const {
    const ShadowInstant shadow(rec, tHours);
    const Parallel parallel(observer.lat, observer.elev);
    const HourAngle hour(observer.lon, shadow.mu, rec.deltaT);
    const Offset offset(shadow, parallel, hour);
    const double sinAlt = sinAltitude(shadow, parallel, hour);
    const double altitude = std::asin(sinAlt);
    return {
        .m = offset.m(),
        .L1 = outerRadius(rec, shadow, offset.zeta),
        .L2 = innerRadius(rec, shadow, offset.zeta),
        .u = offset.u,
        .v = offset.v,
        .zeta = offset.zeta,
        .altDeg = altitude / degree,
        .azDeg = azimuthDeg(shadow, parallel, hour, sinAlt, std::cos(altitude)),
        .q = std::atan2(parallel.cosPhi * hour.sinH,
                        parallel.sinPhi * shadow.cosD - parallel.cosPhi * shadow.sinD * hour.cosH),
    };
}

double Eclipse::obscuration(double d, double l1, double l2) {
    const double sun = (l1 - l2) / 2;
    const double moon = (l1 + l2) / 2;
    if (sun <= 0 || sun + moon <= d) {
        return 0;
    }
    if (d <= std::abs(moon - sun)) {
        return moon < sun ? std::min(moon * moon / (sun * sun), 1.0) : 1.0;
    }
    // two circular segments, each of half angle a seen from the centre of its disc
    const auto halfAngle = [d](double own, double other) {
        return std::acos(std::clamp((d * d + own * own - other * other) / (2 * d * own), -1.0, 1.0));
    };
    const auto segment = [](double radius, double a) { return radius * radius * (a - std::sin(2 * a) / 2); };
    const double area = segment(sun, halfAngle(sun, moon)) + segment(moon, halfAngle(moon, sun));
    return std::clamp(area / (std::numbers::pi * sun * sun), 0.0, 1.0);
}

double magnitude(const Geom& geom) {
    const double sum = geom.L1 + geom.L2;
    if (sum == 0) {
        return 0;
    }
    const double value = (geom.L1 - geom.m) / sum;
    return value < 0 ? 0 : value;
}

const ContactEvent* LocalCircumstances::event(std::string_view key) const {
    const auto found = std::ranges::find(events, key, &ContactEvent::key);
    return found == events.end() ? nullptr : &*found;
}

} // namespace zenka::eclipse
