#pragma once

#include <string>

namespace zenka::ports {

/// What the machine and its system call themselves. Empty for what is not told.
struct MachineName {
    std::string product; ///< "ThinkPad T480"
    std::string system;  ///< "Debian GNU/Linux 12 (bookworm)"

    friend bool operator==(const MachineName&, const MachineName&) = default;
};

class MachineNames {
public:
    virtual ~MachineNames() = default;

    /// Reads them from the disk, so never on the main thread. Any other.
    virtual MachineName read() = 0;
};

} // namespace zenka::ports
