#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/fire/ExposureControl.h"
#include "rig/fire/FireOutcomes.h"
#include "rig/run/Transport.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"

#include <map>
#include <optional>

namespace zenka::rig {

/// Turns instants into shutter commands: on each tick it finds what is due, spreads frames that would
/// collide, and fires. There is no queue of future shots and no retry: a drop is final for its frame.
/// Main thread.
class FireLoop {
public:
    FireLoop(const ports::Ports& ports, RigLog& log, const ScriptDesk& script, const CameraRoster& roster,
             const ExposureControl& exposure, RunLogbook& logbook, const Transport& transport,
             FireOutcomes& outcomes);

    /// Handles all captures that the transport's clock has reached.
    void scan();

    /// Counts everything at or behind the clock as past and cancels the frames in a stagger delay.
    void resetFiredTracking();

    /// Clock value of the next capture, infinite if there is none.
    double nextOffset() const;

    /// Whether a run has a frame for this body within so many seconds from now.
    bool dueWithin(const cameras::CameraControl& camera, double seconds) const;

    /// Fires one capture on every body that answers to its token. dueClock is the instant at which it
    /// was to leave, its stagger included.
    void fireCapture(const script::Capture& capture, double dueClock);

    /// The program ends: what has not been answered yet is dropped, so that it has its row.
    void giveUpUnderWay();

    /// Captures handed to the fire step, and those counted as past.
    const base::Published<int>& firedCount() const { return firedCount_; }
    /// Captures given up after a leap of the clock.
    const base::Published<int>& skippedCount() const { return skippedCount_; }

private:
    void giveUp(const std::vector<std::size_t>& skipped, double jump, bool oneGoesLate);
    void fireDue(const std::vector<std::size_t>& due);
    void fireOne(const CameraRoster::Camera& camera, const CompensatedCapture& comp, double dueClock,
                 const std::shared_ptr<RunLog>& runLog);
    /// Runs a fire step after a stagger, unless the clock is moved or the run stops meanwhile.
    void later(double delay, std::function<void()> fire);

    const ports::Ports& ports_;
    RigLog& log_;
    const ScriptDesk& script_;
    const CameraRoster& roster_;
    const ExposureControl& exposure_;
    RunLogbook& logbook_;
    const Transport& transport_;
    FireOutcomes& outcomes_;

    std::size_t cursor_ = 0;                     // captures below it have been handled
    std::map<int, FireOutcomes::Shot> underWay_; // by number
    int lastShot_ = 0;
    int fireGeneration_ = 0; // a delayed fire of another generation is cancelled
    double lastFireScanClock_ = 0;
    base::Published<int> firedCount_{0};
    base::Published<int> skippedCount_{0};
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
