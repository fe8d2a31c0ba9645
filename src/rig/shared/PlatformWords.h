#pragma once

#include <string_view>

/// The words in which sentences for the operator name the platform: a build for another one has others.
namespace zenka::rig::platformWords {

inline constexpr std::string_view computer = "computer";
inline constexpr std::string_view computerAtStart = "Computer"; ///< of a sentence
inline constexpr std::string_view taskManager = "System Monitor";
inline constexpr std::string_view alertSound = "suspend-error"; ///< that alarms are given with
inline constexpr std::string_view displaySettings = "your desktop's display or power settings";
inline constexpr std::string_view powerSettings = "your desktop's power settings";
inline constexpr std::string_view clockSettings = "your desktop's date and time settings";

} // namespace zenka::rig::platformWords
