#pragma once

#include "analysis/AnalysisResult.h"

#include <string>

namespace zenka::analysis {

/// The cards of the report that give a cause and a remedy.
namespace ReportCards {

/// One for each thing that went wrong or wants a word; empty when there is none.
std::string warnings(const AnalysisResult& result);

/// Whether the software knew of what is missing.
std::string dropDetection(const AnalysisResult& result);

} // namespace ReportCards

} // namespace zenka::analysis
