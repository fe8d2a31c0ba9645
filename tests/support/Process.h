#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace zenka::test {

/// A child process whose output is read through a pipe. Killed with its object.
class Process {
public:
    /// Starts a program; variables are "NAME=value" on top of this process's own.
    Process(const std::vector<std::string>& command, const std::vector<std::string>& variables = {});
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// Reads what comes within a time; false at the end of the output.
    bool read(double seconds);
    /// Reads to the end of the output and waits; the exit status, or minus the signal.
    int finish();
    void kill(int signal);

    /// What was read so far.
    const std::string& output() const { return output_; }

private:
    int wait();

    pid_t pid_ = -1;
    int pipe_ = -1;
    std::string output_;
};

} // namespace zenka::test
