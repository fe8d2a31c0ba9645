#pragma once

#include "base/Published.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/checks/CadenceAdvisor.h"
#include "rig/run/Transport.h"
#include "rig/shared/RigLog.h"
#include "rig/shots/GapProfile.h"
#include "rig/shots/GapVerdicts.h"
#include "rig/shots/ManualFire.h"
#include "rig/shots/QuickFloor.h"
#include "rig/shots/SustainedBurst.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// Measures one body by firing it: how close together its frames may be, or how long it holds a cadence.
/// What it finds goes to the measured floors. One profile at a time, and none in a run. Main thread; it
/// never waits.
class GapProfiler {
public:
    using CheckLink = QuickFloor::CheckLink;

    /// A profile that has come to its end.
    struct Past {
        base::Instant at;
        std::string cameraName;
        GapProfileMode mode = GapProfileMode::quickFloor;
        GapSettingsMode settings = GapSettingsMode::changing;
        std::string verdict;

        friend bool operator==(const Past&, const Past&) = default;
    };

    GapProfiler(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                const Transport& transport, const ManualFire& manualFire, MeasuredFloors& floors,
                BodiesInUse& inUse);

    /// How to ask whether the link of a body behind gphoto2 still works, where nothing was answered.
    /// Without it that is not asked.
    void setCheckLink(CheckLink checkLink) { checkLink_ = std::move(checkLink); }

    /// What the next profile is to be. A shutter above 0, in seconds, makes the burst one of long frames; a
    /// target of 0, in seconds, is one that suits the body.
    void setGapProfileMode(GapProfileMode mode) { gapProfileMode_.set(mode); }
    void setGapSettingsMode(GapSettingsMode mode) { gapSettingsMode_.set(mode); }
    void setGapBurstShutter(double seconds);
    void setGapBurstTargetCadence(double seconds);

    /// Starts. When it cannot, the answer is the reason, a sentence; else it is empty.
    std::string runGapProfile(const std::string& camID);
    /// Ends the profile after the frame that is under way; it has measured nothing then.
    void stop();

    /// The roster has changed, or a run began or ended: a profile that has lost its body or stands in the
    /// way of a run ends.
    void followRoster();
    void followRun();

    const base::Published<bool>& gapProfileRunning() const { return gapProfileRunning_; }
    const base::Published<GapProfileMode>& gapProfileMode() const { return gapProfileMode_; }
    const base::Published<GapSettingsMode>& gapSettingsMode() const { return gapSettingsMode_; }
    const base::Published<double>& gapBurstShutter() const { return gapBurstShutter_; }
    const base::Published<double>& gapBurstTargetCadence() const { return gapBurstTargetCadence_; }
    /// Of the profile that is running, else of the last one.
    const base::Published<std::string>& gapProfileTargetID() const { return gapProfileTargetID_; }
    const base::Published<bool>& gapProfileBodyIsSony() const { return gapProfileBodyIsSony_; }
    const base::Published<std::vector<GapProfileRow>>& gapProfileRows() const { return gapProfileRows_; }
    /// The rung under way, as far as it has come.
    const base::Published<std::optional<GapProfileRow>>& gapProfileRung() const { return gapProfileRung_; }
    const base::Published<std::optional<GapBurst>>& gapBurst() const { return gapBurst_; }
    /// Empty while a profile is running.
    const base::Published<std::string>& gapProfileVerdict() const { return gapProfileVerdict_; }
    /// Of this session, the last one first.
    const base::Published<std::vector<Past>>& history() const { return history_; }

private:
    std::string refusal(const CameraRoster::Camera& camera) const;
    void runQuickFloorProfile();
    void runSustainedBurstProfile();
    GapVerdicts::Body body() const;
    void finish(GapProfileEnd end);
    std::string settle(GapProfileEnd end);
    void keepBurst(const GapBurst& burst);
    void cutShort(GapProfileEnd end);

    const ports::Ports& ports_;
    RigLog& log_;
    const CameraRoster& roster_;
    const Transport& transport_;
    const ManualFire& manualFire_;
    MeasuredFloors& floors_;
    BodiesInUse& inUse_;
    CheckLink checkLink_;
    QuickFloor quickFloor_;
    SustainedBurst sustainedBurst_;
    CameraRoster::Camera camera_; // of the profile that is running
    BodiesInUse::Use use_;        // the same
    std::string cameraName_;
    GapProfileMode mode_ = GapProfileMode::quickFloor;     // of that profile
    GapSettingsMode settings_ = GapSettingsMode::changing; // the same
    std::unique_ptr<ServicesOff> servicesOff_;
    base::Published<bool> gapProfileRunning_{false};
    base::Published<GapProfileMode> gapProfileMode_{GapProfileMode::quickFloor};
    base::Published<GapSettingsMode> gapSettingsMode_{GapSettingsMode::changing};
    base::Published<double> gapBurstShutter_{0};
    base::Published<double> gapBurstTargetCadence_{0};
    base::Published<std::string> gapProfileTargetID_;
    base::Published<bool> gapProfileBodyIsSony_{false};
    base::Published<std::vector<GapProfileRow>> gapProfileRows_;
    base::Published<std::optional<GapProfileRow>> gapProfileRung_;
    base::Published<std::optional<GapBurst>> gapBurst_;
    base::Published<std::string> gapProfileVerdict_;
    base::Published<std::vector<Past>> history_;
};

} // namespace zenka::rig
