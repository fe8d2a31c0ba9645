#pragma once

#include "platform/PowerProfiles.h"
#include "platform/ProcessorCounters.h"
#include "platform/SystemTree.h"
#include "ports/MachineSensors.h"

#include <filesystem>
#include <string>

namespace zenka::platform {

/// The machine by sysfs, procfs and the system bus. The thermal state is the worse of two: that of
/// readThermalZones(), and `serious` when the processor has slowed itself down for its heat in more than a
/// tenth of the time since the last read. The clock outlives this object.
class LinuxMachineSensors final : public ports::MachineSensors {
public:
    struct Places {
        std::filesystem::path root; ///< sys and proc lie below it
        std::filesystem::path home; ///< whose file system's free space is told
        std::string systemBus;      ///< its address; empty means the usual one
    };

    /// The machine itself and the user's home folder.
    explicit LinuxMachineSensors(const ports::Clock& clock);
    LinuxMachineSensors(const ports::Clock& clock, const Places& places);

    ports::MachineReading read() override;

private:
    std::optional<ports::ThermalState> thermalState();

    const ports::Clock& clock_;
    const SystemTree tree_;
    const std::filesystem::path home_;
    ThrottleWatch throttle_;
    PowerProfiles profiles_;
};

} // namespace zenka::platform
