#pragma once

#include "analysis/Settings.h"

#include <vector>

namespace zenka::analysis {

/// Beyond so many pairs of a capture and a frame no common subsequence is looked for.
inline constexpr std::size_t mostAlignmentCells = 8'000'000;

/// No frame.
inline constexpr int noFrame = -1;

/// The frame of each capture, or noFrame: the longest common subsequence of both lists, in their order in
/// time; where they are too long for it, for each capture the first free frame that matches. `near` has the
/// frames that a capture may have by its time, one range for each; without any all frames may be.
std::vector<int> align(MatchRows& rows, const std::vector<FrameRange>& near);

} // namespace zenka::analysis
