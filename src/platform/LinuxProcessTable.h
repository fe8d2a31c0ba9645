#pragma once

#include "ports/ProcessTable.h"

namespace zenka::platform {

/// The processes by the proc file system. Those that have ended and wait for their parents are left out.
///
/// What a process of another user has open is told to root only.
class LinuxProcessTable final : public ports::ProcessTable {
public:
    explicit LinuxProcessTable(std::filesystem::path root = "/proc");

    std::optional<std::vector<ports::RunningProcess>> running() override;

    /// By the file itself, whatever name it was opened under; a device by its number. A file that is not
    /// there is held by nobody.
    std::optional<std::vector<ports::RunningProcess>> holdersOf(const std::filesystem::path& file) override;

    /// Refuses this process.
    bool end(int id) override;

private:
    std::optional<ports::RunningProcess> look(int id) const;

    const std::filesystem::path root_;
};

} // namespace zenka::platform
