#pragma once

#include "ports/Ports.h"
#include "rig/shared/RigLog.h"

#include <memory>
#include <string>

namespace zenka::rig {

/// The commands of a script's cues: started and left to themselves, their ends noted in the log. Nothing
/// waits for them. Those that still run when the program ends are ended with it. Main thread.
class ShellCues {
public:
    /// More at a time are not started: a script that starts what never ends must not fill the machine.
    static constexpr int mostRunning = 16;

    ShellCues(const ports::Ports& ports, RigLog& log);
    ShellCues(const ShellCues&) = delete;
    ShellCues& operator=(const ShellCues&) = delete;
    ~ShellCues();

    /// Runs a command line by the shell. The name stands for it in the log.
    void runShell(const std::string& command, const std::string& name);

    void endAll();

private:
    struct Running; // lives on the queue
    ports::WorkQueues& queues_;
    std::shared_ptr<ports::WorkQueue> queue_;
    std::shared_ptr<Running> running_;
};

} // namespace zenka::rig
