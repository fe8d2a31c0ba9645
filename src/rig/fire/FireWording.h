#pragma once

#include "cameras/CameraControl.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// The settings of a shot as the operator reads them: "ISO 200 f/8 EC+1 1/500".
std::string settingsText(const cameras::Shot& shot);

/// A driver's note in a phrase short enough for a camera's card.
std::string friendlyFireNote(const std::string& note);

/// The longer advice after a failed test shot, or nothing when there is none to give.
std::optional<std::string> fireFailureHint(const cameras::CameraControl& camera, const std::string& label,
                                           const std::string& note);

} // namespace zenka::rig
