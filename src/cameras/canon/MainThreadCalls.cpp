#include "cameras/canon/MainThreadCalls.h"

namespace zenka::cameras {

bool MainThreadCalls::run(const std::function<void()>& function) {
    if (loop_.onMainThread()) {
        function();
        return true;
    }
    const auto shared = shared_;
    const auto done = std::make_shared<bool>(false);
    // The function may refer to the caller's frame: it is not begun once nobody waits, and as closing is the
    // main thread's too, it is not under way when the wait ends.
    loop_.post([shared, done, &function] {
        {
            const std::lock_guard lock(shared->mutex);
            if (shared->closed)
                return;
        }
        function();
        const std::lock_guard lock(shared->mutex);
        *done = true;
        shared->changed.notify_all();
    });
    std::unique_lock lock(shared->mutex);
    shared->changed.wait(lock, [&] { return *done || shared->closed; });
    return *done;
}

void MainThreadCalls::close() {
    const std::lock_guard lock(shared_->mutex);
    shared_->closed = true;
    shared_->changed.notify_all();
}

} // namespace zenka::cameras
