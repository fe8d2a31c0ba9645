#pragma once

#include "ports/ChildProcess.h"

namespace zenka::platform {

/// Child processes by posix_spawn, each with the usual signals and no descriptors but its three.
///
/// An ended child stays a zombie until its object goes. Its id, which is that of its group too, is
/// therefore nobody else's as long as it can be signalled. A descendant that leaves the group is lost sight
/// of; one that keeps the output open keeps it from ending.
class LinuxChildProcesses final : public ports::ChildProcesses {
public:
    Started start(const ports::ChildStart& start) override;
};

} // namespace zenka::platform
