#pragma once

#include <optional>
#include <string_view>

namespace zenka::cameras {

/// How a simulated body of a model behaves.
struct CameraProfile {
    double minInterval = 0; ///< seconds
    double connectMs = 0;
    double settingsMs = 0;
    double triggerMs = 0;
};

namespace CameraProfiles {

/// The profile of exactly this model, "Generic PTP" for one that is not in the table.
const CameraProfile& forModel(std::string_view model);

} // namespace CameraProfiles

/// How close together a model's frames may be before it has been measured.
struct ShotProfile {
    std::optional<double> measuredFloorSec; ///< spacing that a body of this model was measured to hold
    double safeIntervalSec = 0.6;
};

namespace ShotProfiles {

/// The first entry whose key the model contains, ignoring case.
ShotProfile forModel(std::string_view model);

} // namespace ShotProfiles

} // namespace zenka::cameras
