#pragma once

#include "platform/SystemTree.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::platform {

/// Where the machine has its power from, by sys/class/power_supply.
struct PowerReading {
    std::optional<bool> onAC;
    bool hasBattery = false;
    std::optional<int> percent; ///< of all batteries together
    std::vector<std::string> faults;
};

/// Batteries of devices, such as a mouse, are none, nor are those of a UPS.
///
/// A machine without a battery runs on mains. One with a battery does when any supply is online, or a
/// battery is charging; where no supply is listed, "Discharging" means battery, and "Full" and "Not
/// charging" mean mains, for both are said with a charger connected. "Unknown" means nothing. Nor is anything
/// known where the kernel has no such folder.
///
/// The percentage is the capacity that the driver tells, or else what the battery holds of what it can hold.
/// Several batteries are weighed by what they can hold.
PowerReading readPowerSupplies(const SystemTree& tree);

} // namespace zenka::platform
