#pragma once

#include <span>
#include <string>

namespace zenka::cli {

/// --rehearse: runs the whole simulated eclipse of a script in virtual time, on one simulated body for
/// each camera that the script names, and writes the run log where the window would. The values behind
/// the script, if there are five, give eclipse id, latitude, longitude, elevation and time zone.
void rehearse(const std::string& scriptPath, std::span<const std::string> place);

} // namespace zenka::cli
