#include "cameras/sony/ZenkaCallback.h"

namespace zenka::cameras {

namespace {

constexpr std::uint32_t reconnectedWarning = 0x20001;
constexpr std::uint32_t reconnectingWarning = 0x20002;
constexpr std::uint32_t capturedWarning = 0x20011;
constexpr std::uint32_t operationResult = 0x60002;
constexpr std::int32_t firstRefusal = 2;

} // namespace

void ZenkaCallback::onConnected() {
    setConnected(true);
}

void ZenkaCallback::onDisconnected() {
    reconnecting_ = false;
    setConnected(false);
}

void ZenkaCallback::onWarning(std::uint32_t code) {
    switch (code) {
    case reconnectedWarning:
        reconnecting_ = false;
        ++reconnectedCount_;
        break;
    case reconnectingWarning: reconnecting_ = true; break;
    case capturedWarning: ++capturedCount_; break;
    default: break;
    }
}

void ZenkaCallback::onWarningExt(std::uint32_t code, std::int32_t result) {
    if (code != operationResult || result < firstRefusal)
        return;
    lastOpNg_ = result;
    ++opNgCount_;
}

void ZenkaCallback::setConnected(bool connected) {
    const std::lock_guard lock(mutex_);
    connected_ = connected;
    changed_.notify_all();
}

bool ZenkaCallback::connected() const {
    const std::lock_guard lock(mutex_);
    return connected_;
}

bool ZenkaCallback::waitConnected(bool wanted, const SonyWaits& waits, base::Seconds limit) const {
    std::unique_lock lock(mutex_);
    return waits.until(lock, changed_, limit, [&] { return connected_ == wanted; });
}

} // namespace zenka::cameras
