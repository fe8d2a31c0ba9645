#pragma once

#include "base/Instant.h"

#include <condition_variable>
#include <functional>
#include <mutex>

namespace zenka::cameras {

/// How the Sony bridge lets time pass. Called on any thread but the main one, also with the bridge's lock of
/// the SDK held, so none of it may call the bridge. Tests put virtual time in its place.
class SonyWaits {
public:
    virtual ~SonyWaits() = default;

    /// Seconds of a clock that never jumps.
    virtual double now() const;

    virtual void pause(base::Seconds span) const;

    /// Waits until a condition holds, which is looked at under the lock; false when it does not by the limit.
    virtual bool until(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                       base::Seconds limit, const std::function<bool()>& holds) const;

    /// Does work that may never come back, and waits for it; false when it is not done by the limit, and
    /// then it goes on by itself, so it must own all that it touches.
    virtual bool within(base::Seconds limit, std::function<void()> work) const;
};

} // namespace zenka::cameras
