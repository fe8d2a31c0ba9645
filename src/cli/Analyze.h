#pragma once

#include <string>

namespace zenka::cli {

/// --analyze SCRIPT FOLDER: compares a card with a script, prints the verdict and writes the report.
void analyzeCLI(const std::string& script, const std::string& folder);

} // namespace zenka::cli
