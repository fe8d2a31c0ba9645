#pragma once

#include "ui/kit/Theme.h"
#include "ui/timeline/TimelineView.h"

#include <QPainter>

namespace zenka::ui {

/// Where a timeline's things lie on a size. Compact: one thin lane a camera, no cues and no time of day.
TimelineLayout timelineLayout(const TimelineView& view, const Theme& theme, const QSizeF& size, bool compact);

/// The height at which every lane has room for its name.
double timelineHeight(const TimelineView& view, const Theme& theme, bool compact);

/// Draws what is visible of a timeline. States are told by shape and height of a mark and by its colour:
/// coming a thin line, past a stub, fired ●, no camera ○, skipped ⏭, dropped ▲.
void paintTimeline(QPainter& painter, const TimelineView& view, const TimelineLayout& layout,
                   const Theme& theme);

} // namespace zenka::ui
