#pragma once

#include <filesystem>

namespace zenka::ports {

/// Where the user's files go. A folder need not exist yet. Any thread.
class Folders {
public:
    virtual ~Folders() = default;

    /// The program's own data: run state, sites, camera library.
    virtual std::filesystem::path applicationSupport() const = 0;
    virtual std::filesystem::path documents() const = 0;
    virtual std::filesystem::path temporary() const = 0;

    /// The run logs: "Zenka Logs" in the documents.
    std::filesystem::path runLogs() const { return documents() / "Zenka Logs"; }
    /// The reports on what reached a card: "Zenka Reports" in the documents.
    std::filesystem::path reports() const { return documents() / "Zenka Reports"; }
};

} // namespace zenka::ports
