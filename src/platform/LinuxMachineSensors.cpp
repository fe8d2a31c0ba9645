#include "platform/LinuxMachineSensors.h"

#include "platform/PowerSupplies.h"
#include "platform/ThermalZones.h"

#include <algorithm>
#include <cstdlib>
#include <sys/statvfs.h>

namespace zenka::platform {

namespace {

std::filesystem::path userHome() {
    const char* home = std::getenv("HOME");
    return home != nullptr && *home != '\0' ? home : "/";
}

std::optional<double> freeGB(const std::filesystem::path& folder) {
    struct statvfs space {};
    if (::statvfs(folder.c_str(), &space) != 0)
        return std::nullopt;
    return static_cast<double>(space.f_bavail) * static_cast<double>(space.f_frsize) / 1e9;
}

} // namespace

LinuxMachineSensors::LinuxMachineSensors(const ports::Clock& clock)
    : LinuxMachineSensors(clock, {.root = "/", .home = userHome(), .systemBus = {}}) {
}

LinuxMachineSensors::LinuxMachineSensors(const ports::Clock& clock, const Places& places)
    : clock_(clock), tree_(places.root), home_(places.home), profiles_(clock, places.systemBus) {
}

ports::MachineReading LinuxMachineSensors::read() {
    PowerReading power = readPowerSupplies(tree_);
    return {.thermal = thermalState(),
            .lowPowerMode = profiles_.savesPower(tree_),
            .onACPower = power.onAC,
            .hasInternalBattery = power.hasBattery,
            .batteryPercent = power.percent,
            .ticks = readProcessorTicks(tree_),
            .freeDiskGB = freeGB(home_),
            .socTempC = readProcessorTemperature(tree_),
            .faults = std::move(power.faults)};
}

std::optional<ports::ThermalState> LinuxMachineSensors::thermalState() {
    constexpr double muchThrottled = 0.1;
    std::optional<ports::ThermalState> throttled;
    if (const auto share = throttle_.share(tree_, clock_.uptimeSeconds()))
        throttled = *share > muchThrottled ? ports::ThermalState::serious : ports::ThermalState::nominal;
    return std::max(readThermalZones(tree_), throttled);
}

} // namespace zenka::platform
