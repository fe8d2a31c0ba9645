#pragma once

#include <filesystem>
#include <functional>

namespace zenka::analysis {

/// Visits the regular files below a folder, hidden ones too, in the order of their names, until a visit says
/// false. Symbolic links are left out, so the walk stays below the folder and ends. Gives the number of
/// folders that could not be listed to their end.
int walkFiles(const std::filesystem::path& folder,
              const std::function<bool(const std::filesystem::path&)>& visit);

} // namespace zenka::analysis
