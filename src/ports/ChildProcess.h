#pragma once

#include "base/Instant.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::ports {

struct ChildStart {
    std::string program; ///< a path, or a name that is looked for in PATH
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment; ///< over that of this process
    bool mergeErrors = false;                       ///< standard error goes where the output goes

    bool operator==(const ChildStart&) const = default;
};

/// A child process in a process group of its own. It belongs to one thread, not the main one, as reading
/// and writing wait; terminate() and kill() may be called from any. Destroying it kills the whole group
/// and leaves no zombie.
class ChildProcess {
public:
    struct Output {
        std::string out;
        std::string err;    ///< empty where errors are merged
        bool ended = false; ///< no more will come
    };

    virtual ~ChildProcess() = default;

    /// Hands bytes to its input; false when it did not take them all within the limit or has ended.
    virtual bool write(std::string_view bytes, base::Seconds limit) = 0;

    /// What it printed since the last call, as soon as there is anything; waits no longer than the limit.
    virtual Output read(base::Seconds limit) = 0;

    virtual bool running() = 0;

    /// Waits for its end: the exit code, negative the number of the signal that ended it. Nothing when it
    /// still runs at the limit.
    virtual std::optional<int> waitForEnd(base::Seconds limit) = 0;

    /// Asks the group to end, and ends it.
    virtual void terminate() = 0;
    virtual void kill() = 0;
};

/// Starts child processes. Any thread.
class ChildProcesses {
public:
    struct Started {
        std::unique_ptr<ChildProcess> child; ///< null when it could not be started
        std::string fault;                   ///< why, as the system says it
    };

    virtual ~ChildProcesses() = default;
    virtual Started start(const ChildStart& start) = 0;
};

} // namespace zenka::ports
