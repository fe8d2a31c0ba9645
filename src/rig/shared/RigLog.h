#pragma once

#include "base/Lifeline.h"
#include "ports/MainLoop.h"

#include <sigc++/sigc++.h>

#include <deque>
#include <functional>
#include <string>

namespace zenka::rig {

/// The operator's log.
class RigLog {
public:
    static constexpr std::size_t maxLines = 200;

    explicit RigLog(ports::MainLoop& loop) : loop_(loop) {}

    /// Adds a line. Any thread; from another than the main one the line comes a moment later.
    void pushLog(std::string line);

    /// A function for a thread that may outlive the log: what it is told is logged while there is one.
    std::function<void(std::string)> teller();

    /// Newest first, at most 200.
    const std::deque<std::string>& lines() const { return lines_; }

    /// Each new line, on the main thread.
    sigc::signal<void(const std::string&)>& lineAdded() { return lineAdded_; }

private:
    ports::MainLoop& loop_;
    std::deque<std::string> lines_;
    sigc::signal<void(const std::string&)> lineAdded_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
