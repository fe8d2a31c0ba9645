#pragma once

#include "platform/SerialThread.h"

namespace zenka::platform {

/// Work queues on threads: one for each serial queue, and a small fixed number for the background.
///
/// Letting the last reference to a queue go waits for nothing: its thread finishes its work, and the
/// destructor of this object waits for all of them, so that the end of the program loses nothing. Work
/// posted after that, to a queue that outlived this object, is dropped.
class ThreadWorkQueues final : public ports::WorkQueues {
public:
    /// The report hears of queues that do not keep up.
    explicit ThreadWorkQueues(Report report = {}, unsigned backgroundThreads = 4);
    ThreadWorkQueues(const ThreadWorkQueues&) = delete;
    ThreadWorkQueues& operator=(const ThreadWorkQueues&) = delete;
    ~ThreadWorkQueues() override;

    std::shared_ptr<ports::WorkQueue> serial(const std::string& name) override;
    void background(std::function<void()> function) override;

private:
    void serveBackground();

    const Report report_;

    std::mutex threadsMutex_;
    std::vector<std::shared_ptr<SerialThread>> threads_;

    std::mutex poolMutex_;
    std::condition_variable poolWork_;
    std::deque<std::function<void()>> poolPieces_;
    bool poolClosing_ = false;
    std::vector<std::jthread> pool_;
};

} // namespace zenka::platform
