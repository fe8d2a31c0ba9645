#pragma once

#include "analysis/Alignment.h"

#include <vector>

namespace zenka::analysis {

/// What became of a capture.
struct Landing {
    int frame = noFrame;       ///< in the list of frames
    bool rightSettings = true; ///< false: a frame stands at its time, but has other settings

    bool any() const { return frame != noFrame; }
    bool matched() const { return any() && rightSettings; }
    bool misExposed() const { return any() && !rightSettings; }
};

/// Finds the frame of each capture. Both lists are in order, and their times are numbers.
std::vector<Landing> findLandings(const std::vector<script::Capture>& captures,
                                  const std::vector<ExifFrame>& frames);

} // namespace zenka::analysis
