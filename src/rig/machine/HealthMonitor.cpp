#include "rig/machine/HealthMonitor.h"

#include "rig/shared/PlatformWords.h"

#include <utility>

namespace zenka::rig {

using ports::ThermalState;

namespace {

constexpr base::Seconds healthPeriod{10.0};
constexpr int missedToTell = 3;
constexpr std::size_t mostFaults = 50; ///< a driver that finds ever new words must not fill the memory

} // namespace

HealthMonitor::HealthMonitor(const ports::Ports& ports, RigLog& log)
    : ports_(ports), log_(log), queue_(ports.queues.serial("zenka.health")) {
}

void HealthMonitor::startHealthMonitor() {
    ports_.loop.cancel(healthTimer_);
    sampleHealth();
    healthTimer_ = ports_.loop.every(healthPeriod, lifeline_.guard([this] { sampleHealth(); }));
}

void HealthMonitor::sampleHealth() {
    if (asking_) {
        if (++missed_ == missedToTell)
            log_.pushLog("⚠️ The sensors of this " + std::string(platformWords::computer) +
                         " do not answer: its power, heat and disk are as they were half a minute ago.");
        return;
    }
    asking_ = true;
    queue_->post([&sensors = ports_.sensors, &loop = ports_.loop,
                  arrive = lifeline_.guard([this](const ports::MachineReading& reading) { take(reading); })] {
        loop.post([arrive, reading = sensors.read()] { arrive(reading); });
    });
}

void HealthMonitor::take(const ports::MachineReading& reading) {
    asking_ = false;
    missed_ = 0;
    for (const std::string& fault : reading.faults) {
        if (told_.size() < mostFaults && told_.insert(fault).second)
            log_.pushLog("⚠️ " + fault);
    }
    health_.set(healthSampler_.sample(reading));
    const ThermalState state = health_.get().thermal.value_or(ThermalState::nominal);
    if (state != thermalState_.get())
        thermalChanged(state);
    sampled_.emit();
}

void HealthMonitor::thermalChanged(ThermalState state) {
    thermalState_.set(state);
    if (state < ThermalState::serious) {
        thermalWarned_ = false;
        showThermalWarning_.set(false);
        return;
    }
    log_.pushLog("⚠️ Thermal state " +
                 std::string(state == ThermalState::critical ? "CRITICAL" : "serious") +
                 "; easing UI refresh (firing unaffected)");
    if (std::exchange(thermalWarned_, true))
        return;
    showThermalWarning_.set(true);
    spoken_.emit("Warning. Your " + std::string(platformWords::computer) +
                 " is overheating. Move it into the shade.");
}

} // namespace zenka::rig
