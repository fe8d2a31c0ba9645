#pragma once

#include "analysis/AnalysisResult.h"
#include "analysis/Landings.h"
#include "analysis/RunAnalysis.h"

#include <optional>
#include <vector>

namespace zenka::analysis {

/// A plan, a card, and which frame became of which capture. The lists are in order.
struct ComparedRun {
    std::vector<script::Capture> captures;
    std::vector<ExifFrame> frames;
    std::vector<Landing> landings;
};

/// What a comparison comes to: each function fills the fields of its own.
namespace RunTallies {

/// Matched, wrongly exposed and rounded captures, with their notes.
void countLandings(const ComparedRun& run, AnalysisResult& result);
/// What the software thought of the shots against what the card has.
void countDrops(const ComparedRun& run, const SoftwareOK& softwareOK, AnalysisResult& result);
/// How exactly short intervals were kept. In a long gap the camera waits for the schedule, so it tells
/// nothing.
void measureJitter(const ComparedRun& run, AnalysisResult& result);
/// The exposures one by one, and those that did not land whole.
void listGroups(const ComparedRun& run, AnalysisResult& result);

} // namespace RunTallies

} // namespace zenka::analysis
