#pragma once

#include "base/Published.h"
#include "base/Uuid.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/runlog/DropAsymmetry.h"
#include "rig/runlog/LatenessMeter.h"
#include "rig/runlog/RunLog.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// What a completed run is summed up in.
struct RunSummary {
    base::Uuid id;
    std::string kind;
    int frames = 0;
    int dropped = 0;
    std::optional<std::string> asymmetry;

    friend bool operator==(const RunSummary&, const RunSummary&) = default;
};

/// The log of the run that is going on, and its tallies.
class RunLogbook {
public:
    RunLogbook(const ports::Ports& ports, RigLog& log, const SiteDesk& site, const CameraRoster& roster,
               std::string appVersion);

    /// Opens a new log, "real" or "simulated", in the place of one that may be open.
    void beginRunLog(const std::string& kind);

    /// Closes the log. Nothing happens when none is open.
    void endRunLog(bool completed, bool pausedByUser);

    /// Closes the log at the end of the process, waiting for the disk.
    void closeForExit();

    /// The open log, if any. A shot keeps the one that it was fired under, so that its row lands there
    /// even when it completes after the end of the run.
    const std::shared_ptr<RunLog>& runLog() const { return runLog_; }
    /// Where the last log begun has its CSV; empty before the first.
    const std::filesystem::path& lastCsvPath() const { return lastCsvPath_; }

    /// Waits until all that was logged is on the disk; false when it is not by the limit.
    bool drain(base::Seconds limit) { return queue_->drain(limit); }

    /// A comment line of the open log, if any.
    void noteEvent(const std::string& text);
    void countFrame(const cameras::CameraControl& camera, const std::string& label, bool ok);
    LatenessMeter& lateness() { return lateness_; }

    /// Stored frames of a body behind those fired in this run; nothing for one that cannot tell.
    struct StoredTally {
        int fired = 0;
        int stored = 0;
    };
    std::optional<StoredTally> storedTally(const cameras::CameraControl& camera) const;
    /// Warns when a body's card writing falls behind its shutter, again only when that has doubled.
    void watchCardWriting(const cameras::CameraControl& camera, const std::string& label);

    const base::Published<std::optional<RunSummary>>& pendingSurvey() const { return pendingSurvey_; }

    /// A run was completed in which real bodies fired: how each of them did, by its label.
    sigc::signal<void(const std::vector<BodyTally>&)>& completed() { return completed_; }

    /// What the program has to tell of a run that is over, complete or not: a JSON object.
    sigc::signal<void(const std::string&)>& runTold() { return runTold_; }
    /// Where that gets what this object does not know, each under its key.
    void setMoreFacts(std::function<std::map<std::string, std::string>()> facts) {
        moreFacts_ = std::move(facts);
    }

    RunLogMeta makeRunMeta(const std::string& kind) const;

private:
    struct Baseline {
        int shots = 0;
        int confirmed = 0;
    };

    std::string freshBaseName(const RunLogMeta& meta);
    /// The lines for bodies on the LUMIX link.
    std::vector<std::string> reportStoredFrames();
    void tell(bool completed, const std::vector<BodyTally>& bodies,
              const std::optional<std::string>& asymmetry, const std::vector<std::string>& lumixLines);
    void sumUp(const std::optional<std::string>& asymmetry);

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const CameraRoster& roster_;
    const std::string appVersion_;
    std::shared_ptr<ports::WorkQueue> queue_; // one for all runs, so that a closing log does not end it
    std::shared_ptr<RunLog> runLog_;
    std::filesystem::path lastCsvPath_;
    std::string lastBaseName_;
    int sameNames_ = 0;
    std::string currentRunKind_;
    std::map<std::string, int> runOK_;            // by camera label, real bodies only
    std::map<std::string, int> runDropped_;       // the same
    std::map<std::string, Baseline> baselines_;   // by camera id
    std::map<std::string, int> confirmLagWarned_; // by camera id
    LatenessMeter lateness_;
    base::Published<std::optional<RunSummary>> pendingSurvey_;
    sigc::signal<void(const std::vector<BodyTally>&)> completed_;
    sigc::signal<void(const std::string&)> runTold_;
    std::function<std::map<std::string, std::string>()> moreFacts_;
};

} // namespace zenka::rig
