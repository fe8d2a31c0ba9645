#pragma once

#include "base/Published.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/run/RunStateStore.h"
#include "rig/run/Transport.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// Keeps a run from being lost: writes it down while it goes, offers it again after a crash or a quit,
/// and notices the day of an eclipse.
class RunKeeper {
public:
    RunKeeper(const ports::Ports& ports, RigLog& log, SiteDesk& site, ScriptDesk& script,
              CameraRoster& roster, Transport& transport, std::string appVersion);

    /// Writes the run down now.
    void saveRunState(RunState::ArmKind kind);
    /// Writes an active run down if that was not done in the last five seconds.
    void heartbeatRunState();
    void clearRunState();
    /// From now on writes nothing down and clears nothing: for runs that nobody can pick up, which must not
    /// cost the record of one that somebody may.
    void keepNothing() { keeping_ = false; }

    /// Looks for a run that can be picked up, and forgets one that cannot.
    void checkForResumableRun();
    /// A run that was active when the program last ended, until it is resumed or declined.
    const base::Published<std::optional<RunState>>& resumableRun() const { return resumableRun_; }
    /// Picks it up where its clock is now. Captures whose moment passed are not fired.
    void resumeRun();

    /// On the day of an eclipse of the catalogue, once a day: selects it and says so.
    void checkEclipseDay();
    /// Now and then on the day of the selected eclipse: reminds of the live clock.
    void eclipseDayLiveNudge();
    bool isSelectedEclipseDayAtSite() const;
    const base::Published<bool>& showEclipseDay() const { return showEclipseDay_; }
    const std::string& eclipseDayName() const { return eclipseDayName_; }
    void dismissEclipseDay() { showEclipseDay_.set(false); }

    /// An orderly end forgets a simulation and keeps a real run. Waits for the disk.
    void closeForExit();

    /// The run that is picked up had real bodies, which are to be found again.
    sigc::signal<void()>& rebindCameras() { return rebindCameras_; }

private:
    void resumeSimulation(const RunState& state);
    void resumeReal(const RunState& state);

    const ports::Ports& ports_;
    RigLog& log_;
    SiteDesk& site_;
    ScriptDesk& script_;
    CameraRoster& roster_;
    Transport& transport_;
    const std::string appVersion_;
    RunStateStore store_;
    sigc::signal<void()> rebindCameras_;
    bool keeping_ = true;
    bool stored_ = true;                     // a file may be there
    std::optional<double> lastRunSave_;      // continuous seconds
    std::optional<double> lastEclipseNudge_; // continuous seconds
    base::Published<std::optional<RunState>> resumableRun_;
    base::Published<bool> showEclipseDay_{false};
    std::string eclipseDayName_;
};

} // namespace zenka::rig
