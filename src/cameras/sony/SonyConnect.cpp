#include "cameras/sony/SonyConnect.h"

#include <absl/strings/str_format.h>

#include <span>
#include <utility>

namespace zenka::cameras::SonyConnect {

namespace {

constexpr base::Seconds connectLimit{5.0};
constexpr base::Seconds beforeSecondTry{0.8};
constexpr base::Seconds disconnectLimit{2.0};

template <typename Act>
void withCallback(std::uint64_t context, Act act) noexcept {
    if (const auto callback = SonyBridgeState::shared().callbackOf(static_cast<std::int64_t>(context)))
        act(*callback);
}

/// The events of a session find it by its handle, so one that comes late finds nothing.
CrSDKEvents eventsOf(std::int64_t handle) {
    return {.context = static_cast<std::uint64_t>(handle),
            .connected =
                [](std::uint64_t context) {
                    withCallback(context, [](ZenkaCallback& callback) { callback.onConnected(); });
                },
            .disconnected =
                [](std::uint64_t context, std::uint32_t) {
                    withCallback(context, [](ZenkaCallback& callback) { callback.onDisconnected(); });
                },
            .warning =
                [](std::uint64_t context, std::uint32_t code) {
                    withCallback(context, [code](ZenkaCallback& callback) { callback.onWarning(code); });
                },
            .warningExt =
                [](std::uint64_t context, std::uint32_t code, std::int32_t result) {
                    withCallback(context, [code, result](ZenkaCallback& callback) {
                        callback.onWarningExt(code, result);
                    });
                },
            .error = [](std::uint64_t, std::uint32_t code) { SonyBridgeState::shared().lastCbErr = code; }};
}

enum class Begun { stands, refused, timedOut };

Begun begin(const SonySdk& sdk, std::uint32_t index, const std::string& id, std::int64_t handle) {
    SonyBridgeState& state = sdk.state();
    const auto callback = std::make_shared<ZenkaCallback>();
    state.keep(handle, {.callback = callback, .device = 0, .id = id});
    const CrSDKEvents events = eventsOf(handle);
    std::int64_t device = 0;
    if (sdk.table().connect(state.enumerated, index, &events, &device) != 0 || device == 0) {
        state.forget(handle);
        return Begun::refused;
    }
    if (!callback->waitConnected(true, sdk.waits(), connectLimit)) {
        sdk.table().disconnect(device);
        sdk.table().releaseDevice(device);
        state.forget(handle);
        return Begun::timedOut;
    }
    state.keep(handle, {.callback = callback, .device = device, .id = id});
    return Begun::stands;
}

std::int64_t newHandle(SonyBridgeState& state) {
    return static_cast<std::int64_t>(++state.lastHandle);
}

} // namespace

std::string idOf(const CrSDKCamera& camera) {
    std::string text;
    if (camera.id)
        for (const std::uint8_t byte : std::span(camera.id, camera.idSize))
            text += absl::StrFormat("%02x", byte);
    return text;
}

std::int64_t connect(const SonySdk& sdk, std::uint32_t index) {
    SonyBridgeState& state = sdk.state();
    CrSDKCamera camera{};
    sdk.table().describe(state.enumerated, index, &camera);
    const std::string id = idOf(camera);
    if (!id.empty() && state.isOpen(id))
        return 0;
    std::int64_t handle = newHandle(state);
    Begun begun = begin(sdk, index, id, handle);
    if (begun == Begun::timedOut) {
        state.lastHandshakeOK = false;
        sdk.waits().pause(beforeSecondTry);
        handle = newHandle(state); // the first one's events may still be on their way
        begun = begin(sdk, index, id, handle);
    }
    state.lastHandshakeOK = begun == Begun::stands;
    if (begun != Begun::stands)
        return 0;
    state.lastCbErr = 0;
    const auto device = sdk.device(handle);
    if (!device)
        return 0;
    const SonyDevice::Handshake seen = device->takeControl();
    state.lastPrioBefore = seen.prioBefore;
    state.lastPrioAfter = seen.prioAfter;
    state.lastExpProgBefore = seen.expProgBefore;
    state.lastExpProgAfter = seen.expProgAfter;
    SonyExposureMemory fresh;
    device->completeCandidates(fresh.candidates);
    state.keep(handle, std::move(fresh));
    return handle;
}

void disconnect(const SonySdk& sdk, std::int64_t handle) {
    const auto device = sdk.device(handle);
    if (!device)
        return;
    const auto callback = sdk.state().callbackOf(handle);
    sdk.table().disconnect(device->number());
    if (callback)
        callback->waitConnected(false, sdk.waits(), disconnectLimit);
    sdk.table().releaseDevice(device->number());
    sdk.state().forget(handle);
}

} // namespace zenka::cameras::SonyConnect
