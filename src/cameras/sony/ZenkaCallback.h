#pragma once

#include "cameras/sony/SonyWaits.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace zenka::cameras {

/// What the SDK has told of one session. The on... members run on the SDK's threads, everything else on any.
class ZenkaCallback {
public:
    void onConnected();
    void onDisconnected();
    void onWarning(std::uint32_t code);
    void onWarningExt(std::uint32_t code, std::int32_t result);

    bool connected() const;
    /// Waits until it is connected, or no longer is; false when it is not so by the limit.
    bool waitConnected(bool wanted, const SonyWaits& waits, base::Seconds limit) const;

    /// Captures that the body has confirmed.
    int capturedCount() const { return capturedCount_; }
    /// The SDK is taking a broken link up again by itself.
    bool reconnecting() const { return reconnecting_; }
    int reconnectedCount() const { return reconnectedCount_; }
    /// The last refusal of an operation, 0 for none, and how many there were.
    std::int32_t lastOpNg() const { return lastOpNg_; }
    int opNgCount() const { return opNgCount_; }

private:
    void setConnected(bool connected);

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    bool connected_ = false; // under the mutex
    std::atomic<int> capturedCount_ = 0;
    std::atomic<bool> reconnecting_ = false;
    std::atomic<int> reconnectedCount_ = 0;
    std::atomic<std::int32_t> lastOpNg_ = 0;
    std::atomic<int> opNgCount_ = 0;
};

} // namespace zenka::cameras
