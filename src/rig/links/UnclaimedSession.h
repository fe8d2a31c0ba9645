#pragma once

#include <cstdint>
#include <functional>
#include <utility>

namespace zenka::rig {

/// A session with a body that no driver has taken over yet: closed when it goes so, on whatever thread that
/// is.
class UnclaimedSession {
public:
    using Close = std::function<void(std::int64_t handle)>;

    UnclaimedSession(std::int64_t handle, Close close) : handle_(handle), close_(std::move(close)) {}
    UnclaimedSession(const UnclaimedSession&) = delete;
    UnclaimedSession& operator=(const UnclaimedSession&) = delete;
    ~UnclaimedSession() {
        if (handle_ != 0)
            close_(handle_);
    }

    /// The handle, which is the caller's to close from now on.
    std::int64_t claim() { return std::exchange(handle_, 0); }

private:
    std::int64_t handle_;
    const Close close_;
};

} // namespace zenka::rig
