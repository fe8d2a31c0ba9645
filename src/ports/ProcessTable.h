#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zenka::ports {

struct RunningProcess {
    int id = 0;
    std::string name;  ///< the program's, without its folder
    bool mine = false; ///< it runs under this user

    bool operator==(const RunningProcess&) const = default;
};

/// The processes of the machine. Any thread but the main one, as a scan reads many files.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    /// Nothing when they cannot be listed.
    virtual std::optional<std::vector<RunningProcess>> running() = 0;

    /// The processes that have a file open, as far as this user may see; this one left out.
    virtual std::optional<std::vector<RunningProcess>> holdersOf(const std::filesystem::path& file) = 0;

    /// Ends a process of this user at once; false for any other and for one that is gone.
    virtual bool end(int id) = 0;
};

} // namespace zenka::ports
