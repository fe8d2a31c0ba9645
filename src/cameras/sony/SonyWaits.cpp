#include "cameras/sony/SonyWaits.h"

#include <chrono>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace zenka::cameras {

double SonyWaits::now() const {
    return base::Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void SonyWaits::pause(base::Seconds span) const {
    std::this_thread::sleep_for(span);
}

bool SonyWaits::until(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                      base::Seconds limit, const std::function<bool()>& holds) const {
    return changed.wait_for(lock, limit, holds);
}

bool SonyWaits::within(base::Seconds limit, std::function<void()> work) const {
    struct Ending {
        std::mutex mutex;
        std::condition_variable changed;
        bool done = false;
    };
    const auto ending = std::make_shared<Ending>();
    try {
        std::thread([ending, work = std::move(work)]() mutable {
            work();
            work = nullptr; // what it owns is gone before anyone hears that it is done
            const std::lock_guard lock(ending->mutex);
            ending->done = true;
            ending->changed.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        return false; // no thread is to be had
    }
    std::unique_lock lock(ending->mutex);
    return ending->changed.wait_for(lock, limit, [&] { return ending->done; });
}

} // namespace zenka::cameras
