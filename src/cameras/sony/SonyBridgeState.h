#pragma once

#include "cameras/sony/CrSDKTable.h"
#include "cameras/sony/SonyExposureStep.h"
#include "cameras/sony/SonyWaits.h"
#include "cameras/sony/ZenkaCallback.h"
#include "ports/SharedLibraries.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// A lock whose waiting ends: a call of a closed library may never come back. (std::timed_mutex would do, but
/// g++ 12's ThreadSanitizer does not see its timed locks.)
class SdkMutex {
public:
    bool tryLockFor(base::Seconds limit);
    void unlock();

private:
    std::mutex mutex_;
    std::condition_variable freed_;
    bool locked_ = false;
};

/// What the bridge holds, one for the process. It is never destroyed, as threads of the SDK may outlive
/// everything else.
///
/// Locks are taken in the order sdkMutex, cacheMutex, cbsMutex, and the last two for a moment only: never
/// across a call of the SDK or a wait. setUpMutex stands by itself.
struct SonyBridgeState {
    static SonyBridgeState& shared();

    /// One session, or one that is about to begin.
    struct Session {
        std::shared_ptr<ZenkaCallback> callback;
        std::int64_t device = 0; ///< the SDK's number; 0 while it begins
        std::string id;          ///< of the camera
    };

    SdkMutex sdkMutex; ///< around every call of the SDK, and what stands next
    std::shared_ptr<const ports::SharedLibrary> library;
    const CrSDKTable* table = nullptr;
    bool initialised = false;
    CrSDKList* enumerated = nullptr;
    std::uint64_t lastHandle = 0; ///< handles are numbered on and never given twice

    std::mutex cacheMutex;
    std::map<std::int64_t, SonyExposureMemory> memories; ///< by handle

    std::mutex cbsMutex;
    std::map<std::int64_t, Session> sessions; ///< by handle, which is also the context of the SDK's events

    std::atomic<std::uint32_t> lastFireErr = 0;
    std::atomic<std::uint32_t> lastCbErr = 0;
    std::atomic<bool> lastHandshakeOK = false;
    std::atomic<std::uint32_t> lastPrioBefore = 0;
    std::atomic<std::uint32_t> lastPrioAfter = 0;
    std::atomic<std::uint32_t> lastExpProgBefore = 0;
    std::atomic<std::uint32_t> lastExpProgAfter = 0;

    void setUp(ports::SharedLibraries* from, std::shared_ptr<const SonyWaits> how);
    std::shared_ptr<const SonyWaits> waits();

    /// Opens the module if that has not been done. Under sdkMutex.
    void loadTable();

    std::shared_ptr<ZenkaCallback> callbackOf(std::int64_t handle);
    std::int64_t deviceOf(std::int64_t handle);
    std::vector<std::int64_t> openHandles();
    bool isOpen(const std::string& cameraId);
    void keep(std::int64_t handle, Session session);
    void forget(std::int64_t handle);

    SonyExposureMemory memoryOf(std::int64_t handle);
    void keep(std::int64_t handle, SonyExposureMemory memory);

private:
    SonyBridgeState() = default;

    std::mutex setUpMutex_;
    ports::SharedLibraries* libraries_ = nullptr;
    std::shared_ptr<const SonyWaits> waits_;
};

/// The SDK in one caller's hands for the life of this object.
class SonySdk {
public:
    /// Long enough for another's connection, which may take over ten seconds.
    static constexpr base::Seconds lockLimit{25};

    explicit SonySdk(base::Seconds limit = lockLimit)
        : state_(SonyBridgeState::shared()), waits_(state_.waits()),
          locked_(state_.sdkMutex.tryLockFor(limit)) {}
    SonySdk(const SonySdk&) = delete;
    SonySdk& operator=(const SonySdk&) = delete;
    ~SonySdk() {
        if (locked_)
            state_.sdkMutex.unlock();
    }

    /// False when another held it to the end of the limit.
    bool locked() const { return locked_; }
    /// It can be called.
    bool ready() const { return locked_ && state_.initialised; }
    /// A session that stands; nothing for an unknown handle and when the SDK cannot be called.
    std::optional<SonyDevice> device(std::int64_t handle) const;

    SonyBridgeState& state() const { return state_; }
    const CrSDKTable& table() const { return *state_.table; }
    const SonyWaits& waits() const { return *waits_; }

private:
    SonyBridgeState& state_;
    const std::shared_ptr<const SonyWaits> waits_;
    const bool locked_;
};

} // namespace zenka::cameras
