#include "ui/timeline/TimelineAxis.h"

#include "base/CivilTime.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = 86400;
constexpr std::array<double, 26> steps{
    0.1,      0.2,        0.5,        1,           2,           5,           10,        15,        30,
    minute,   2 * minute, 5 * minute, 10 * minute, 15 * minute, 30 * minute, hour,      2 * hour,  3 * hour,
    6 * hour, 12 * hour,  day,        2 * day,     7 * day,     30 * day,    365 * day, 3650 * day};

const char* patternOf(double step, double span) {
    if (step >= day)
        return "%Y-%m-%d";
    if (span > day)
        return "%m-%d %H:%M";
    return step >= minute ? "%H:%M" : step >= 1 ? "%H:%M:%S" : "%H:%M:%E1S";
}

} // namespace

std::vector<TimelineTick> timelineTicks(const TimelineRange& range, double width, double labelWidth,
                                        const absl::TimeZone& zone, double wallZero) {
    std::vector<TimelineTick> ticks;
    if (range.span() <= 0 || width <= 0)
        return ticks;
    const double least = range.span() * labelWidth / width;
    const auto found = std::ranges::find_if(steps, [&](double step) { return step >= least; });
    const double step = found == steps.end() ? steps.back() : *found;
    // Round in the site's time of day: a zone may be half an hour off.
    const base::Instant start{wallZero + range.from};
    const double offset = zone.At(base::toAbsl(start)).offset;
    const double local = start.epochSec + offset;
    for (double time = std::ceil(local / step) * step; time <= local + range.span(); time += step) {
        const base::Instant wall{time - offset};
        // half a millisecond against the cut of a sum that falls short
        ticks.push_back(
            {.clock = wall.epochSec - wallZero,
             .label = base::formatTime(patternOf(step, range.span()), wall + base::Seconds{0.0005}, zone)});
    }
    return ticks;
}

} // namespace zenka::ui
