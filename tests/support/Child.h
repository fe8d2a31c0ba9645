#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zenka::test {

/// A child process with its output at the end of a pipe; killed and reaped with its object.
class Child {
public:
    /// The words are the program and its arguments; entries of the environment are added as "NAME=value".
    explicit Child(std::vector<std::string> words, const std::vector<std::string>& environment = {});
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child();

    /// The next line of its output without the newline; empty at the end.
    std::string readLine();
    /// All that is left of its output, up to its end.
    std::string readRest();
    /// What comes within a time, as soon as anything does; empty when nothing did.
    std::string readWithin(std::chrono::milliseconds limit);
    void kill();
    pid_t id() const { return id_; }
    /// Its exit code, or -1 when a signal ended it.
    int wait();

private:
    pid_t id_ = 0;
    int output_ = -1;
    bool reaped_ = false;
};

/// True when this process has no child, a zombie neither.
bool childless();

} // namespace zenka::test
