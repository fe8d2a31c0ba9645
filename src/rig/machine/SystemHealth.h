#pragma once

#include "ports/MachineSensors.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// The condition of the machine. What it does not tell is absent and counts for nothing.
struct SystemHealth {
    std::optional<ports::ThermalState> thermal;
    bool lowPowerMode = false;
    bool onACPower = true;
    bool hasInternalBattery = false;
    std::optional<int> macBatteryPercent;
    std::optional<double> cpuUsagePercent; ///< 0 to 100, since the sample before
    std::optional<double> freeDiskGB;      ///< 10^9 bytes
    std::optional<double> socTempC;

    enum class Severity { good, warning, critical };
    /// All of it in one word.
    Severity worst() const;

    friend bool operator==(const SystemHealth&, const SystemHealth&) = default;
};

/// "nominal", "fair", "serious", "critical".
std::string wordOf(ports::ThermalState state);

/// Makes of the machine's readings what they mean.
class SystemHealthSampler {
public:
    SystemHealth sample(const ports::MachineReading& reading);

private:
    std::optional<double> cpuUsage(const std::optional<ports::ProcessorTicks>& ticks);

    std::optional<ports::ProcessorTicks> prevTicks_;
};

} // namespace zenka::rig
