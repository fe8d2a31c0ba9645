#pragma once

#include "platform/Report.h"
#include "ports/WorkQueues.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace zenka::platform {

/// A thread that works off a queue; the queue's handle and the maker of the queues share it.
///
/// It grows without bound: a row of a run that waits costs some hundred bytes, a row dropped is lost.
/// It says once when it holds 100,000 pieces, and again only after it got below half of that.
class SerialThread {
public:
    using Clock = std::chrono::steady_clock;

    SerialThread(std::string name, Report report);
    SerialThread(const SerialThread&) = delete;
    SerialThread& operator=(const SerialThread&) = delete;
    ~SerialThread();

    /// Work posted when the queue is closed is dropped.
    void post(ports::WorkQueue::Function function);
    void postAfter(base::Seconds delay, ports::WorkQueue::Function function);
    bool drain(base::Seconds limit);

    /// The thread does what was posted, delayed work at once, and ends. Does not wait for it.
    void close();
    bool finished() const;
    void join() { thread_.join(); }

    /// The instant of a span from now, held to what the clock can count.
    static Clock::time_point fromNow(base::Seconds span);

private:
    struct Piece {
        Clock::time_point due;
        std::uint64_t sequence = 0;
        ports::WorkQueue::Function function;
    };
    static bool later(const Piece& left, const Piece& right);

    void serve();
    /// The next piece that may run, in order of the instants; nothing when all must wait.
    std::optional<Piece> take(bool& immediate);
    void noteSize(std::unique_lock<std::mutex>& lock);

    const std::string name_;
    const Report report_;
    mutable std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable progress_;
    std::deque<Piece> ready_;
    std::vector<Piece> delayed_; // a heap, the earliest in front
    std::uint64_t sequence_ = 0;
    std::uint64_t posted_ = 0; // of ready_, ever
    std::uint64_t done_ = 0;
    bool reported_ = false;
    bool closing_ = false;
    bool finished_ = false;
    std::jthread thread_;
};

} // namespace zenka::platform
