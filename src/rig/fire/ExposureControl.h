#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "cameras/CameraControl.h"
#include "exposure/ExposureComp.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/fire/CompRulesBook.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"
#include "script/ZenkaScript.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// What a capture asks of a body.
inline cameras::Shot shotOf(const script::Capture& capture) {
    return {.iso = capture.iso,
            .aperture = capture.aperture,
            .shutterSec = capture.shutterSec,
            .bulb = capture.bulb,
            .expComp = capture.expComp};
}

/// Live exposure compensation: the photographer's request for each camera, and what it makes of each frame.
/// Main thread.
class ExposureControl {
public:
    using Offsets = std::map<std::string, exposure::CompOffsets>; // by token

    ExposureControl(const ports::Ports& ports, RigLog& log, const SiteDesk& site, const ScriptDesk& script,
                    const CameraRoster& roster, const MeasuredFloors& floors, RunLogbook& logbook);

    CompRulesBook& rules() { return rules_; }
    const CompRulesBook& rules() const { return rules_; }

    const base::Published<Offsets>& compOffsets() const { return compOffsets_; }
    const base::Published<bool>& leaveTotalityAlone() const { return leaveTotalityAlone_; }

    /// What one camera is asked for; what it was given when nothing was.
    exposure::CompOffsets offsetsOf(const std::string& token) const;
    /// Changes one camera, and tells of it.
    void setOffsets(const std::string& token, exposure::CompOffsets offsets);
    /// Asks one camera for more stops, which turns it on if it has rules.
    void nudge(const std::string& token, int partialsBy, int totalityBy);
    void setLeaveTotalityAlone(bool alone);
    /// All cameras that have rules by so many stops more.
    void nudgeAllComp(int by);
    void resetExposureComp(bool announce);
    /// A run begins: it begins at zero.
    void resetForRun();

    bool compActive() const;
    /// "CAM1 +1, CAM2 -1/0"; "0" when nothing is asked for.
    std::string compSummary() const;

    /// The cameras of the script, and the bodies beside them.
    std::vector<std::string> timelineTokens() const;

    /// The stops that a camera is asked for at a clock value.
    int compStops(const std::string& token, double offsetSec) const;
    /// What its body needs between two frames, and where that is from.
    exposure::CompGaps compGaps(const std::string& token) const;

    /// The frame of the same camera behind one.
    struct Neighbor {
        double spacing = 0; ///< seconds
        bool same = false;  ///< it has the same settings
    };
    std::optional<Neighbor> compNeighbor(const script::Capture& capture) const;

    /// A capture as it goes to the camera, and what compensation did to it.
    struct Compensated {
        script::Capture capture;
        int ev = 0; ///< stops asked for
        std::string note;
        std::optional<exposure::CompResult> result;
    };
    Compensated compensated(const script::Capture& capture) const;

    /// A phrase to speak; a burst of changes gives one.
    sigc::signal<void(const std::string&)>& spoken() { return spoken_; }

private:
    void tell(const std::string& words);
    void logCompChange(const std::string& token);
    void announceComp(const std::string& text);

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const ScriptDesk& script_;
    const CameraRoster& roster_;
    const MeasuredFloors& floors_;
    RunLogbook& logbook_;
    CompRulesBook rules_;
    base::Published<Offsets> compOffsets_;
    base::Published<bool> leaveTotalityAlone_{false};
    ports::MainLoop::TimerId pendingSpeech_ = ports::MainLoop::TimerId::none;
    sigc::signal<void(const std::string&)> spoken_;
    base::Lifeline lifeline_;
};

using CompensatedCapture = ExposureControl::Compensated;

} // namespace zenka::rig
