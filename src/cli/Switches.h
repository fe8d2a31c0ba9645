#pragma once

#include <span>
#include <string>

namespace zenka::cli {

/// Looks through the arguments for the known switches in their fixed order, and runs the first that is
/// there with the values it needs. False when none is, and the application is to start.
bool runSwitch(std::span<const std::string> arguments);

} // namespace zenka::cli
