#include "platform/ThreadWorkQueues.h"

#include "platform/Guarded.h"

#include <algorithm>
#include <pthread.h>

namespace zenka::platform {

namespace {

class SerialQueue final : public ports::WorkQueue {
public:
    explicit SerialQueue(std::shared_ptr<SerialThread> thread) : thread_(std::move(thread)) {}
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    ~SerialQueue() override { thread_->close(); }

    void post(Function function) override { thread_->post(std::move(function)); }
    void postAfter(base::Seconds delay, Function function) override {
        thread_->postAfter(delay, std::move(function));
    }
    bool drain(base::Seconds limit) override { return thread_->drain(limit); }

private:
    std::shared_ptr<SerialThread> thread_;
};

} // namespace

ThreadWorkQueues::ThreadWorkQueues(Report report, unsigned backgroundThreads) : report_(std::move(report)) {
    for (unsigned number = 0; number < std::max(backgroundThreads, 1U); ++number)
        pool_.emplace_back([this] { serveBackground(); });
}

ThreadWorkQueues::~ThreadWorkQueues() {
    // background work may still post to serial queues, so it ends first
    {
        const std::lock_guard lock(poolMutex_);
        poolClosing_ = true;
    }
    poolWork_.notify_all();
    pool_.clear();
    std::vector<std::shared_ptr<SerialThread>> threads;
    {
        const std::lock_guard lock(threadsMutex_);
        threads.swap(threads_);
    }
    for (const auto& thread : threads)
        thread->close();
    for (const auto& thread : threads)
        thread->join();
}

std::shared_ptr<ports::WorkQueue> ThreadWorkQueues::serial(const std::string& name) {
    const std::lock_guard lock(threadsMutex_);
    std::erase_if(threads_, [](const auto& thread) { return thread->finished(); });
    threads_.push_back(std::make_shared<SerialThread>(name, report_));
    return std::make_shared<SerialQueue>(threads_.back());
}

void ThreadWorkQueues::background(std::function<void()> function) {
    {
        const std::lock_guard lock(poolMutex_);
        poolPieces_.push_back(std::move(function));
    }
    poolWork_.notify_one();
}

void ThreadWorkQueues::serveBackground() {
    pthread_setname_np(pthread_self(), "zenka.pool");
    std::unique_lock lock(poolMutex_);
    for (;;) {
        poolWork_.wait(lock, [this] { return poolClosing_ || !poolPieces_.empty(); });
        if (poolPieces_.empty())
            return;
        {
            const std::function<void()> piece = std::move(poolPieces_.front());
            poolPieces_.pop_front();
            lock.unlock();
            runGuarded("background pool", piece);
        }
        lock.lock();
    }
}

} // namespace zenka::platform
