#include "rig/RigModel.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

RigModel::RigModel(const ports::Ports& ports, std::string appVersion)
    : ports_(ports), log_(ports_.loop), site_(ports_, log_), script_(ports_, site_),
      logbook_(ports_, log_, site_, roster_, std::move(appVersion)), sleepGuard_(ports_.keepAwake, log_),
      transport_(ports_, log_, site_, script_, logbook_, sleepGuard_),
      outcomes_(ports_, log_, site_, roster_, logbook_, transport_),
      fireLoop_(ports_, log_, script_, roster_, exposure_, logbook_, transport_, outcomes_),
      manualFire_(ports_, outcomes_), announcer_(log_, script_),
      renderPace_(ports_.clock, transport_, [this] { return timeToNextEvent(); }),
      fireClock_(
          ports_, log_, transport_, [this](double dt) { advance(dt); }, [this] { return nextDue(); }) {
    site_.recomputed().connect([this] {
        transport_.followSite();
        script_.compile();
    });
    script_.compiled().connect([this] { resetFiredTracking(); });
    transport_.moved().connect([this] { resetFiredTracking(); });
    transport_.activityChanged().connect([this] { fireClock_.retuneTickRate(); });
    transport_.shown().connect([this] { renderPace_.requestRender(true); });
}

void RigModel::bootstrap() {
    site_.restore();
    script_.restore();
    recompute();
    transport_.restoreSimClock();
    fireClock_.startClock();
}

void RigModel::recompute() {
    site_.recompute();
}

void RigModel::handleAppWillTerminate() {
    logbook_.closeForExit();
}

void RigModel::advance(double dt) {
    if (!transport_.advance(dt))
        return;
    fireLoop_.scan();
    announcer_.announceDue(transport_.clock());
    renderPace_.requestRender(false);
}

void RigModel::resetFiredTracking() {
    fireLoop_.resetFiredTracking();
    announcer_.resetCursor(transport_.clock());
    fireClock_.wakeForNextDue();
}

double RigModel::nextDue() const {
    return std::min(fireLoop_.nextOffset(), announcer_.nextOffset());
}

double RigModel::timeToNextEvent() const {
    return std::max(nextDue() - transport_.clock(), 0.0);
}

} // namespace zenka::rig
