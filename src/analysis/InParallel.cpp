#include "analysis/InParallel.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace zenka::analysis {

namespace {

constexpr std::size_t mostThreads = 8;

struct Round {
    const std::function<void(std::size_t)>* work = nullptr;
    std::size_t count = 0;
    std::atomic<std::size_t> next = 0;
    std::mutex lock;
    std::condition_variable left; // a helper has left
    int helpers = 0;              // inside
    bool over = false;            // nobody is let in any more

    void run() {
        for (std::size_t i = next++; i < count; i = next++)
            (*work)(i);
    }
};

} // namespace

void inParallel(ports::WorkQueues& queues, std::size_t count, const std::function<void(std::size_t)>& work) {
    const auto round = std::make_shared<Round>();
    round->work = &work;
    round->count = count;
    const std::size_t threads =
        std::min({std::max<std::size_t>(std::thread::hardware_concurrency(), 1), mostThreads, count});
    for (std::size_t i = 1; i < threads; ++i) {
        queues.background([round] {
            {
                const std::lock_guard lock(round->lock);
                if (round->over)
                    return; // it came too late, the work may be gone
                ++round->helpers;
            }
            round->run();
            const std::lock_guard lock(round->lock);
            --round->helpers;
            round->left.notify_one();
        });
    }
    round->run();
    std::unique_lock lock(round->lock);
    round->over = true;
    round->left.wait(lock, [&] { return round->helpers == 0; });
}

} // namespace zenka::analysis
