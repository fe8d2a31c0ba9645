#pragma once

#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/fire/ExposureControl.h"
#include "rig/fire/FrameRecord.h"
#include "rig/run/Transport.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/shared/RigLog.h"
#include "rig/site/SiteDesk.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace zenka::rig {

/// What comes of each frame: the operator's line, the run log's row, the counters, and the signals for a
/// body that stops answering. Main thread.
class FireOutcomes {
public:
    FireOutcomes(const ports::Ports& ports, RigLog& log, const SiteDesk& site, const CameraRoster& roster,
                 RunLogbook& logbook, const Transport& transport);

    /// One frame on its way to one body.
    struct Shot {
        CameraRoster::Camera camera;
        CompensatedCapture comp;
        base::Instant firedWall;
        std::shared_ptr<RunLog> runLog; ///< the log the frame was fired under, if any
        int resultsEra = 0;             ///< resultsEra() when it was fired
    };

    void completed(const Shot& shot, const cameras::CaptureOutcome& outcome);

    /// A frame to which no body answers.
    void noCamera(const CompensatedCapture& comp);

    /// A frame that will not be fired.
    void logSkipped(const script::Capture& capture, const std::string& reason);

    /// Warns, once a body and run, when what went to the camera is not what the script asked for.
    void checkSentShutterMatches(double asked, const std::string& sent, bool bulb, const std::string& camera);

    /// Begins the bookkeeping anew from a clock value that leaves this many captures behind it.
    void reset(int pastCaptures);

    /// Forgets every frame's result: another run begins, or another script stands.
    void clearResults();

    /// Frames that came back ok, by camera id, and by token where no camera answered.
    const std::map<std::string, int>& shotCounts() const { return shotCounts_; }
    /// Frames that came back not ok, by camera id.
    const std::map<std::string, int>& drops() const { return drops_; }
    /// Capture::seq of the frames dropped and not made good since, by camera id.
    const std::map<std::string, std::set<int>>& droppedSeqs() const { return droppedSeqs_; }
    /// What came of each frame since the run began or the script was compiled.
    const FrameRecord& results() const { return results_; }
    /// Counts up when the results are cleared, so that a late answer is not taken for another run's.
    int resultsEra() const { return resultsEra_; }
    /// Short text of the last result, by camera id.
    const std::map<std::string, std::string>& lastFire() const { return lastFire_; }
    /// A body has got another driver, or has proved that it never left: its counts go over to the new id,
    /// its silence is forgotten.
    void carry(const std::string& fromId, const std::string& toId);
    void setLastFire(const std::string& cameraId, std::string text);
    const base::Published<std::optional<std::string>>& shutterMismatchWarning() const {
        return shutterMismatchWarning_;
    }

    /// What was sent to a body is not what the script asked for; told once a body and run.
    struct ShutterDivergence {
        std::string camera; ///< its label
        double asked = 0;   ///< seconds
        std::string sent;   ///< in the body's words
        double stops = 0;   ///< that lie between, never negative
    };
    sigc::signal<void(const ShutterDivergence&)>& shutterDiverged() { return shutterDiverged_; }

    /// A counter or a last result changed.
    sigc::signal<void()>& changed() { return changed_; }
    /// results() has something new for a camera token and a Capture::seq.
    sigc::signal<void(const std::string&, int)>& resultNoted() { return resultNoted_; }
    /// results() has lost some or all.
    sigc::signal<void()>& resultsCleared() { return resultsCleared_; }
    /// A body has given three silent frames in a row.
    sigc::signal<void(const CameraRoster::Camera&)>& flagDisconnect() { return flagDisconnect_; }
    /// A body has left the bus, or answers but delivers nothing.
    sigc::signal<void(const CameraRoster::Camera&)>& requestReconnect() { return requestReconnect_; }

private:
    void dropped(const Shot& shot, const cameras::CaptureOutcome& outcome, const std::string& label);
    void delivered(const Shot& shot, const cameras::CaptureOutcome& outcome, const std::string& label);
    void note(const script::Capture& capture, FrameResult result);
    void writeRow(const Shot& shot, const cameras::CaptureOutcome& outcome, const std::string& label);

    const ports::Ports& ports_;
    RigLog& log_;
    const SiteDesk& site_;
    const CameraRoster& roster_;
    RunLogbook& logbook_;
    const Transport& transport_;

    std::map<std::string, int> shotCounts_;
    std::map<std::string, int> drops_;
    std::map<std::string, std::set<int>> droppedSeqs_;
    std::map<std::string, std::string> lastFire_;
    FrameRecord results_;
    int resultsEra_ = 0;
    std::map<std::string, int> consecutiveFails_;   // by camera id: frames without an answer
    std::map<std::string, double> lastFireSuccess_; // by camera id, continuous seconds, real bodies
    std::set<std::string> shutterDivergenceWarned_; // camera labels
    base::Published<std::optional<std::string>> shutterMismatchWarning_;
    sigc::signal<void(const ShutterDivergence&)> shutterDiverged_;
    sigc::signal<void()> changed_;
    sigc::signal<void(const std::string&, int)> resultNoted_;
    sigc::signal<void()> resultsCleared_;
    sigc::signal<void(const CameraRoster::Camera&)> flagDisconnect_;
    sigc::signal<void(const CameraRoster::Camera&)> requestReconnect_;
};

} // namespace zenka::rig
