#pragma once

#include "platform/SystemTree.h"
#include "ports/MachineSensors.h"

#include <optional>

namespace zenka::platform {

/// Where the processors have spent their time, by proc/stat: interrupts and what a hypervisor took count as
/// `sys`, waiting for disks as `idle`. (A guest's time stands within `user` already.)
std::optional<ports::ProcessorTicks> readProcessorTicks(const SystemTree& tree);

/// How much of the time the processor slowed itself down for its heat, by counters that only Intel's have
/// (sys/devices/system/cpu/cpu*/thermal_throttle/package_throttle_total_time_ms). One reader keeps the
/// counters between its reads.
class ThrottleWatch {
public:
    /// The share of the time since the last read, 0 to 1, of the package that was throttled most; 0 at the
    /// first read, nothing where there are no counters. The uptime is one that stands still in sleep, as the
    /// counters do.
    std::optional<double> share(const SystemTree& tree, double uptimeSeconds);

private:
    std::vector<std::pair<std::string, std::int64_t>> before_; // by file
    double readAt_ = 0;
};

} // namespace zenka::platform
