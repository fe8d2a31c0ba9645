#include "cameras/sony/sony_bridge.h"

#include "cameras/sony/SonyBridgeState.h"
#include "cameras/sony/SonyConnect.h"
#include "cameras/sony/SonyProperties.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

// NOLINTBEGIN(readability-identifier-naming)

namespace zenka::cameras {

namespace {

constexpr std::uint8_t enumerateSec = 3;
constexpr base::Seconds buttonDown{0.035};
constexpr std::uint32_t releaseCommand = 0;
constexpr int firmwareTries = 4;
constexpr base::Seconds betweenFirmwareTries{0.3};
constexpr base::Seconds lockLimitAtEnd{3};
constexpr double ladderFractionsBelowSec = 0.34;

constexpr std::uint32_t nothingToFire = 65535;
constexpr std::uint32_t invalidHandle = 32773;
constexpr std::uint32_t sdkBusy = 33291;

SonyBridgeState& bridge() {
    return SonyBridgeState::shared();
}

/// Copies what there is room for; 0 when that is nothing.
int copyText(std::string_view text, char* buffer, int size) {
    if (!buffer || size < 1)
        return 0;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return length > 0 ? 1 : 0;
}

/// The index of the body with an id, or the one given where there is none; -1 for none.
int indexOf(const SonySdk& sdk, int index, const char* id) {
    const CrSDKList* list = sdk.state().enumerated;
    const int count = list ? static_cast<int>(sdk.table().cameraCount(list)) : 0;
    if (!id)
        return index < count ? index : -1;
    for (int at = 0; at < count; ++at) {
        CrSDKCamera camera{};
        sdk.table().describe(list, static_cast<std::uint32_t>(at), &camera);
        if (SonyConnect::idOf(camera) == id)
            return at;
    }
    return -1;
}

std::uint32_t fired(std::int64_t handle) {
    if (handle == 0)
        return nothingToFire;
    const SonySdk sdk;
    if (!sdk.locked())
        return sdkBusy;
    const auto device = sdk.device(handle);
    if (!device)
        return invalidHandle;
    const std::uint32_t down = sdk.table().sendCommand(device->number(), releaseCommand, 1);
    sdk.waits().pause(buttonDown);
    const std::uint32_t up = sdk.table().sendCommand(device->number(), releaseCommand, 0);
    return down != 0 ? down : up;
}

} // namespace

void zenka_sony_set_up(ports::SharedLibraries* libraries, std::shared_ptr<const SonyWaits> waits) {
    bridge().setUp(libraries, std::move(waits));
}

int zenka_sony_init() {
    const SonySdk sdk;
    if (!sdk.locked())
        return 0;
    SonyBridgeState& state = sdk.state();
    state.loadTable();
    if (!state.initialised && state.table)
        state.initialised = state.table->init() != 0;
    return state.initialised ? 1 : 0;
}

std::uint32_t zenka_sony_sdk_version() {
    const SonySdk sdk;
    if (!sdk.locked())
        return 0;
    sdk.state().loadTable();
    return sdk.state().table ? sdk.table().sdkVersion() : 0;
}

int zenka_sony_enumerate(char* names, char* ids, int maxCameras, int stride) {
    const SonySdk sdk;
    if (!sdk.ready() || !names || !ids || stride < 1)
        return 0;
    CrSDKList*& list = sdk.state().enumerated;
    if (list)
        sdk.table().releaseList(std::exchange(list, nullptr));
    if (sdk.table().enumerate(&list, enumerateSec) != 0 || !list) {
        list = nullptr;
        return 0;
    }
    const int count = std::min(static_cast<int>(sdk.table().cameraCount(list)), std::max(maxCameras, 0));
    for (int index = 0; index < count; ++index) {
        CrSDKCamera camera{};
        sdk.table().describe(list, static_cast<std::uint32_t>(index), &camera);
        const auto offset = static_cast<std::size_t>(index) * static_cast<std::size_t>(stride);
        copyText(camera.model ? camera.model : "", names + offset, stride);
        copyText(SonyConnect::idOf(camera), ids + offset, stride);
    }
    return count;
}

std::int64_t zenka_sony_connect(int index, const char* id) {
    if (index < 0)
        return 0;
    const SonySdk sdk;
    const int at = sdk.ready() ? indexOf(sdk, index, id) : -1;
    return at < 0 ? 0 : SonyConnect::connect(sdk, static_cast<std::uint32_t>(at));
}

int zenka_sony_set_exposure(std::int64_t handle, int iso, double aperture, double shutterSec,
                            double expComp) {
    const SonySdk sdk;
    const auto device = sdk.device(handle);
    if (!device)
        return 0;
    SonyExposureMemory memory = sdk.state().memoryOf(handle);
    const bool taken = setSonyExposure(
        *device, {.iso = iso, .aperture = aperture, .shutterSec = shutterSec, .expComp = expComp}, memory);
    sdk.state().keep(handle, std::move(memory));
    return taken ? 1 : 0;
}

int zenka_sony_fire(std::int64_t handle, std::uint32_t* error) {
    const std::uint32_t result = fired(handle);
    bridge().lastFireErr = result;
    if (error)
        *error = result;
    return result == 0 ? 1 : 0;
}

int zenka_sony_shutter_ladder(std::int64_t handle, char* buffer, int size) {
    const SonySdk sdk;
    const auto device = sdk.device(handle);
    if (!device)
        return 0;
    SonyExposureMemory memory = sdk.state().memoryOf(handle);
    device->completeCandidates(memory.candidates);
    std::string ladder;
    for (const std::int64_t code : memory.candidates.shutter) {
        const auto seconds = SonyExposure::shutterSeconds(code);
        if (!seconds)
            continue;
        const std::string step =
            *seconds < ladderFractionsBelowSec
                ? absl::StrFormat("%s1/%d", ladder.empty() ? "" : ",", std::llround(1 / *seconds))
                : absl::StrFormat("%s%g", ladder.empty() ? "" : ",", *seconds);
        if (static_cast<int>(ladder.size() + step.size()) >= size)
            break; // no half a value
        ladder += step;
    }
    sdk.state().keep(handle, std::move(memory));
    return copyText(ladder, buffer, size);
}

int zenka_sony_drive_is_burst(std::int64_t handle) {
    const SonySdk sdk;
    const auto device = sdk.device(handle);
    const auto mode = device ? device->readProperty(SonyProperties::driveMode) : std::nullopt;
    const std::uint64_t kind = (mode.value_or(0) >> 16U) & 0xFFFFU;
    return kind == 1 || kind == 4 ? 1 : 0;
}

int zenka_sony_firmware(std::int64_t handle, char* buffer, int size) {
    for (int tries = 0; tries < firmwareTries; ++tries) {
        if (tries > 0) // the lock is another's meanwhile
            bridge().waits()->pause(betweenFirmwareTries);
        const SonySdk sdk;
        const auto device = sdk.device(handle);
        if (!device)
            return 0;
        const std::string version = device->readText(SonyProperties::firmwareVersion);
        if (!version.empty())
            return copyText(version, buffer, size);
    }
    return 0;
}

int zenka_sony_state_dump(std::int64_t handle, char* buffer, int size) {
    const SonySdk sdk;
    const auto device = sdk.device(handle);
    return device ? copyText(device->stateDump(), buffer, size) : 0;
}

void zenka_sony_reset_expo_cache(std::int64_t handle) {
    const SonySdk sdk; // not between the two halves of a shot's setting
    if (!sdk.device(handle))
        return;
    SonyExposureMemory memory = sdk.state().memoryOf(handle);
    memory.cache = {};
    sdk.state().keep(handle, std::move(memory));
}

int zenka_sony_health_ping(std::int64_t handle) {
    const SonySdk sdk;
    const auto device = sdk.device(handle);
    std::uint32_t count = 0;
    return device && sdk.table().queueCount(device->number(), &count) == 0 ? 1 : 0;
}

void zenka_sony_disconnect(std::int64_t handle) {
    if (handle == 0)
        return;
    const SonySdk sdk;
    SonyConnect::disconnect(sdk, handle);
}

void zenka_sony_disconnect_all() {
    for (const std::int64_t handle : bridge().openHandles())
        zenka_sony_disconnect(handle);
}

void zenka_sony_release() {
    const SonySdk sdk(lockLimitAtEnd);
    if (!sdk.locked())
        return;
    SonyBridgeState& state = sdk.state();
    if (state.initialised) {
        if (state.enumerated)
            sdk.table().releaseList(std::exchange(state.enumerated, nullptr));
        sdk.table().release();
        state.initialised = false;
    }
    for (const std::int64_t handle : state.openHandles())
        state.forget(handle);
    // The next one to set up may have another module.
    state.table = nullptr;
    state.library.reset();
}

std::uint32_t zenka_sony_last_fire_error() {
    return bridge().lastFireErr;
}

std::uint32_t zenka_sony_last_callback_error() {
    return bridge().lastCbErr;
}

double zenka_sony_last_sent_shutter(std::int64_t handle) {
    return bridge().memoryOf(handle).cache.lastSentShutter;
}

int zenka_sony_is_connected(std::int64_t handle) {
    const auto callback = bridge().callbackOf(handle);
    return callback && callback->connected() ? 1 : 0;
}

int zenka_sony_reconnecting(std::int64_t handle) {
    const auto callback = bridge().callbackOf(handle);
    return callback && callback->reconnecting() ? 1 : 0;
}

int zenka_sony_captured_count(std::int64_t handle) {
    const auto callback = bridge().callbackOf(handle);
    return callback ? callback->capturedCount() : -1;
}

int zenka_sony_last_op_ng(std::int64_t handle) {
    const auto callback = bridge().callbackOf(handle);
    return callback ? callback->lastOpNg() : 0;
}

int zenka_sony_last_handshake_ok() {
    return bridge().lastHandshakeOK ? 1 : 0;
}

std::uint32_t zenka_sony_priority_before() {
    return bridge().lastPrioBefore;
}

std::uint32_t zenka_sony_priority_after() {
    return bridge().lastPrioAfter;
}

std::uint32_t zenka_sony_exposure_program_before() {
    return bridge().lastExpProgBefore;
}

std::uint32_t zenka_sony_exposure_program_after() {
    return bridge().lastExpProgAfter;
}

} // namespace zenka::cameras

// NOLINTEND(readability-identifier-naming)
