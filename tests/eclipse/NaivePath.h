#pragma once

#include "eclipse/EclipsePath.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

/// The reference for the central line: the same searches written out with `geometry` for every value and
/// nothing held on to.
namespace zenka::eclipse::testing {

inline double goldenPlace(const std::function<double(double)>& f, double a, double b) {
    for (int round = 0; round < 200 && std::abs(b - a) >= 1e-7; ++round) {
        const double c = b - (b - a) * 0.6180339887498949;
        const double d = a + (b - a) * 0.6180339887498949;
        if (f(c) < f(d)) {
            b = d;
        } else {
            a = c;
        }
    }
    return (a + b) / 2;
}

class NaivePath {
public:
    NaivePath(const Eclipse& eclipse, double stepSeconds) : eclipse_(eclipse) { trace(stepSeconds); }

    CentralPath cleaned() const {
        CentralPath path;
        for (std::size_t i = 0; i < line_.size(); ++i) {
            path.central.push_back({.lon = line_[i].lon, .lat = line_[i].lat});
            path.halfWidthKm.push_back(halfWidth(i));
        }
        auto& [central, widths] = path;
        while (central.size() > 3 && widths.front() > 250) {
            central.erase(central.begin());
            widths.erase(widths.begin());
        }
        while (central.size() > 3 && widths.back() > 250) {
            central.pop_back();
            widths.pop_back();
        }
        for (double& width : widths) {
            width = std::min(width, 250.0);
        }
        return path;
    }

private:
    struct Point {
        double lon;
        double lat;
        double t;
    };

    Geom at(double t, double lat, double lon) const {
        return eclipse_.geometry(t, {.lat = lat, .lon = lon, .elev = 0});
    }

    static double value(const std::vector<double>& c, double t) {
        return ((c[3] * t + c[2]) * t + c[1]) * t + c[0];
    }

    bool coarse(double t, double& lat, double& lon) const {
        const double x = value(eclipse_.rec.x, t);
        const double cosD = std::cos(value(eclipse_.rec.d, t) * (std::numbers::pi / 180));
        const double y1 = value(eclipse_.rec.y, t) / std::sqrt(1 - 0.006694378665103917 * cosD * cosD);
        if (1 - x * x - y1 * y1 <= 1e-6) {
            return false;
        }
        double nearest = std::numeric_limits<double>::infinity();
        for (int row = -85; row <= 85; row += 5) {
            for (int column = -180; column < 180; column += 5) {
                const Geom geom = at(t, row, column);
                if (geom.altDeg > -2 && geom.m < nearest) {
                    nearest = geom.m;
                    lat = row;
                    lon = column;
                }
            }
        }
        return std::isfinite(nearest);
    }

    void trace(double stepSeconds) {
        double lat = 0;
        double lon = 0;
        bool warm = false;
        for (double t = -4; t <= 4; t += stepSeconds / 3600) {
            double radius = warm ? 4 : 6;
            if (!warm && !coarse(t, lat, lon)) {
                continue;
            }
            for (int round = 0; round < 7; ++round) {
                lon = goldenPlace([&](double trial) { return at(t, lat, trial).m; }, lon - radius,
                                  lon + radius);
                lat = goldenPlace([&](double trial) { return at(t, trial, lon).m; }, lat - radius,
                                  lat + radius);
                radius = std::max(radius / 2, 1.0);
            }
            const Geom geom = at(t, lat, lon);
            warm = !(std::abs(geom.L2) < geom.m || geom.altDeg < -2);
            if (warm) {
                double kept = lon;
                while (kept > 180) {
                    kept -= 360;
                }
                while (kept < -180) {
                    kept += 360;
                }
                line_.push_back({kept, lat, t});
            }
        }
    }

    bool inside(const Point& center, double nLat, double nLon, double side, double km) const {
        const double c = std::max(std::cos(center.lat * (std::numbers::pi / 180)), 0.1);
        const double lat = center.lat + nLat * side * km / 111;
        const double lon = center.lon + nLon * (side * km / 111) / c;
        const auto outside = [&](double t) {
            const Geom geom = at(t, lat, lon);
            return geom.m - std::abs(geom.L2);
        };
        const double best = goldenPlace(outside, center.t - 1, center.t + 1);
        return outside(best) <= 0 && at(best, lat, lon).altDeg > -2;
    }

    double edge(const Point& center, double nLat, double nLon, double side) const {
        double low = 0;
        double high = 15;
        while (inside(center, nLat, nLon, side, high)) {
            if (high > 785) {
                return high;
            }
            low = high;
            high += 15;
        }
        for (int round = 0; round < 16; ++round) {
            const double middle = (low + high) / 2;
            (inside(center, nLat, nLon, side, middle) ? low : high) = middle;
        }
        return (low + high) / 2;
    }

    double halfWidth(std::size_t i) const {
        const Point& p = line_[i == 0 ? 0 : i - 1];
        const Point& n = line_[std::min(i + 1, line_.size() - 1)];
        const double dLon = n.lon - p.lon;
        const double dLat = n.lat - p.lat;
        const double c = std::cos(line_[i].lat * (std::numbers::pi / 180));
        const double length = std::max(std::sqrt((c * dLon) * (c * dLon) + dLat * dLat), 1e-9);
        const double nLat = -c * dLon / length;
        const double nLon = dLat / length;
        return (edge(line_[i], nLat, nLon, 1) + edge(line_[i], nLat, nLon, -1)) / 2;
    }

    const Eclipse& eclipse_;
    std::vector<Point> line_;
};

/// The search for the longest central phase, on a path that is already cleaned.
inline std::optional<DurationPoint> naiveGreatestDuration(const Eclipse& eclipse,
                                                          const std::vector<PathPoint>& central) {
    const auto seconds = [&](double lat, double lon) {
        return eclipse.localCircumstances({.lat = lat, .lon = lon}).totalitySeconds;
    };
    DurationPoint best;
    std::size_t bestIndex = 0;
    for (std::size_t i = 0; i < central.size(); ++i) {
        const double now = seconds(central[i].lat, central[i].lon);
        if (now > best.seconds) {
            best = {central[i].lat, central[i].lon, now};
            bestIndex = i;
        }
    }
    if (best.seconds == 0) {
        return std::nullopt;
    }
    PathPoint a = central[std::max<std::size_t>(bestIndex, 1) - 1];
    PathPoint b = central[std::min(bestIndex + 1, central.size() - 1)];
    for (int pass = 0; pass < 3; ++pass) {
        double fraction = 0.5;
        const auto point = [&, a, b](double f) {
            return PathPoint{a.lon + (b.lon - a.lon) * f, a.lat + (b.lat - a.lat) * f};
        };
        for (double f = 0; f <= 1; f += 0.125) {
            const PathPoint trial = point(f);
            const double now = seconds(trial.lat, trial.lon);
            if (now > best.seconds) {
                best = {trial.lat, trial.lon, now};
                fraction = f;
            }
        }
        a = point(std::max(fraction - 0.125, 0.0));
        b = point(std::min(fraction + 0.125, 1.0));
    }
    return best;
}

} // namespace zenka::eclipse::testing
