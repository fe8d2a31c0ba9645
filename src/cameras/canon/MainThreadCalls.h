#pragma once

#include "ports/MainLoop.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace zenka::cameras {

/// Calls from other threads that must be made on the main one, and are waited for. Made on the main thread.
class MainThreadCalls {
public:
    explicit MainThreadCalls(ports::MainLoop& loop) : loop_(loop), shared_(std::make_shared<Shared>()) {}
    ~MainThreadCalls() { close(); }
    MainThreadCalls(const MainThreadCalls&) = delete;
    MainThreadCalls& operator=(const MainThreadCalls&) = delete;

    /// Runs a function on the main thread, at once when that is this one, and waits until it has run. False
    /// when it was not run and never will be: the calls are closed. Any thread.
    bool run(const std::function<void()>& function);

    /// Nothing runs any more, and nobody waits any longer. Main thread, which may wait for others from then
    /// on.
    void close();

private:
    /// Outlives this object as long as somebody waits.
    struct Shared {
        std::mutex mutex;
        std::condition_variable changed;
        bool closed = false;
    };

    ports::MainLoop& loop_;
    const std::shared_ptr<Shared> shared_;
};

} // namespace zenka::cameras
