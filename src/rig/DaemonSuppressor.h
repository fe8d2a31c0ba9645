#pragma once

#include "ports/WorkQueues.h"

#include <functional>
#include <memory>
#include <mutex>

namespace zenka::rig {

/// Keeps ending the desktop's services that take every camera for themselves, as long as anybody holds it.
/// Detection, reconnect and a manual fire share one. Any thread.
class DaemonSuppressor {
public:
    DaemonSuppressor(ports::WorkQueues& queues, std::function<void()> endServices);
    DaemonSuppressor(const DaemonSuppressor&) = delete;
    DaemonSuppressor& operator=(const DaemonSuppressor&) = delete;
    ~DaemonSuppressor();

    /// Each start() takes one hold, each stop() gives one back. One too many is no error.
    void start();
    void stop();
    int holds() const;

    /// A hold that ends with its object.
    class Hold {
    public:
        explicit Hold(DaemonSuppressor& suppressor) : suppressor_(&suppressor) { suppressor.start(); }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
        ~Hold() { suppressor_->stop(); }

    private:
        DaemonSuppressor* suppressor_;
    };

private:
    struct Shared;

    std::shared_ptr<Shared> shared_;
    std::shared_ptr<ports::WorkQueue> queue_;
};

} // namespace zenka::rig
