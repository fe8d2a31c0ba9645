#pragma once

namespace zenka::ui {

/// The stretch of the eclipse clock that a timeline shows, seconds.
struct TimelineRange {
    double from = 0;
    double to = 1;

    double span() const { return to - from; }
    bool contains(double clock) const { return from <= clock && clock <= to; }

    friend bool operator==(const TimelineRange&, const TimelineRange&) = default;
};

/// The shortest span that is shown, seconds.
inline constexpr double shortestSpan = 4;

/// A range of a span that starts at from, moved as far as it must to lie within all.
TimelineRange within(const TimelineRange& all, double from, double span);

/// Zooms by a factor on the span, so that the anchor stays where it is on the screen.
TimelineRange zoomed(const TimelineRange& now, const TimelineRange& all, double factor, double anchor);

/// The range with a clock value in its middle.
TimelineRange centred(const TimelineRange& now, const TimelineRange& all, double clock);

/// The range turned over like a page when the playhead has left it.
TimelineRange paged(const TimelineRange& now, const TimelineRange& all, double playhead);

} // namespace zenka::ui
