#pragma once

#include <mutex>
#include <optional>
#include <string>

namespace zenka::rig {

/// Lets one tick at a time from the fire thread to the main thread, and notices when the main thread
/// does not come to it. Shared by both threads. Times are uptime seconds.
class TickGate {
public:
    explicit TickGate(double uptime) : lastServiced_(uptime) {}

    /// Fire thread: takes the gate for a new tick; false while the one before is not finished.
    bool take();

    /// Main thread: the tick is finished.
    void finish(double uptime);

    /// Main thread: whether stalls are to be reported.
    void police(bool policing);

    /// Fire thread: how long the main thread has not finished a tick, if that is worth a warning: over
    /// the limit, policed, and not yet warned of since the last finished tick.
    std::optional<double> stallToWarnOf(double uptime, double limitSec);

private:
    bool shouldWarn(double uptime, double limitSec);

    std::mutex lock_;
    bool pending_ = false;
    double lastServiced_;
    bool warned_ = false;
    bool policing_ = false;
};

/// What the window was doing, for the report of a stall. Any thread.
class StallContext {
public:
    void setOccluded(bool occluded);
    void setInactive(bool inactive);
    std::string summary() const;

private:
    mutable std::mutex lock_;
    bool occluded_ = false;
    bool inactive_ = false;
};

} // namespace zenka::rig
