#include "ui/timeline/TimelineRange.h"

#include <algorithm>

namespace zenka::ui {

TimelineRange within(const TimelineRange& all, double from, double span) {
    if (span >= all.span())
        return all;
    const double start = std::clamp(from, all.from, all.to - span);
    return {.from = start, .to = start + span};
}

TimelineRange zoomed(const TimelineRange& now, const TimelineRange& all, double factor, double anchor) {
    const double span = std::max(now.span() * factor, std::min(shortestSpan, all.span()));
    const double part = (anchor - now.from) / now.span();
    return within(all, anchor - part * span, span);
}

TimelineRange centred(const TimelineRange& now, const TimelineRange& all, double clock) {
    return within(all, clock - now.span() / 2, now.span());
}

TimelineRange paged(const TimelineRange& now, const TimelineRange& all, double playhead) {
    constexpr double margin = 0.05; // of the page, which the eye keeps from the one before
    const double lead = playhead > now.to ? margin : 1 - margin;
    return within(all, playhead - lead * now.span(), now.span());
}

} // namespace zenka::ui
