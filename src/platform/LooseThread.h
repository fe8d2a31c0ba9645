#pragma once

#include "base/Instant.h"

#include <functional>
#include <memory>
#include <thread>

namespace zenka::platform {

/// A thread that may get stuck in a service of the desktop. Its object waits for it a little and then
/// leaves it to itself, so the function must own all that it touches.
class LooseThread {
public:
    explicit LooseThread(std::function<void()> function);
    LooseThread(const LooseThread&) = delete;
    LooseThread& operator=(const LooseThread&) = delete;

    /// Waits half a second at most.
    ~LooseThread();

    /// Leaves it to itself at once.
    void leave();

private:
    struct Ending;
    std::shared_ptr<Ending> ending_;
    std::thread thread_;
};

} // namespace zenka::platform
