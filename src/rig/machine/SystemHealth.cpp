#include "rig/machine/SystemHealth.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

using ports::ThermalState;

SystemHealth::Severity SystemHealth::worst() const {
    const ThermalState heat = thermal.value_or(ThermalState::nominal);
    Severity severity = heat >= ThermalState::serious                ? Severity::critical
                        : heat == ThermalState::fair || lowPowerMode ? Severity::warning
                                                                     : Severity::good;
    if (hasInternalBattery && !onACPower && macBatteryPercent) {
        if (*macBatteryPercent < 21)
            severity = Severity::critical;
        else if (*macBatteryPercent < 41)
            severity = std::max(severity, Severity::warning);
    }
    if (cpuUsagePercent >= 90.0)
        severity = std::max(severity, Severity::warning);
    if (freeDiskGB && *freeDiskGB < 1)
        return Severity::critical;
    if (freeDiskGB && *freeDiskGB < 5)
        severity = std::max(severity, Severity::warning);
    return severity;
}

std::string wordOf(ThermalState state) {
    switch (state) {
    case ThermalState::nominal: return "nominal";
    case ThermalState::fair: return "fair";
    case ThermalState::serious: return "serious";
    case ThermalState::critical: return "critical";
    }
    return {};
}

SystemHealth SystemHealthSampler::sample(const ports::MachineReading& reading) {
    return {.thermal = reading.thermal,
            .lowPowerMode = reading.lowPowerMode.value_or(false),
            .onACPower = reading.onACPower.value_or(true),
            .hasInternalBattery = reading.hasInternalBattery,
            .macBatteryPercent = reading.batteryPercent,
            .cpuUsagePercent = cpuUsage(reading.ticks),
            .freeDiskGB = reading.freeDiskGB,
            .socTempC = reading.socTempC};
}

std::optional<double> SystemHealthSampler::cpuUsage(const std::optional<ports::ProcessorTicks>& ticks) {
    const auto before = std::exchange(prevTicks_, ticks);
    if (!ticks)
        return std::nullopt;
    if (!before)
        return 0;
    // Counters may step back where a processor was taken offline.
    const auto since = [](std::uint64_t now, std::uint64_t then) {
        return now > then ? static_cast<double>(now - then) : 0.0;
    };
    const double busy =
        since(ticks->user, before->user) + since(ticks->sys, before->sys) + since(ticks->nice, before->nice);
    const double total = busy + since(ticks->idle, before->idle);
    return total > 0 ? busy / total * 100 : 0;
}

} // namespace zenka::rig
