#include "cameras/CameraProfiles.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zenka::cameras {

namespace CameraProfiles {

const CameraProfile& forModel(std::string_view model) {
    // Typical timings of these bodies on a tether; the last row stands for any other.
    static constexpr std::array<std::pair<std::string_view, CameraProfile>, 6> table{{
        {"Panasonic S1R", {.minInterval = 0.45, .connectMs = 600, .settingsMs = 180, .triggerMs = 70}},
        {"Panasonic S5II", {.minInterval = 0.40, .connectMs = 550, .settingsMs = 150, .triggerMs = 60}},
        {"Panasonic GH7", {.minInterval = 0.35, .connectMs = 500, .settingsMs = 140, .triggerMs = 55}},
        {"Panasonic G9M2", {.minInterval = 0.42, .connectMs = 560, .settingsMs = 160, .triggerMs = 65}},
        {"Panasonic GH5", {.minInterval = 0.50, .connectMs = 650, .settingsMs = 200, .triggerMs = 90}},
        {"Generic PTP", {.minInterval = 0.60, .connectMs = 800, .settingsMs = 250, .triggerMs = 120}},
    }};
    const auto found = std::ranges::find(table, model, [](const auto& row) { return row.first; });
    return found == table.end() ? table.back().second : found->second;
}

} // namespace CameraProfiles

namespace ShotProfiles {

ShotProfile forModel(std::string_view model) {
    static constexpr std::array<std::pair<std::string_view, std::optional<double>>, 4> measuredFloors{{
        {"G9M2", 0.18},
        {"GH5", std::nullopt},
        {"S1R", std::nullopt},
        {"S5", std::nullopt},
    }};
    for (const auto& [key, floor] : measuredFloors) {
        if (base::containsIgnoringCase(model, key))
            return {.measuredFloorSec = floor, .safeIntervalSec = 0.6};
    }
    return {};
}

} // namespace ShotProfiles

} // namespace zenka::cameras
