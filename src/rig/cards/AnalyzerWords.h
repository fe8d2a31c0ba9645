#pragma once

#include "analysis/ExifReader.h"
#include "rig/cards/RunAnalyzer.h"
#include "rig/runlog/RunLogLibrary.h"
#include "script/ZenkaScript.h"

#include <absl/time/time.h>

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// What the Simulation Analyzer says and asks.
namespace AnalyzerWords {

AnalyzerState offer(const std::optional<RunSummary>& run);
/// A run has ended and there is no card yet.
AnalyzerState runEnded(const std::optional<RunSummary>& run);
AnalyzerState liveRun();
AnalyzerState noScript();
AnalyzerState lookingForCards();
AnalyzerState noCard();
AnalyzerState whichCard(const CardWatch::Cards& cards);
AnalyzerState whichCamera(const std::string& model, const script::CapturesByToken& script);
/// Recommends the run that is nearest to what was planned.
AnalyzerState whichRun(const std::vector<std::vector<analysis::ExifFrame>>& runs, int expected,
                       const absl::TimeZone& zone);
AnalyzerState verdict(const analysis::AnalysisResult& result, const analysis::ExifReader& reader,
                      const RunLogLibrary::Match& logs, bool written);

/// Why a card without a readable image has none; empty for an empty one.
std::string nothingReadable(const analysis::ExifReader& reader);

} // namespace AnalyzerWords

} // namespace zenka::rig
