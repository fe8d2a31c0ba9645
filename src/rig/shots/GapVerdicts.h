#pragma once

#include "rig/shots/GapProfile.h"

#include <optional>
#include <string>
#include <vector>

/// What a profile comes to, in words and in numbers.
namespace zenka::rig::GapVerdicts {

/// What the words depend on beside the numbers.
struct Body {
    bool simulated = false;
    bool sony = false; ///< it never tells of a frame that was not stored
};

struct Finding {
    std::string verdict;
    std::optional<double> floorSec; ///< what is worth keeping; nothing when no floor was found
};

/// "0.4", "0.33": seconds as verdicts have them.
std::string fmtInterval(double seconds);

/// Of the rungs in the order in which they were tried.
Finding quickFloor(const std::vector<GapProfileRow>& rows, GapProfileEnd end, Body body);

std::string sustainedBurst(const GapBurst& burst, GapProfileEnd end, Body body);

} // namespace zenka::rig::GapVerdicts
