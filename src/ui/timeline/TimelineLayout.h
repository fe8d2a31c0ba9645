#pragma once

#include "ui/timeline/TimelineLanes.h"
#include "ui/timeline/TimelineRange.h"

#include <optional>
#include <vector>

namespace zenka::ui {

/// Where things lie on a timeline of a size: names of the lanes at the left, the contacts' names on top, the
/// time of day below. Pixels.
struct TimelineLayout {
    double width = 0;
    double height = 0;
    double labelWidth = 0;
    double contactsHeight = 0;
    double axisHeight = 0;
    std::size_t lanes = 0;
    TimelineRange range;

    double plotWidth() const { return width > labelWidth + 1 ? width - labelWidth : 1; }
    double laneHeight() const;
    double laneTop(std::size_t lane) const;
    double lanesBottom() const { return laneTop(lanes); }
    std::optional<std::size_t> laneAt(double y) const;
    double xOf(double clock) const { return labelWidth + (clock - range.from) / range.span() * plotWidth(); }
    double clockAt(double x) const { return range.from + (x - labelWidth) / plotWidth() * range.span(); }
    double secondsPerPixel() const { return range.span() / plotWidth(); }
};

/// One mark: a frame or cue of a lane.
struct FrameRef {
    std::size_t lane = 0;
    std::size_t frame = 0;

    friend bool operator==(const FrameRef&, const FrameRef&) = default;
};

/// The mark nearest to a point, no more than tolerance pixels off.
std::optional<FrameRef> frameAt(const TimelineLayout& layout, const std::vector<TimelineLane>& lanes,
                                double x, double y, double tolerance);

/// The frames that fall on one column of pixels.
struct FrameBin {
    int x = 0;
    FrameState state = FrameState::past; ///< the highest among them
    int count = 0;

    friend bool operator==(const FrameBin&, const FrameBin&) = default;
};

/// The visible frames of a lane by column, from left to right.
void binFrames(const TimelineLayout& layout, const TimelineLane& lane, double clock,
               std::vector<FrameBin>& bins);

} // namespace zenka::ui
