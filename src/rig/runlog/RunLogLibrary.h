#pragma once

#include "analysis/RunLogTables.h"
#include "ports/Files.h"

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zenka::rig {

/// The run logs that are kept. Waits for the disk.
class RunLogLibrary {
public:
    RunLogLibrary(ports::Files& files, std::filesystem::path folder);

    struct Match {
        std::optional<analysis::MatchedLog> best;
        std::vector<std::string> others; ///< logs that know some of the captures as well
        int unreadable = 0;              ///< logs that the disk did not give
    };
    /// The log that knows most of a camera's captures, the newest of equals. One that cannot be read is
    /// passed over.
    Match match(const std::string& camera, const std::vector<script::Capture>& captures,
                const std::atomic<bool>& cancelled);

private:
    ports::Files& files_;
    const std::filesystem::path folder_;
};

} // namespace zenka::rig
