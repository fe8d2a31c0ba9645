#pragma once

#include "script/ZenkaScript.h"

#include <string>
#include <vector>

namespace zenka::script {

/// Frames of one camera with no long pause between them, during which nobody points it anew.
struct Burst {
    double beginSec = 0;    ///< offset of the first frame
    double endSec = 0;      ///< offset of the last one
    std::string beginLabel; ///< the moments for people
    std::string endLabel;
    int frames = 0;
    double longestSec = 0; ///< the longest exposure; 0 where the script tells none

    friend bool operator==(const Burst&, const Burst&) = default;
};

/// From where on a pause ends a burst, seconds from one frame's begin to the next one's.
inline constexpr double burstPauseSec = 60;

/// The bursts of the captures under some cameras' tokens, as written. The captures are sorted by their
/// offsets.
std::vector<Burst> burstsOf(const std::vector<Capture>& captures, const std::vector<std::string>& tokens);

/// All frames between two offsets as one; without frames where there are none.
Burst burstWithin(const std::vector<Capture>& captures, const std::vector<std::string>& tokens,
                  double fromSec, double toSec);

} // namespace zenka::script
