#pragma once

#include "analysis/AnalysisResult.h"
#include "analysis/ExifFrame.h"
#include "script/ZenkaScript.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zenka::analysis {

/// By a capture's time key, whether the run log has the shot as fired well.
using SoftwareOK = std::map<int, bool>;

/// Compares what a script planned with what a card holds. The card's clock may be hours off and may drift.
namespace RunAnalysis {

/// The instant of a capture in whole hundredths of a second, as far as a run log can tell it: a log has
/// the offset with three decimals, and both must come to the same key.
int timeKey(double offsetSec);

/// The runs of a card: frames more than 300 s apart belong to two. Sorted by date.
std::vector<std::vector<ExifFrame>> segments(std::vector<ExifFrame> frames);

/// The index of the run whose number of frames is nearest to what was planned, the later of equals. At least
/// one run.
std::size_t nearestRun(const std::vector<std::vector<ExifFrame>>& runs, int expected);

/// That run of a card; empty without any frame.
std::vector<ExifFrame> bestSegment(const std::vector<ExifFrame>& frames, int expected);

/// A shutter as a card says it: "1/500", "2s", "1.3s", "0.7s"; "-" for 0 or less.
std::string shutterText(double sec);

/// What a comparison is named by in its report.
struct Names {
    std::string sdName;
    std::string scriptName;
    std::string camera;
};

/// Pure. Empty lists give zeros. `softwareOK` is what the run log of that name says.
AnalysisResult compare(std::vector<script::Capture> expected, std::vector<ExifFrame> actual,
                       const Names& names, const std::optional<SoftwareOK>& softwareOK = std::nullopt,
                       const std::optional<std::string>& runLogName = std::nullopt);

} // namespace RunAnalysis

} // namespace zenka::analysis
