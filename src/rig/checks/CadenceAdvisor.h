#pragma once

#include "base/Published.h"
#include "base/Uuid.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/runlog/DropAsymmetry.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// A script that asks for frames closer together than a body can fire them.
struct CadenceAlert {
    base::Uuid id;
    std::string cameraName;
    double scriptGapSec = 0; ///< the tightest of the script
    double bodyFloorSec = 0;
    int pct = 0;            ///< of the frames that would be lost, about
    int frames = 0;         ///< fired in the run; 0 before one
    int dropped = 0;        ///< of those
    bool estimated = false; ///< the body was never measured

    friend bool operator==(const CadenceAlert&, const CadenceAlert&) = default;
};

/// What the user does about a cadence alert.
enum class CadenceChoice {
    close,
    measure,    ///< open the gap profiler
    editScript, ///< open the script
};

/// A span for people: "350 ms", "1.3 s".
std::string fmtSecs(double seconds);

/// How close together the frames on a body may be: from what was measured, else from what bodies on a link
/// of its kind hold. Warns of scripts that are tighter. Main thread.
class CadenceAdvisor {
public:
    CadenceAdvisor(RigLog& log, const CameraRoster& roster, const ScriptDesk& script,
                   const MeasuredFloors& floors);

    /// The spacing in seconds that a body holds without drops; 0 for one that has no limit that is known.
    double bodyFloorSec(const cameras::CameraControl& camera) const;
    /// "520ms measured", "1300ms floor".
    std::string floorLabel(const cameras::CameraControl& camera) const;
    /// Something was measured of bodies of this model.
    bool measured(const cameras::CameraControl& camera) const;

    /// Two frames of the script on one body.
    struct Pair {
        double gapSec = 0;
        int lineNo = 0; ///< of the second
    };
    /// Those that are closest together, but not at one instant; nothing for fewer than two.
    std::optional<Pair> tightestPair(const cameras::CameraControl& camera) const;
    /// The spacing of those.
    std::optional<double> tightestGap(const cameras::CameraControl& camera) const;

    /// The spacing for frames that change a setting that suits all bodies which are connected.
    double suggestedMinSpacingSec() const;
    /// The same for identical frames.
    double suggestedSameGapSec() const;
    /// The spacing that suits the bodies behind some names of a script; at least half a second.
    double spacingFloor(const std::vector<std::string>& tokens) const;

    /// An alert when the script is too tight for a body.
    std::optional<CadenceAlert> alertFor(const cameras::CameraControl& camera) const;
    /// The worst of what the script asks of the bodies that are connected.
    std::optional<CadenceAlert> cadenceAlertForArm() const;
    /// Whether the rig had better not be armed: a body was measured to be slower than the script. Says so
    /// in tooTightWarning() and in the log.
    bool holdsArming();
    /// After a run that was completed: explains the drops of the body that did worst, if it is the script
    /// that was too tight for it.
    void explainDrops(const std::vector<BodyTally>& bodies);

    const base::Published<std::optional<CadenceAlert>>& tooTightWarning() const { return tooTightWarning_; }
    const base::Published<std::optional<CadenceAlert>>& dropExplainer() const { return dropExplainer_; }

    void resolveTooTightWarning(CadenceChoice choice);
    void resolveDropExplainer(CadenceChoice choice);

    /// The user wants to measure or to edit.
    sigc::signal<void(CadenceChoice)>& chosen() { return chosen_; }
    /// The explanation of a run's drops has been read: what else there is to say about the run may be said.
    sigc::signal<void()>& explained() { return explained_; }

private:
    bool connected(const cameras::CameraControl& camera) const;

    RigLog& log_;
    const CameraRoster& roster_;
    const ScriptDesk& script_;
    const MeasuredFloors& floors_;
    base::Published<std::optional<CadenceAlert>> tooTightWarning_;
    base::Published<std::optional<CadenceAlert>> dropExplainer_;
    sigc::signal<void(CadenceChoice)> chosen_;
    sigc::signal<void()> explained_;
};

} // namespace zenka::rig
