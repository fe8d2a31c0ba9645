#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// How one body did in a run.
struct BodyTally {
    std::string label;
    int ok = 0;
    int dropped = 0;
};

/// A sentence that names the bodies which dropped far more frames than the others did on the same
/// script; nothing when none stands out. Needs at least three bodies with ten frames each, and measures
/// against their median, so that all of them can never be named.
std::optional<std::string> dropAsymmetryHint(const std::vector<BodyTally>& bodies);

} // namespace zenka::rig
