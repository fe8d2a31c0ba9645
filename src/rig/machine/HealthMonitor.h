#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/machine/SystemHealth.h"
#include "rig/shared/RigLog.h"

#include <memory>
#include <set>
#include <string>

namespace zenka::rig {

/// Watches the machine: a sample every 10 s, taken off the main thread, and a warning when it overheats.
/// Main thread.
class HealthMonitor {
public:
    HealthMonitor(const ports::Ports& ports, RigLog& log);

    /// Samples at once, and from now on every 10 s.
    void startHealthMonitor();
    /// Asks the sensors. A sample that is still under way counts for this one too.
    void sampleHealth();

    const base::Published<SystemHealth>& health() const { return health_; }
    const base::Published<ports::ThermalState>& thermalState() const { return thermalState_; }
    /// The machine overheats, and nobody has said yet that he knows.
    const base::Published<bool>& showThermalWarning() const { return showThermalWarning_; }
    void dismissThermalWarning() { showThermalWarning_.set(false); }

    /// A sentence to speak.
    sigc::signal<void(const std::string&)>& spoken() { return spoken_; }
    /// Each sample that has come, also one that is like the one before.
    sigc::signal<void()>& sampled() { return sampled_; }

private:
    void take(const ports::MachineReading& reading);
    void thermalChanged(ports::ThermalState state);

    const ports::Ports& ports_;
    RigLog& log_;
    std::shared_ptr<ports::WorkQueue> queue_;
    SystemHealthSampler healthSampler_;
    base::Published<SystemHealth> health_;
    base::Published<ports::ThermalState> thermalState_{ports::ThermalState::nominal};
    base::Published<bool> showThermalWarning_{false};
    ports::MainLoop::TimerId healthTimer_ = ports::MainLoop::TimerId::none;
    bool thermalWarned_ = false;
    bool asking_ = false;
    int missed_ = 0; // samples that the one under way has held up
    std::set<std::string> told_;
    sigc::signal<void(const std::string&)> spoken_;
    sigc::signal<void()> sampled_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
