#include "rig/runlog/LatenessMeter.h"

#include <algorithm>
#include <cmath>

namespace zenka::rig {

double LatenessMeter::largest() const {
    return samples_.empty() ? 0 : *std::ranges::max_element(samples_);
}

double LatenessMeter::quantile(double fraction) const {
    if (samples_.empty())
        return 0;
    std::vector<double> sorted = samples_;
    const double last = static_cast<double>(sorted.size() - 1);
    const auto rank = static_cast<std::ptrdiff_t>(std::ceil(std::clamp(fraction, 0.0, 1.0) * last));
    std::ranges::nth_element(sorted, sorted.begin() + rank);
    return sorted[static_cast<std::size_t>(rank)];
}

} // namespace zenka::rig
