#pragma once

#include "base/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// All that a run needs to be picked up again after the program ended in the middle of it.
struct RunState {
    enum class ArmKind { real, simulation };

    struct Cam {
        std::string serial;
        std::string label;
        std::string model; ///< without its maker's prefixes

        friend bool operator==(const Cam&, const Cam&) = default;
    };

    int version = 1;
    std::string eclipseId;
    double lat = 0;  ///< degrees, north positive
    double lon = 0;  ///< degrees, east positive
    double elev = 0; ///< metres
    std::string tzId;
    std::string siteLabel;
    std::string scriptText;
    ArmKind armKind = ArmKind::simulation;
    base::Instant anchorWall; ///< real: the computer's time at arming; simulation: at the save
    double anchorClock = 0;   ///< the eclipse clock at that time, corrected to the best time source
    double tC1 = 0;           ///< clock values of first and last contact
    double tC4 = 0;
    base::Instant armedAt;
    base::Instant lastSeen; ///< the instant of the save
    bool liveCameras = false;
    std::vector<Cam> cameras;
    std::string appVersion;

    /// A state may be resumed for 48 hours, and a real run until ten minutes after its last contact.
    bool isResumable(base::Instant now) const;
    /// A real run is over ten minutes after its last contact; a simulation never is.
    bool isComplete(base::Instant now) const;
    /// What the eclipse clock of a real run reads now.
    double clockAt(base::Instant now) const { return anchorClock + (now - anchorWall).count(); }

    friend bool operator==(const RunState&, const RunState&) = default;
};

/// Writes the states of one run, one after another. Nearly all of a state is its script, which is the same at
/// each beat, so its text is made but once.
class RunStateWriter {
public:
    std::string toJson(const RunState& state);

private:
    std::string script_;
    std::string scriptJson_; ///< of script_, in its quotes
};

/// docs/data-formats.md has the format.
std::string toJson(const RunState& state);
/// Nothing for a text that is no such state.
std::optional<RunState> runStateFromJson(std::string_view json);

} // namespace zenka::rig
