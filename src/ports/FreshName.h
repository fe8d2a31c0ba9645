#pragma once

#include "ports/Files.h"

#include <filesystem>
#include <string>

namespace zenka::ports {

/// A path that no file has: the name with its suffix (".pdf"), with a number behind the name where that is
/// taken. Empty where none is known to be free, as of a disk that gives no answer. Waits for the disk.
std::filesystem::path freshName(Files& files, const std::filesystem::path& folder, const std::string& name,
                                const std::string& suffix);

} // namespace zenka::ports
