#pragma once

#include <string>

namespace zenka::cli {

/// --export-web DIR: writes the catalogue with paths and contacts for the web, docs/web-data.md, and a page
/// that shows them. Other files of the folder stay as they are.
void exportWeb(const std::string& folder);

} // namespace zenka::cli
