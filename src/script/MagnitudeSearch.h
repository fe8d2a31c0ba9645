#pragma once

#include "eclipse/Besselian.h"
#include "eclipse/Shadow.h"

#include <optional>
#include <vector>

namespace zenka::script {

/// Finds when the magnitude reaches a value within a fixed window, by bisection. A loop over magnitudes
/// asks for many values in the same window: the first steps of all bisections fall on the same instants,
/// so the magnitudes there are kept. The answers are those of a bisection from scratch, to the last bit.
class MagnitudeSearch {
public:
    MagnitudeSearch(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer, double loHours,
                    double hiHours);

    /// tHours of the moment; nothing where both ends of the window lie on the same side of the value.
    std::optional<double> find(double magnitude);

private:
    double magnitudeAt(double tHours) const;
    std::optional<double> bisect(double target);

    const eclipse::Eclipse& eclipse_;
    const eclipse::detail::Parallel parallel_;
    const double lon_;
    const double lo_;
    const double hi_;
    const double magnitudeLo_;
    const double magnitudeHi_;
    std::vector<double> middles_; ///< magnitudes by node of the tree of halvings, root at 1; NaN if unknown
    std::optional<double> lastTarget_; ///< lines within one loop often share their magnitude
    std::optional<double> lastAnswer_;
};

} // namespace zenka::script
