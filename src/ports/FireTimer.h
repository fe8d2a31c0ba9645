#pragma once

#include "base/Instant.h"

#include <functional>

namespace zenka::ports {

/// A beat on a thread of its own, of high priority and with bounded slack.
/// All operations may be called from any thread.
class FireTimer {
public:
    virtual ~FireTimer() = default;

    /// Starts the thread; the beat function runs on it and must not block. The first beat comes after
    /// one period. Starting again replaces the beat before.
    virtual void start(base::Seconds period, base::Seconds slack, std::function<void()> beat) = 0;

    /// The next beat comes one new period from now.
    virtual void reschedule(base::Seconds period, base::Seconds slack) = 0;

    /// Asks for one more beat, between the regular ones and without slack, at an instant of
    /// Clock::continuousSeconds. Each call replaces the one before; infinity asks for none.
    virtual void wakeAt(double continuousSeconds) = 0;

    /// Stops the beat. When it returns no beat runs and none will.
    virtual void stop() = 0;
};

} // namespace zenka::ports
