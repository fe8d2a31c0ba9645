#include "rig/fire/TickGate.h"

#include <utility>

namespace zenka::rig {

bool TickGate::take() {
    const std::scoped_lock guard(lock_);
    return !std::exchange(pending_, true);
}

void TickGate::finish(double uptime) {
    const std::scoped_lock guard(lock_);
    pending_ = false;
    lastServiced_ = uptime;
    warned_ = false;
}

void TickGate::police(bool policing) {
    const std::scoped_lock guard(lock_);
    policing_ = policing;
    if (!policing)
        warned_ = false;
}

std::optional<double> TickGate::stallToWarnOf(double uptime, double limitSec) {
    const std::scoped_lock guard(lock_);
    if (!policing_ || !shouldWarn(uptime, limitSec))
        return std::nullopt;
    return uptime - lastServiced_;
}

bool TickGate::shouldWarn(double uptime, double limitSec) {
    if (warned_ || uptime - lastServiced_ <= limitSec)
        return false;
    warned_ = true;
    return true;
}

void StallContext::setOccluded(bool occluded) {
    const std::scoped_lock guard(lock_);
    occluded_ = occluded;
}

void StallContext::setInactive(bool inactive) {
    const std::scoped_lock guard(lock_);
    inactive_ = inactive;
}

std::string StallContext::summary() const {
    const std::scoped_lock guard(lock_);
    return std::string(occluded_ ? "window OCCLUDED/hidden" : "window visible") + ", " +
           (inactive_ ? "app in BACKGROUND" : "app active");
}

} // namespace zenka::rig
