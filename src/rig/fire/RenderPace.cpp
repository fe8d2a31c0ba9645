#include "rig/fire/RenderPace.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

RenderPace::RenderPace(const ports::Clock& clock, const Transport& transport, TimeToNextEvent timeToNextEvent)
    : clock_(clock), transport_(transport), timeToNextEvent_(std::move(timeToNextEvent)) {
}

void RenderPace::requestRender(bool force) {
    const double now = clock_.uptimeSeconds();
    if (!force && lastRenderAt_ && now - *lastRenderAt_ < renderInterval())
        return;
    lastRenderAt_ = now;
    renderTick_.set(renderTick_.get() + 1);
}

double RenderPace::renderInterval() const {
    if (sheetCoveringDashboard_)
        return 0.5;
    double interval = 2.0;
    if (transport_.runActive()) {
        const double wait = timeToNextEvent_();
        interval = wait < 4 ? 0.125 : wait < 30 ? 1.0 / 3 : 0.5;
    }
    // A hot machine saves on drawing, never on firing.
    if (thermalState_ == ports::ThermalState::critical)
        return std::max(interval, 0.5);
    if (thermalState_ == ports::ThermalState::serious)
        return std::max(interval, 0.25);
    return interval;
}

} // namespace zenka::rig
