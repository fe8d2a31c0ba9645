#include "rig/SleepGuard.h"

#include "rig/PlatformWords.h"

namespace zenka::rig {

void SleepGuard::update(bool live, bool playing) {
    if (!live && !playing) {
        if (!heldForLive_)
            return;
        keepAwake_.release();
        heldForLive_.reset();
        holding_.set(false);
        log_.pushLog("☕︎ Keep-awake off. Idle sleep allowed again.");
        return;
    }
    if (heldForLive_ == live)
        return;
    if (heldForLive_)
        keepAwake_.release();
    keepAwake_.hold(live ? std::string("Zenka LIVE run armed, timers latency-critical")
                         : "Zenka run armed, keeping the " + std::string(platformWords::computer) + " awake");
    heldForLive_ = live;
    holding_.set(true);
    log_.pushLog(
        std::string("☕︎ Keep-awake ON. Display + system idle-sleep disabled while armed/running") +
        (live ? " · timers latency-critical (live)" : "") + ".");
}

} // namespace zenka::rig
