#pragma once

#include <cmath>
#include <optional>

namespace zenka::eclipse::detail {

/// All searches stay within this many hours of the reference instant.
inline constexpr double searchHours = 4.0;

/// The place of the smallest value of a function between a and b.
template <typename Function>
double goldenMinimum(Function&& function, double a, double b) {
    constexpr double ratio = 0.6180339887498949;
    constexpr double tolerance = 1e-7;
    for (int round = 0; round < 200 && !(std::abs(b - a) < tolerance); ++round) {
        const double c = b - (b - a) * ratio;
        const double d = a + (b - a) * ratio;
        if (function(c) < function(d)) {
            b = d;
        } else {
            a = c;
        }
    }
    return (a + b) / 2;
}

/// The zero in a bracket whose lower end has the value `atLow`.
template <typename Function>
double bisect(Function&& function, double low, double high, double atLow) {
    for (int round = 0; round < 80; ++round) {
        const double middle = (low + high) / 2;
        const double value = function(middle);
        if (std::abs(value) < 1e-7 || high - low < 1e-9) {
            return middle;
        }
        if ((value > 0) == (atLow > 0)) {
            low = middle;
            atLow = value;
        } else {
            high = middle;
        }
    }
    return (low + high) / 2;
}

/// The grid on which crossings are looked for: every 4 seconds across ±4 hours.
inline constexpr int gridLast = 7200;
inline double gridTime(int k) {
    return -searchHours + k / 900.0;
}

/// How fast a function of tHours can change, and how far floating-point error can take it from that.
struct ChangeBound {
    double perHour = 0;
    double margin = 0;
};

/// Where a function becomes negative first and where it ceases to be negative last.
struct Crossings {
    std::optional<double> entry;
    std::optional<double> exit;
};

/// Looks for crossings between neighbours on the grid. From a point with the value f no point nearer than
/// |f| / perHour can have another sign, so the walk goes there in one step: it finds the very brackets
/// that a walk over all points finds.
template <typename Function>
Crossings findCrossings(Function&& function, const ChangeBound& bound) {
    struct Bracket {
        int k = 0; ///< of the upper end
        double atLow = 0;
    };
    std::optional<Bracket> entry;
    std::optional<Bracket> exit;
    const double perStep = bound.perHour / 900;
    double before = function(gridTime(0));
    for (int k = 1; k <= gridLast; ++k) {
        const double sure = (std::abs(before) - bound.margin) / perStep;
        if (sure >= gridLast) {
            break;
        }
        if (sure >= 2) {
            k += static_cast<int>(sure) - 1; // a point that has the sign of the one before
            if (k > gridLast) {
                break;
            }
        }
        const double value = function(gridTime(k));
        if (before > 0 && value <= 0 && !entry) {
            entry = Bracket{.k = k, .atLow = before};
        }
        if (before < 0 && value >= 0) {
            exit = Bracket{.k = k, .atLow = before};
        }
        before = value;
    }
    const auto refined = [&](const std::optional<Bracket>& bracket) -> std::optional<double> {
        if (!bracket) {
            return std::nullopt;
        }
        return bisect(function, gridTime(bracket->k - 1), gridTime(bracket->k), bracket->atLow);
    };
    return {.entry = refined(entry), .exit = refined(exit)};
}

} // namespace zenka::eclipse::detail
