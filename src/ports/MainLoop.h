#pragma once

#include "base/Instant.h"

#include <cstdint>
#include <functional>

namespace zenka::ports {

/// The loop of the main thread. Functions run one at a time, in order of their instant and, at one
/// instant, in order of their call.
class MainLoop {
public:
    using Function = std::function<void()>;
    enum class TimerId : std::uint64_t { none = 0 };

    virtual ~MainLoop() = default;

    /// Runs a function on the main thread, soon. Any thread.
    virtual void post(Function function) = 0;

    /// Runs a function once after a delay, to a small fraction of a millisecond where the machine lets
    /// it. Main thread.
    virtual TimerId after(base::Seconds delay, Function function) = 0;

    /// Runs a function again and again, first after one period. Main thread.
    virtual TimerId every(base::Seconds period, Function function) = 0;

    /// A timer that is cancelled does not run any more, also from within its own function. An unknown or
    /// finished one is no error. Main thread.
    virtual void cancel(TimerId timer) = 0;

    virtual bool onMainThread() const = 0;
};

} // namespace zenka::ports
