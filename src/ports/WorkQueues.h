#pragma once

#include "base/Instant.h"

#include <functional>
#include <memory>
#include <string>

namespace zenka::ports {

/// Work off the main thread, one piece after another in order of their posting. Any thread may post.
/// When the last reference goes, the work already posted is still done (delayed work at once).
class WorkQueue {
public:
    using Function = std::function<void()>;

    virtual ~WorkQueue() = default;

    virtual void post(Function function) = 0;

    /// Posts a function after a delay.
    virtual void postAfter(base::Seconds delay, Function function) = 0;

    /// Waits until all work posted so far, delayed work left out, is done; false when it is not by the
    /// time limit. Not from the queue itself.
    virtual bool drain(base::Seconds limit) = 0;
};

/// Makes queues.
class WorkQueues {
public:
    virtual ~WorkQueues() = default;

    /// A serial queue. The name is for debuggers and logs.
    virtual std::shared_ptr<WorkQueue> serial(const std::string& name) = 0;

    /// Runs a function on a shared pool, in no order. Any thread.
    virtual void background(std::function<void()> function) = 0;
};

} // namespace zenka::ports
