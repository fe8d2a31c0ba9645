#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zenka::ports {

/// How far the heat of the machine has got.
enum class ThermalState {
    nominal,
    fair,     ///< it cools with all it has
    serious,  ///< it works more slowly to stay cool
    critical, ///< it is about to switch itself off
};

/// Where the processors have spent their time since the machine was started, in the kernel's ticks.
struct ProcessorTicks {
    std::uint64_t user = 0;
    std::uint64_t sys = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;

    friend bool operator==(const ProcessorTicks&, const ProcessorTicks&) = default;
};

/// The machine at one moment. What it does not tell, or tells nonsense of, is absent.
struct MachineReading {
    std::optional<ThermalState> thermal;
    std::optional<bool> lowPowerMode;
    std::optional<bool> onACPower; ///< absent only where neither mains nor battery are known of
    bool hasInternalBattery = false;
    std::optional<int> batteryPercent; ///< 0 to 100, of all internal batteries together
    std::optional<ProcessorTicks> ticks;
    std::optional<double> freeDiskGB; ///< that the user may fill, at the home folder, in 10^9 bytes
    std::optional<double> socTempC;   ///< of the hottest sensor of the processor
    /// What was passed over and why, whole sentences. The same words as long as it is the same fault.
    std::vector<std::string> faults;

    friend bool operator==(const MachineReading&, const MachineReading&) = default;
};

class MachineSensors {
public:
    virtual ~MachineSensors() = default;

    /// Reads all of it. It can take a second, and longer where a driver of the kernel is slow: never on the
    /// main thread. One call at a time.
    virtual MachineReading read() = 0;
};

} // namespace zenka::ports
