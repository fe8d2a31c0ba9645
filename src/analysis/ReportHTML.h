#pragma once

#include "analysis/AnalysisResult.h"
#include "analysis/ExifFrame.h"
#include "script/ZenkaScript.h"

#include <absl/time/time.h>

#include <optional>
#include <string>
#include <vector>

namespace zenka::analysis {

/// The report of a comparison: one HTML page with its style and its drawing in it, no script, no other file.
namespace ReportHTML {

/// What the page needs to know beside the result.
struct Context {
    int imageFiles = 0;      ///< of the card, before RAW and JPEG of one shot were counted as one
    base::Instant generated; ///< now
    absl::TimeZone zone;     ///< that the times are written in
    /// Frames of the whole card, which may hold more than the run that was compared. Nothing: those compared.
    std::optional<int> cardFrames = std::nullopt;
};

/// `actual` are the frames compared, `expected` the captures.
std::string generate(const AnalysisResult& result, const std::vector<ExifFrame>& actual,
                     const std::vector<script::Capture>& expected, const Context& context);

} // namespace ReportHTML

} // namespace zenka::analysis
