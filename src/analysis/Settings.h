#pragma once

#include "analysis/ExifFrame.h"
#include "analysis/FrameSet.h"
#include "script/ZenkaScript.h"

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace zenka::analysis {

/// Whether a frame has the settings that a capture asks for: half a stop of ISO, for bodies round it, 0.15 of
/// f-number and 8 % of shutter. What the capture leaves to the camera passes, and so does an ISO that the
/// file does not tell; a shutter or an f-number that it does not tell fails.
bool matches(const script::Capture& capture, const ExifFrame& frame);

/// How a frame at the time of a capture differs from it, for people: "asked 1/500, card says 1/250".
std::string settingsDifference(const script::Capture& capture, const ExifFrame& frame);

/// `matches` for all pairs of two lists. Settings are few and frames many, so it is decided once for each
/// pair of distinct settings.
class MatchRows {
public:
    MatchRows(const std::vector<script::Capture>& captures, const std::vector<ExifFrame>& frames);

    std::size_t captures() const { return captureKind_.size(); }
    std::size_t frames() const { return frameKind_.size(); }

    /// The frames that match a capture. Valid until the next call.
    const FrameSet& of(std::size_t capture);

private:
    const std::vector<script::Capture>& captures_;
    const std::vector<ExifFrame>& frames_;
    std::vector<std::uint32_t> captureKind_; // captures of one kind have the same settings
    std::vector<std::uint32_t> frameKind_;
    std::vector<std::size_t> sample_; // a frame of each kind
    std::unordered_map<std::uint32_t, FrameSet> rows_;
};

} // namespace zenka::analysis
