#pragma once

#include "platform/Bus.h"
#include "platform/SystemTree.h"
#include "ports/Clock.h"

#include <memory>
#include <optional>
#include <string>

namespace zenka::platform {

/// Whether the machine saves power, by power-profiles-daemon or who speaks for it on the system bus, and
/// where there is none by the firmware's profile (sys/firmware/acpi/platform_profile).
class PowerProfiles {
public:
    /// An empty address means the machine's usual bus.
    PowerProfiles(const ports::Clock& clock, std::string address);

    /// Nothing where nobody tells. A bus that does not answer costs 5 s, and is then let be for some minutes.
    std::optional<bool> savesPower(const SystemTree& tree);

private:
    std::optional<std::string> activeProfile();

    const ports::Clock& clock_;
    const std::string address_;
    std::unique_ptr<Bus> bus_;
    double askAgainAt_ = 0; // uptime
};

} // namespace zenka::platform
