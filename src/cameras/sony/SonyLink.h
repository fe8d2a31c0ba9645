#pragma once

#include <cstdint>
#include <mutex>
#include <utility>

namespace zenka::cameras {

/// The session that a driver holds, shared with its work on other threads, which may outlive the driver.
/// Whoever is given a handle to close is the only one.
class SonyLink {
public:
    explicit SonyLink(std::int64_t handle) : handle_(handle) {}

    /// 0 when there is no session.
    std::int64_t handle() const {
        const std::lock_guard lock(mutex_);
        return handle_;
    }
    bool released() const {
        const std::lock_guard lock(mutex_);
        return released_;
    }

    /// The handle to close, 0 for none: another session is to follow.
    std::int64_t take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(handle_, 0);
    }
    /// The handle to close, 0 for none: the body is another's from now on.
    std::int64_t release() {
        const std::lock_guard lock(mutex_);
        released_ = true;
        return std::exchange(handle_, 0);
    }
    /// False when the body is another's already, and the caller closes what it has.
    bool adopt(std::int64_t handle) {
        const std::lock_guard lock(mutex_);
        if (released_)
            return false;
        handle_ = handle;
        return true;
    }
    void reclaim() {
        const std::lock_guard lock(mutex_);
        released_ = false;
    }

private:
    mutable std::mutex mutex_;
    std::int64_t handle_;
    bool released_ = false;
};

} // namespace zenka::cameras
