#include "eclipse/Framing.h"

#include "eclipse/Shadow.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::eclipse::Framing {

namespace {

constexpr double arcsec = detail::degree / 3600;
/// The Moon's radius in the elements, Earth radii.
constexpr double moonRadius = 0.2725076;
constexpr double sunRadiusAtOneAu = 959.63; ///< arc seconds
constexpr double sunParallax = 8.794143;    ///< arc seconds

struct Direction {
    double north = 0;
    double east = 0;
    double up = 0;
};

Direction directionOf(const SkyPlace& place) {
    const double alt = place.altDeg * detail::degree;
    const double az = place.azDeg * detail::degree;
    return {.north = std::cos(alt) * std::cos(az), .east = std::cos(alt) * std::sin(az), .up = std::sin(alt)};
}

double angleBetween(const SkyPlace& from, const SkyPlace& to) {
    const Direction a = directionOf(from);
    const Direction b = directionOf(to);
    // by the chord: the arc cosine knows no small angles
    return 2 * std::asin(std::min(1.0, std::hypot(a.north - b.north, a.east - b.east, a.up - b.up) / 2));
}

} // namespace

bool Optics::portrait() const {
    const double turn = rotationDeg * detail::degree;
    return std::abs(std::sin(turn)) > std::abs(std::cos(turn));
}

double sunRadiusDeg(const Eclipse& eclipse, double tHours, const Observer& observer) {
    const EclipseRecord& rec = eclipse.rec;
    if (rec.tanF1 <= 0) // elements of cylinders, as if the Sun were infinitely far
        return sunRadiusAtOneAu / 3600;
    const detail::ShadowInstant shadow(rec, tHours);
    const double sunRadius = std::sin(sunRadiusAtOneAu * arcsec) / std::sin(sunParallax * arcsec);
    // l1 = z tan f1 + k / cos f1 tells the Moon's height z above the fundamental plane, and
    // sin f1 = (Sun's radius + k) / (distance of Sun and Moon) that distance
    const double cosF1 = 1 / std::hypot(1, rec.tanF1);
    const double moonHeight = (shadow.l1 - moonRadius / cosF1) / rec.tanF1;
    const double sunFromMoon = (sunRadius + moonRadius) / (rec.tanF1 * cosF1);
    const double distance = moonHeight + sunFromMoon - eclipse.geometry(tHours, observer).zeta;
    return std::asin(sunRadius / distance) / detail::degree;
}

Facts facts(const Optics& optics, double sunRadiusDeg) {
    const double focal = optics.wholeFocalMm();
    const auto field = [focal](double sideMm) { return 2 * std::atan(sideMm / 2 / focal) / detail::degree; };
    Facts facts;
    facts.fieldWidthDeg = field(optics.widthMm);
    facts.fieldHeightDeg = field(optics.heightMm);
    facts.sunMm = 2 * focal * std::tan(sunRadiusDeg * detail::degree);
    facts.sunOfHeight = facts.sunMm / (optics.portrait() ? optics.widthMm : optics.heightMm);
    facts.radiiAlongWidth = facts.fieldWidthDeg / 2 / sunRadiusDeg;
    facts.radiiAlongHeight = facts.fieldHeightDeg / 2 / sunRadiusDeg;
    if (optics.pixelsKnown()) {
        const double pitchMm = optics.widthMm / optics.widthPx;
        facts.arcsecPerPx = std::atan(pitchMm / focal) / arcsec;
        facts.sunPx = facts.sunMm / pitchMm;
    }
    return facts;
}

SkyPlace sunAt(const Eclipse& eclipse, double tHours, const Observer& observer) {
    const Geom geom = eclipse.geometry(tHours, observer);
    return {.altDeg = geom.altDeg, .azDeg = geom.azDeg};
}

std::optional<FramePoint> onSensor(const Optics& optics, const SkyPlace& aimed, const SkyPlace& at) {
    // The gnomonic projection, which a lens without distortion makes.
    const double alt0 = aimed.altDeg * detail::degree;
    const double alt = at.altDeg * detail::degree;
    const double turn = (at.azDeg - aimed.azDeg) * detail::degree;
    const double ahead = std::sin(alt0) * std::sin(alt) + std::cos(alt0) * std::cos(alt) * std::cos(turn);
    if (ahead <= 1e-6)
        return std::nullopt;
    const double focal = optics.wholeFocalMm();
    const double right = focal * std::cos(alt) * std::sin(turn) / ahead;
    const double up =
        focal * (std::sin(alt) * std::cos(alt0) - std::cos(alt) * std::sin(alt0) * std::cos(turn)) / ahead;
    const double cosR = std::cos(optics.rotationDeg * detail::degree);
    const double sinR = std::sin(optics.rotationDeg * detail::degree);
    return FramePoint{.right = right * cosR - up * sinR, .up = right * sinR + up * cosR};
}

FramePoint zenithUp(const Optics& optics, const FramePoint& point) {
    const double cosR = std::cos(optics.rotationDeg * detail::degree);
    const double sinR = std::sin(optics.rotationDeg * detail::degree);
    return {.right = point.right * cosR + point.up * sinR, .up = point.up * cosR - point.right * sinR};
}

bool holds(const Optics& optics, const FramePoint& point, double radiusMm) {
    return std::abs(point.right) + radiusMm <= optics.widthMm / 2 &&
           std::abs(point.up) + radiusMm <= optics.heightMm / 2;
}

double pixelsBetween(const Optics& optics, const FramePoint& from, const FramePoint& to) {
    return std::hypot((to.right - from.right) * optics.widthPx / optics.widthMm,
                      (to.up - from.up) * optics.heightPx / optics.heightMm);
}

double sunSpeed(const Eclipse& eclipse, double tHours, const Observer& observer) {
    constexpr double beside = 5.0 / 3600; // hours; close to the zenith an altitude is known to 0.005″ only
    const double angle =
        angleBetween(sunAt(eclipse, tHours - beside, observer), sunAt(eclipse, tHours + beside, observer));
    return angle / arcsec / (2 * beside * 3600);
}

double pixelsPerSecond(const Optics& optics, double speed) {
    if (!optics.pixelsKnown())
        return 0;
    return speed * arcsec * optics.wholeFocalMm() * optics.widthPx / optics.widthMm;
}

std::optional<double> leavesAt(const Eclipse& eclipse, const Observer& observer, const Optics& optics,
                               const SkyPlace& aimed, double radii, double fromHours, double toHours) {
    const double radiusMm =
        radii * optics.wholeFocalMm() * std::tan(sunRadiusDeg(eclipse, fromHours, observer) * detail::degree);
    const auto held = [&](double hours) {
        const auto place = onSensor(optics, aimed, sunAt(eclipse, hours, observer));
        return place && holds(optics, *place, radiusMm);
    };
    if (!held(fromHours) || held(toHours))
        return std::nullopt;
    // The Sun's way is nearly straight and the frame convex, so it leaves once.
    double inside = fromHours;
    double outside = toHours;
    while (outside - inside > 0.05 / 3600) {
        const double middle = (inside + outside) / 2;
        (held(middle) ? inside : outside) = middle;
    }
    return inside;
}

} // namespace zenka::eclipse::Framing
