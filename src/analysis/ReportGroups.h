#pragma once

#include "analysis/AnalysisResult.h"

#include <string>
#include <string_view>
#include <vector>

namespace zenka::analysis {

/// The phase that a group belongs to: its label without a note in parentheses and an exposure at its end,
/// "Corona set 1 1/500 (filter off)" is of "Corona set 1". The label itself where nothing would be left.
std::string_view phaseName(std::string_view label);

/// The groups as tables, one foldable block for each phase in the order of their first groups.
std::string phaseBlocks(const std::vector<AnalysisResult::Group>& groups);

} // namespace zenka::analysis
