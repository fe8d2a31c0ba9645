#pragma once

#include "base/Published.h"
#include "ports/Clock.h"
#include "ports/MachineSensors.h"
#include "rig/run/Transport.h"

#include <cstdint>
#include <functional>
#include <optional>

namespace zenka::rig {

/// How often views are told to redraw: the clock itself is not published, so that a beat of 20 Hz is not
/// 20 Hz of drawing.
class RenderPace {
public:
    /// Seconds to the next capture or cue, infinite if there is none.
    using TimeToNextEvent = std::function<double()>;

    RenderPace(const ports::Clock& clock, const Transport& transport, TimeToNextEvent timeToNextEvent);

    /// Counts up with each redraw that is due.
    const base::Published<std::uint64_t>& renderTick() const { return renderTick_; }

    void requestRender(bool force);
    /// The shortest time between two redraws now, seconds.
    double renderInterval() const;

    void setSheetCoveringDashboard(bool covering) { sheetCoveringDashboard_ = covering; }
    void setThermalState(ports::ThermalState state) { thermalState_ = state; }

private:
    const ports::Clock& clock_;
    const Transport& transport_;
    TimeToNextEvent timeToNextEvent_;
    base::Published<std::uint64_t> renderTick_{0};
    std::optional<double> lastRenderAt_; // uptime seconds
    bool sheetCoveringDashboard_ = false;
    ports::ThermalState thermalState_ = ports::ThermalState::nominal;
};

} // namespace zenka::rig
