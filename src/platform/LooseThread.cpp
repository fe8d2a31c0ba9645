#include "platform/LooseThread.h"

#include "platform/Guarded.h"

#include <condition_variable>
#include <mutex>

namespace zenka::platform {

struct LooseThread::Ending {
    std::mutex mutex;
    std::condition_variable changed;
    bool reached = false;
};

LooseThread::LooseThread(std::function<void()> function)
    : ending_(std::make_shared<Ending>()),
      thread_([ending = ending_, function = std::move(function)]() mutable {
          runGuarded("desktop thread", function);
          function = nullptr;
          const std::lock_guard lock(ending->mutex);
          ending->reached = true;
          ending->changed.notify_all();
      }) {
}

LooseThread::~LooseThread() {
    if (!thread_.joinable())
        return;
    std::unique_lock lock(ending_->mutex);
    const bool ended =
        ending_->changed.wait_for(lock, std::chrono::milliseconds(500), [this] { return ending_->reached; });
    lock.unlock();
    if (ended)
        thread_.join();
    else
        thread_.detach();
}

void LooseThread::leave() {
    if (thread_.joinable())
        thread_.detach();
}

} // namespace zenka::platform
