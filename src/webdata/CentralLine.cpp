#include "webdata/CentralLine.h"

#include "eclipse/Search.h"
#include "eclipse/Shadow.h"
#include "eclipse/ShadowAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace zenka::webdata {

namespace {

using eclipse::detail::searchHours;

constexpr double secondsPerHour = 3600;
/// Beside these, seconds from either end, there are the whole minutes.
constexpr std::array<double, 5> endSeconds{0, 1, 4, 12, 30};
constexpr double widestKm = 1500;

geo::GeoPoint wrapped(geo::GeoPoint point) {
    point.lon = geo::wrappedLongitude(point.lon);
    return point;
}

/// The last instant at which the axis is on the ground between one at which it is and one at which it is not.
double endOfLine(const eclipse::EclipseRecord& rec, double on, double off) {
    while (std::abs(off - on) * secondsPerHour > 1e-3) {
        const double middle = (on + off) / 2;
        (eclipse::axisOnGround(rec, middle) ? on : off) = middle;
    }
    return on;
}

/// In tHours, ascending.
std::vector<double> instants(const eclipse::Eclipse& eclipse) {
    const double greatest = eclipse::greatestEclipseHours(eclipse.rec);
    if (!eclipse::axisOnGround(eclipse.rec, greatest))
        return {};
    const double first = endOfLine(eclipse.rec, greatest, -searchHours);
    const double last = endOfLine(eclipse.rec, greatest, searchHours);
    std::vector<double> times;
    for (const double seconds : endSeconds) {
        const double inward = std::min(seconds / secondsPerHour, (last - first) / 2);
        times.push_back(first + inward);
        times.push_back(last - inward);
    }
    const double start = eclipse.utc(0).epochSec;
    const double margin = endSeconds.back() / secondsPerHour;
    for (double at = std::ceil(eclipse.utc(first + margin).epochSec / 60) * 60;
         at < eclipse.utc(last - margin).epochSec; at += 60)
        times.push_back((at - start) / secondsPerHour);
    std::ranges::sort(times);
    const auto same = std::ranges::unique(times);
    times.erase(same.begin(), same.end());
    return times;
}

/// The search for the edge of the path on one side of a point of the line.
class EdgeSearch {
public:
    EdgeSearch(const eclipse::EclipseRecord& rec, const geo::GeoPoint& from, double bearingDeg, double tHours)
        : rec_(rec), from_(from), bearingDeg_(bearingDeg), tHours_(tHours) {}

    double distanceKm() const {
        double km = shadowKm();
        if (passAt(km).sunAltDeg >= 0)
            return km;
        double day = 0;
        while (km - day > 0.05) {
            const double middle = (day + km) / 2;
            (passAt(middle).sunAltDeg >= 0 ? day : km) = middle;
        }
        return day;
    }

private:
    /// How the inner shadow passes a place at its nearest.
    struct Pass {
        double outside = 0; ///< from the edge of the shadow, Earth radii; negative within
        double sunAltDeg = 0;
    };

    Pass passAt(double km) const {
        const geo::GeoPoint at = geo::destination(from_, bearingDeg_, km);
        const eclipse::detail::FixedSite site(rec_, eclipse::detail::Parallel(at.lat, 0), at.lon);
        const auto outside = [&](double t) { return site.outsideInner(t); };
        const double nearest = eclipse::detail::goldenMinimum(outside, tHours_ - 0.5, tHours_ + 0.5);
        return {.outside = outside(nearest), .sunAltDeg = site.sunAltitudeDeg(nearest)};
    }

    /// Where the shadow ends, day or night, by the rule of false position: the distance from the shadow grows
    /// almost evenly.
    double shadowKm() const {
        double inside = 0;
        double atInside = passAt(0).outside;
        if (atInside >= 0)
            return 0;
        double outside = 60;
        double atOutside = passAt(outside).outside;
        while (atOutside <= 0) {
            if (outside >= widestKm)
                return outside;
            inside = outside;
            atInside = atOutside;
            outside *= 1.6;
            atOutside = passAt(outside).outside;
        }
        int stuck = 0; // a side that stays where it is loses weight
        for (int round = 0; round < 40 && outside - inside > 0.02; ++round) {
            const double km = inside + (outside - inside) * atInside / (atInside - atOutside);
            const double value = passAt(km).outside;
            if (std::abs(value) < 1e-7)
                return km;
            if (value < 0) {
                inside = km;
                atInside = value;
                if (stuck++ > 0)
                    atOutside /= 2;
                stuck = std::max(stuck, 1);
            } else {
                outside = km;
                atOutside = value;
                if (stuck-- < 0)
                    atInside /= 2;
                stuck = std::min(stuck, -1);
            }
        }
        return (inside + outside) / 2;
    }

    const eclipse::EclipseRecord& rec_;
    geo::GeoPoint from_;
    double bearingDeg_;
    double tHours_;
};

} // namespace

std::vector<LinePoint> centralLine(const eclipse::Eclipse& eclipse) {
    const auto placeAt = [&](double tHours) -> std::optional<geo::GeoPoint> {
        const auto point = eclipse::axisOnGround(eclipse.rec, tHours);
        if (!point)
            return std::nullopt;
        return geo::GeoPoint{.lat = point->lat, .lon = point->lon};
    };
    std::vector<LinePoint> line;
    for (const double tHours : instants(eclipse)) {
        const auto at = placeAt(tHours);
        if (!at)
            continue;
        constexpr double moment = 0.5 / secondsPerHour;
        const double way =
            geo::bearingDeg(placeAt(tHours - moment).value_or(*at), placeAt(tHours + moment).value_or(*at));
        const double left = EdgeSearch(eclipse.rec, *at, way - 90, tHours).distanceKm();
        const double right = EdgeSearch(eclipse.rec, *at, way + 90, tHours).distanceKm();
        const eclipse::Observer observer{.lat = at->lat, .lon = at->lon, .elev = 0};
        line.push_back({.utc = eclipse.utc(tHours),
                        .at = *at,
                        .north = wrapped(geo::destination(*at, way - 90, left)),
                        .south = wrapped(geo::destination(*at, way + 90, right)),
                        .halfWidthKm = (left + right) / 2,
                        .durationSec = eclipse.localCircumstances(observer).totalitySeconds,
                        .sunAltDeg = eclipse.geometry(tHours, observer).altDeg});
    }
    return line;
}

} // namespace zenka::webdata
