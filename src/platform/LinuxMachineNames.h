#pragma once

#include "platform/SystemTree.h"
#include "ports/MachineNames.h"

#include <filesystem>

namespace zenka::platform {

/// The names by the firmware's tables or the device tree, and by os-release.
class LinuxMachineNames final : public ports::MachineNames {
public:
    /// sys, etc and usr lie below the root.
    explicit LinuxMachineNames(std::filesystem::path root = "/") : tree_(std::move(root)) {}

    ports::MachineName read() override;

private:
    const SystemTree tree_;
};

} // namespace zenka::platform
