#include "rig/run/SleepGuard.h"

#include "rig/shared/PlatformWords.h"

namespace zenka::rig {

void SleepGuard::update(bool live, bool playing) {
    if (!live && !playing) {
        if (!heldForLive_.get())
            return;
        keepAwake_.release();
        heldForLive_.set(std::nullopt);
        log_.pushLog("☕︎ Keep-awake off. Idle sleep allowed again.");
        return;
    }
    if (heldForLive_.get() == live)
        return;
    if (heldForLive_.get())
        keepAwake_.release();
    keepAwake_.hold(live ? std::string("Zenka LIVE run armed, timers latency-critical")
                         : "Zenka run armed, keeping the " + std::string(platformWords::computer) + " awake");
    heldForLive_.set(live);
    log_.pushLog(
        std::string("☕︎ Keep-awake ON. Display + system idle-sleep disabled while armed/running") +
        (live ? " · timers latency-critical (live)" : "") + ".");
}

} // namespace zenka::rig
