#pragma once

#include <string_view>

/// The words in which sentences for the operator name the platform: a build for another one has others.
namespace zenka::rig::platformWords {

inline constexpr std::string_view computer = "computer";
inline constexpr std::string_view taskManager = "System Monitor";

} // namespace zenka::rig::platformWords
