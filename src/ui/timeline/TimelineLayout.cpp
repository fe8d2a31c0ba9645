#include "ui/timeline/TimelineLayout.h"

#include <algorithm>
#include <cmath>

namespace zenka::ui {

double TimelineLayout::laneHeight() const {
    constexpr double tallest = 52;
    const double room = height - contactsHeight - axisHeight;
    return lanes == 0 ? 0 : std::clamp(room / static_cast<double>(lanes), 1.0, tallest);
}

double TimelineLayout::laneTop(std::size_t lane) const {
    return contactsHeight + laneHeight() * static_cast<double>(lane);
}

std::optional<std::size_t> TimelineLayout::laneAt(double y) const {
    if (lanes == 0 || y < contactsHeight || y >= lanesBottom())
        return std::nullopt;
    return std::min(static_cast<std::size_t>((y - contactsHeight) / laneHeight()), lanes - 1);
}

std::optional<FrameRef> frameAt(const TimelineLayout& layout, const std::vector<TimelineLane>& lanes,
                                double x, double y, double tolerance) {
    const auto lane = layout.laneAt(y);
    if (!lane || *lane >= lanes.size() || x < layout.labelWidth - tolerance || lanes[*lane].offsets.empty())
        return std::nullopt;
    const std::size_t frame = lanes[*lane].nearest(layout.clockAt(x));
    if (std::abs(layout.xOf(lanes[*lane].offsets[frame]) - x) > tolerance)
        return std::nullopt;
    return FrameRef{.lane = *lane, .frame = frame};
}

void binFrames(const TimelineLayout& layout, const TimelineLane& lane, double clock,
               std::vector<FrameBin>& bins) {
    bins.clear();
    const auto first = std::ranges::lower_bound(lane.offsets, layout.range.from) - lane.offsets.begin();
    const std::size_t end = lane.pastCount(layout.range.to);
    for (auto frame = static_cast<std::size_t>(first); frame < end; ++frame) {
        const int x = static_cast<int>(layout.xOf(lane.offsets[frame]));
        const FrameState state = lane.stateAt(frame, clock);
        if (bins.empty() || bins.back().x != x)
            bins.push_back({.x = x, .state = state, .count = 1});
        else {
            bins.back().state = std::max(bins.back().state, state);
            ++bins.back().count;
        }
    }
}

} // namespace zenka::ui
