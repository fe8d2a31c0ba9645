#pragma once

#include "analysis/AnalysisResult.h"
#include "script/ZenkaScript.h"

#include <absl/time/time.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::analysis {

/// A date as "HH:mm:ss".
std::string hms(base::Instant date, const absl::TimeZone& zone);

/// Whether a capture's label ("C2 −8s", "MAX", "C3 +1:30") puts it into totality or the minute to either
/// side of it. Nothing for a label that only says where it stands behind another capture ("last +2s").
std::optional<bool> isNearTotality(std::string_view refLabel);

/// The captures along the time as an SVG drawing, those without a frame in a lower row, and its legend.
std::string timelineDrawing(const AnalysisResult& result, std::vector<script::Capture> expected,
                            const absl::TimeZone& zone);

} // namespace zenka::analysis
