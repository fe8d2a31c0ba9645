#include "cameras/sony/SonyBridgeState.h"

#include <algorithm>
#include <utility>

namespace zenka::cameras {

bool SdkMutex::tryLockFor(base::Seconds limit) {
    std::unique_lock lock(mutex_);
    if (!freed_.wait_for(lock, limit, [this] { return !locked_; }))
        return false;
    locked_ = true;
    return true;
}

void SdkMutex::unlock() {
    const std::lock_guard lock(mutex_);
    locked_ = false;
    freed_.notify_one();
}

SonyBridgeState& SonyBridgeState::shared() {
    static auto& state = *new SonyBridgeState;
    return state;
}

void SonyBridgeState::setUp(ports::SharedLibraries* from, std::shared_ptr<const SonyWaits> how) {
    const std::lock_guard lock(setUpMutex_);
    libraries_ = from;
    waits_ = std::move(how);
}

std::shared_ptr<const SonyWaits> SonyBridgeState::waits() {
    const std::lock_guard lock(setUpMutex_);
    if (!waits_)
        waits_ = std::make_shared<const SonyWaits>();
    return waits_;
}

void SonyBridgeState::loadTable() {
    ports::SharedLibraries* from = nullptr;
    {
        const std::lock_guard lock(setUpMutex_);
        from = libraries_;
    }
    if (table || !from)
        return;
    const auto opened = from->open(crsdkModule);
    if (!opened.library)
        return;
    const auto tableOf = opened.library->function<CrSDKTableOf>(crsdkTableSymbol);
    const CrSDKTable* given = tableOf ? tableOf(crsdkTableVersion) : nullptr;
    if (!given || given->version != crsdkTableVersion)
        return;
    library = opened.library;
    table = given;
}

std::shared_ptr<ZenkaCallback> SonyBridgeState::callbackOf(std::int64_t handle) {
    const std::lock_guard lock(cbsMutex);
    const auto found = sessions.find(handle);
    return found == sessions.end() ? nullptr : found->second.callback;
}

std::int64_t SonyBridgeState::deviceOf(std::int64_t handle) {
    const std::lock_guard lock(cbsMutex);
    const auto found = sessions.find(handle);
    return found == sessions.end() ? 0 : found->second.device;
}

std::vector<std::int64_t> SonyBridgeState::openHandles() {
    const std::lock_guard lock(cbsMutex);
    std::vector<std::int64_t> handles;
    handles.reserve(sessions.size());
    for (const auto& [handle, session] : sessions)
        handles.push_back(handle);
    return handles;
}

bool SonyBridgeState::isOpen(const std::string& cameraId) {
    const std::lock_guard lock(cbsMutex);
    return std::ranges::any_of(sessions, [&](const auto& entry) { return entry.second.id == cameraId; });
}

void SonyBridgeState::keep(std::int64_t handle, Session session) {
    const std::lock_guard lock(cbsMutex);
    sessions[handle] = std::move(session);
}

void SonyBridgeState::forget(std::int64_t handle) {
    {
        const std::lock_guard lock(cacheMutex);
        memories.erase(handle);
    }
    const std::lock_guard lock(cbsMutex);
    sessions.erase(handle);
}

SonyExposureMemory SonyBridgeState::memoryOf(std::int64_t handle) {
    const std::lock_guard lock(cacheMutex);
    const auto found = memories.find(handle);
    return found == memories.end() ? SonyExposureMemory{} : found->second;
}

void SonyBridgeState::keep(std::int64_t handle, SonyExposureMemory memory) {
    const std::lock_guard lock(cacheMutex);
    memories[handle] = std::move(memory);
}

std::optional<SonyDevice> SonySdk::device(std::int64_t handle) const {
    const std::int64_t number = ready() ? state_.deviceOf(handle) : 0;
    return number == 0 ? std::nullopt : std::optional<SonyDevice>(std::in_place, table(), number, waits());
}

} // namespace zenka::cameras
