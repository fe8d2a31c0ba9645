#include "rig/DaemonSuppressor.h"

#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds period{0.15};

} // namespace

/// What the queue's work needs, so that it may outlive the suppressor.
struct DaemonSuppressor::Shared : std::enable_shared_from_this<Shared> {
    std::function<void()> endServices;
    mutable std::mutex mutex; // guards the two below
    int holds = 0;
    int round = 0; // of beats; a beat of an older round is the last of its kind

    void beat(const std::shared_ptr<ports::WorkQueue>& queue, int ofRound) {
        {
            const std::scoped_lock lock(mutex);
            if (holds == 0 || ofRound != round)
                return;
        }
        endServices();
        queue->postAfter(period, [self = shared_from_this(), weak = std::weak_ptr(queue), ofRound] {
            if (const auto still = weak.lock())
                self->beat(still, ofRound);
        });
    }
};

DaemonSuppressor::DaemonSuppressor(ports::WorkQueues& queues, std::function<void()> endServices)
    : shared_(std::make_shared<Shared>()), queue_(queues.serial("suppressor")) {
    shared_->endServices = std::move(endServices);
}

DaemonSuppressor::~DaemonSuppressor() {
    const std::scoped_lock lock(shared_->mutex);
    shared_->holds = 0;
}

void DaemonSuppressor::start() {
    int round = 0;
    {
        const std::scoped_lock lock(shared_->mutex);
        if (shared_->holds++ > 0)
            return;
        round = ++shared_->round;
    }
    queue_->post([shared = shared_, weak = std::weak_ptr(queue_), round] {
        if (const auto still = weak.lock())
            shared->beat(still, round);
    });
}

void DaemonSuppressor::stop() {
    const std::scoped_lock lock(shared_->mutex);
    if (shared_->holds > 0)
        --shared_->holds;
}

int DaemonSuppressor::holds() const {
    const std::scoped_lock lock(shared_->mutex);
    return shared_->holds;
}

} // namespace zenka::rig
