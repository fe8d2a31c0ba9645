#include "eclipse/EclipsePath.h"

#include "eclipse/Search.h"
#include "eclipse/Shadow.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace zenka::eclipse {

using namespace detail;

namespace {

/// The Sun may stand this far below the horizon.
constexpr double lowestSunDeg = -2.0;

/// A point of the central line and its time.
struct LinePoint {
    double lon = 0;
    double lat = 0;
    double tHours = 0;
};

/// The parallels of the coarse grid, the same for every instant of every eclipse.
constexpr int coarseStepDeg = 5;
const std::array<Parallel, 35>& coarseParallels() {
    static const auto parallels = []<std::size_t... I>(std::index_sequence<I...>) {
        return std::array{Parallel(-85.0 + coarseStepDeg * static_cast<double>(I), 0)...};
    }
    (std::make_index_sequence<35>());
    return parallels;
}

/// The search for the axis on the ground at one instant.
class AxisSearch {
public:
    AxisSearch(const EclipseRecord& rec, double tHours) : rec_(rec), shadow_(rec, tHours) {}

    bool axisMeetsEarth() const {
        const double y1 = shadow_.y / std::sqrt(1 - 0.006694378665103917 * shadow_.cosD * shadow_.cosD);
        return 1 - shadow_.x * shadow_.x - y1 * y1 > 1e-6;
    }

    /// The point of a grid of 5 degrees nearest to the axis, among those with the Sun up.
    std::optional<PathPoint> coarse() const {
        std::vector<HourAngle> hours;
        for (int lon = -180; lon < 180; lon += coarseStepDeg) {
            hours.push_back(hourAngle(lon));
        }
        std::optional<PathPoint> best;
        double nearest = std::numeric_limits<double>::infinity();
        for (std::size_t row = 0; row < coarseParallels().size(); ++row) {
            const Parallel& parallel = coarseParallels()[row];
            for (std::size_t column = 0; column < hours.size(); ++column) {
                const double m = Offset(shadow_, parallel, hours[column]).m();
                if (m < nearest && altitudeDeg(shadow_, parallel, hours[column]) > lowestSunDeg) {
                    nearest = m;
                    best = PathPoint{.lon = -180.0 + coarseStepDeg * static_cast<double>(column),
                                     .lat = -85.0 + coarseStepDeg * static_cast<double>(row)};
                }
            }
        }
        return best;
    }

    /// Closes in on the axis from a start within `radius` degrees, a longitude and a latitude at a time.
    PathPoint refine(PathPoint point, double radius) const {
        for (int round = 0; round < 7; ++round) {
            const Parallel parallel(point.lat, 0);
            point.lon =
                goldenMinimum([&](double lon) { return Offset(shadow_, parallel, hourAngle(lon)).m(); },
                              point.lon - radius, point.lon + radius);
            const HourAngle hour = hourAngle(point.lon);
            point.lat = goldenMinimum([&](double lat) { return Offset(shadow_, Parallel(lat, 0), hour).m(); },
                                      point.lat - radius, point.lat + radius);
            radius = std::max(radius / 2, 1.0);
        }
        return point;
    }

    /// Whether the inner shadow lies on a point and the Sun is up there.
    bool isCentral(PathPoint point) const {
        const Parallel parallel(point.lat, 0);
        const HourAngle hour = hourAngle(point.lon);
        const Offset offset(shadow_, parallel, hour);
        return !(std::abs(innerRadius(rec_, shadow_, offset.zeta)) < offset.m()) &&
               !(altitudeDeg(shadow_, parallel, hour) < lowestSunDeg);
    }

private:
    HourAngle hourAngle(double lon) const { return {lon, shadow_.mu, rec_.deltaT}; }

    const EclipseRecord& rec_;
    ShadowInstant shadow_;
};

double normalizedLongitude(double lon) {
    while (lon > 180) {
        lon -= 360;
    }
    while (lon < -180) {
        lon += 360;
    }
    return lon;
}

std::vector<LinePoint> traceLine(const EclipseRecord& rec, double stepSeconds) {
    const double step = stepSeconds / 3600;
    std::vector<LinePoint> line;
    if (!(-searchHours + step > -searchHours)) {
        return line; // no step that would get anywhere
    }
    std::optional<PathPoint> previous;
    for (double t = -searchHours; t <= searchHours; t += step) {
        const AxisSearch search(rec, t);
        double radius = 4.0;
        if (!previous) {
            if (!search.axisMeetsEarth()) {
                continue;
            }
            previous = search.coarse();
            if (!previous) {
                continue;
            }
            radius = 6.0;
        }
        previous = search.refine(*previous, radius);
        if (search.isCentral(*previous)) {
            line.push_back({.lon = normalizedLongitude(previous->lon), .lat = previous->lat, .tHours = t});
        } else {
            previous.reset();
        }
    }
    return line;
}

/// How far the path reaches to one side of a point of the central line, kilometres.
class PathEdge {
public:
    PathEdge(const EclipseRecord& rec, const LinePoint& center, double normalLat, double normalLon)
        : rec_(rec), center_(center), normalLat_(normalLat), normalLon_(normalLon),
          cosLat_(std::max(std::cos(center.lat * degree), 0.1)) {}

    double distanceKm(double side) const {
        double inside = 0;
        double outside = 15;
        while (isInside(side, outside)) {
            inside = outside;
            outside += 15;
            if (inside > 785) {
                return inside;
            }
        }
        for (int round = 0; round < 16; ++round) {
            const double middle = (inside + outside) / 2;
            (isInside(side, middle) ? inside : outside) = middle;
        }
        return (inside + outside) / 2;
    }

private:
    bool isInside(double side, double km) const {
        const double lat = center_.lat + normalLat_ * side * km / 111;
        const double lon = center_.lon + normalLon_ * (side * km / 111) / cosLat_;
        const FixedSite site(rec_, Parallel(lat, 0), lon);
        const auto outsideInner = [&](double t) { return site.outsideInner(t); };
        const double t = goldenMinimum(outsideInner, center_.tHours - 1, center_.tHours + 1);
        return outsideInner(t) <= 0 && site.sunAltitudeDeg(t) > lowestSunDeg;
    }

    const EclipseRecord& rec_;
    LinePoint center_;
    double normalLat_;
    double normalLon_;
    double cosLat_;
};

double halfWidthKm(const EclipseRecord& rec, const std::vector<LinePoint>& line, std::size_t i) {
    const LinePoint& previous = line[std::max<std::size_t>(i, 1) - 1];
    const LinePoint& next = line[std::min(i + 1, line.size() - 1)];
    const double dLon = next.lon - previous.lon;
    const double dLat = next.lat - previous.lat;
    const double c = std::cos(line[i].lat * degree);
    const double length = std::max(std::sqrt(c * dLon * (c * dLon) + dLat * dLat), 1e-9);
    const PathEdge edge(rec, line[i], -c * dLon / length, dLat / length);
    return (edge.distanceKm(+1) + edge.distanceKm(-1)) / 2;
}

/// At the grazing ends of the line the normal runs along the shadow; such points are left out.
constexpr double widestKm = 250.0;

/// The part of the line, begin to end, that keeps its points: the ends whose width is beyond all reason
/// are left out as long as more than three points remain.
struct Kept {
    std::size_t begin = 0;
    std::size_t end = 0;
};

template <typename Width>
Kept withoutGrazingEnds(std::size_t count, Width&& width) {
    Kept kept{.begin = 0, .end = count};
    while (kept.end - kept.begin > 3 && width(kept.begin) > widestKm) {
        ++kept.begin;
    }
    while (kept.end - kept.begin > 3 && width(kept.end - 1) > widestKm) {
        --kept.end;
    }
    return kept;
}

} // namespace

CentralPath tracePath(const Eclipse& eclipse, double stepSeconds) {
    const std::vector<LinePoint> line = traceLine(eclipse.rec, stepSeconds);
    std::vector<double> widths;
    for (std::size_t i = 0; i < line.size(); ++i) {
        widths.push_back(halfWidthKm(eclipse.rec, line, i));
    }
    const Kept kept = withoutGrazingEnds(line.size(), [&](std::size_t i) { return widths[i]; });
    CentralPath path;
    for (std::size_t i = kept.begin; i < kept.end; ++i) {
        path.central.push_back({.lon = line[i].lon, .lat = line[i].lat});
        path.halfWidthKm.push_back(std::min(widths[i], widestKm));
    }
    return path;
}

std::optional<DurationPoint> greatestDurationPoint(const Eclipse& eclipse) {
    const std::vector<LinePoint> line = traceLine(eclipse.rec, 600);
    // of the widths only those that decide on the ends are needed
    const Kept kept =
        withoutGrazingEnds(line.size(), [&](std::size_t i) { return halfWidthKm(eclipse.rec, line, i); });

    DurationPoint best;
    const auto improve = [&](double lat, double lon) {
        const double seconds =
            eclipse.localCircumstances({.lat = lat, .lon = lon, .elev = 0}).totalitySeconds;
        const bool longer = seconds > best.seconds;
        if (longer) {
            best = {.lat = lat, .lon = lon, .seconds = seconds};
        }
        return longer;
    };
    std::optional<std::size_t> bestIndex;
    for (std::size_t i = kept.begin; i < kept.end; ++i) {
        if (improve(line[i].lat, line[i].lon)) {
            bestIndex = i;
        }
    }
    if (!bestIndex) {
        return std::nullopt;
    }

    LinePoint from = line[std::max(*bestIndex, kept.begin + 1) - 1];
    LinePoint to = line[std::min(*bestIndex + 1, kept.end - 1)];
    const auto between = [&](double fraction) {
        return LinePoint{.lon = from.lon + (to.lon - from.lon) * fraction,
                         .lat = from.lat + (to.lat - from.lat) * fraction};
    };
    for (int pass = 0; pass < 3; ++pass) {
        double bestFraction = 0.5;
        for (int i = 0; i <= 8; ++i) {
            const double fraction = i / 8.0;
            const LinePoint point = between(fraction);
            if (improve(point.lat, point.lon)) {
                bestFraction = fraction;
            }
        }
        const LinePoint nextFrom = between(std::max(bestFraction - 0.125, 0.0));
        to = between(std::min(bestFraction + 0.125, 1.0));
        from = nextFrom;
    }
    return best;
}

} // namespace zenka::eclipse
