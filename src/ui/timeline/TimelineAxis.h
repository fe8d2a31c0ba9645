#pragma once

#include "ui/timeline/TimelineRange.h"

#include <absl/time/time.h>

#include <string>
#include <vector>

namespace zenka::ui {

struct TimelineTick {
    double clock = 0; ///< seconds
    std::string label;
};

/// Round times of day at the site over a range, so far apart that labels of labelWidth fit beside each
/// other on a width (both in pixels). wallZero is the epoch second of clock 0.
std::vector<TimelineTick> timelineTicks(const TimelineRange& range, double width, double labelWidth,
                                        const absl::TimeZone& zone, double wallZero);

} // namespace zenka::ui
