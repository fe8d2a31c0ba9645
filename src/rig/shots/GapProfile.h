#pragma once

#include "base/Uuid.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace zenka::rig {

enum class GapProfileMode {
    quickFloor,     ///< how close together frames may be
    sustainedBurst, ///< how long a cadence is held
};
inline constexpr std::array allGapProfileModes{GapProfileMode::quickFloor, GapProfileMode::sustainedBurst};

/// Whether the frames of a rung differ in their settings.
enum class GapSettingsMode { same, changing };
inline constexpr std::array allGapSettingsModes{GapSettingsMode::changing, GapSettingsMode::same};

constexpr std::string_view rawText(GapProfileMode mode) {
    return mode == GapProfileMode::quickFloor ? "quickFloor" : "sustainedBurst";
}
constexpr std::string_view rawText(GapSettingsMode mode) {
    return mode == GapSettingsMode::same ? "same" : "changing";
}

/// What came of one rung of the ladder.
struct GapProfileRow {
    base::Uuid id;
    double intervalSec = 0; ///< asked for
    int frames = 0;
    int ok = 0;
    int dropped = 0;
    int noResp = 0;                    ///< the body said nothing
    double avgLatencyMs = 0;           ///< of those that were ok
    std::optional<double> achievedSec; ///< mean spacing of the frames; absent for fewer than two

    /// Every frame came back.
    bool complete() const { return dropped == 0 && noResp == 0; }
    /// And at the pace asked for, or little slower.
    bool clean() const { return complete() && (!achievedSec || *achievedSec <= intervalSec * 1.25); }
    /// It came back slower than asked: by more than timers are late.
    bool paced() const { return complete() && achievedSec && *achievedSec > intervalSec * 1.05; }
    /// The cadence that it stands for, seconds.
    double heldSec() const { return paced() ? achievedSec.value_or(intervalSec) : intervalSec; }

    friend bool operator==(const GapProfileRow&, const GapProfileRow&) = default;
};

/// What came of a burst, so far.
struct GapBurst {
    int frames = 0; ///< planned
    int fired = 0;
    int cleanFrames = 0;   ///< before the first that was missing
    int missing = 0;       ///< dropped, or not answered
    double targetSec = 0;  ///< cadence asked for
    double cadenceSec = 0; ///< mean spacing of the clean frames; 0 when not known
    double shutterSec = 0; ///< of long frames; 0 for short ones

    bool clean() const { return missing == 0; }
    /// At the cadence asked for, or little slower.
    bool atTarget() const { return cadenceSec <= targetSec * 1.25; }

    friend bool operator==(const GapBurst&, const GapBurst&) = default;
};

/// How a profile came to its end.
enum class GapProfileEnd {
    complete,
    stopped, ///< by the user
    gone,    ///< the body was removed, connected anew, or is down
    run,     ///< a run began
    wedged,  ///< the body's link no longer answers
};

} // namespace zenka::rig
