#pragma once

#include <string>

namespace zenka::cli {

/// --icon PATH: writes the program's icon as a PNG, size pixels wide and high.
void renderAppIcon(const std::string& path, int size);

} // namespace zenka::cli
