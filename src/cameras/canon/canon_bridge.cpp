#include "cameras/canon/canon_bridge.h"

#include "cameras/canon/CanonValues.h"
#include "cameras/canon/Edsdk.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <set>
#include <string_view>
#include <thread>

namespace {

using namespace zenka;
using namespace zenka::cameras;
using namespace zenka::cameras::edsdk;

using Handle = std::int64_t;

constexpr char libraryName[] = "libEDSDK.so";
constexpr char notInitialized[] = "EDSDK terminated (not initialized)";
constexpr base::Seconds fireRound{0.020};
constexpr int roundsBetweenAttempts = 5;
constexpr int mostAttempts = 7;
constexpr base::Seconds serialPause{0.040};
constexpr int serialTries = 3;

/// What was last confirmed on a session, by the SDK's codes.
struct CanonExpoCache {
    std::optional<std::uint32_t> isoCode;
    std::optional<std::uint32_t> avCode;
    std::optional<std::uint32_t> tvCode;
    std::optional<std::uint32_t> expCompCode;
};

struct Bridge {
    ports::SharedLibraries* libraries = nullptr;
    std::shared_ptr<const ports::SharedLibrary> library; // null until all symbols are found
    Calls sdk;
    std::string diag = "not run";
    bool init = false;
    Ref list = nullptr;                   // the one live list
    std::map<Handle, std::int32_t> index; // of the open sessions: the slot that each came from
    std::map<Handle, CanonExpoCache> expo;
    std::set<Handle> dead; // sessions whose body has shut down
    std::uint32_t lastFireErr = 0;
    std::uint32_t timerExtensions = 0;

    bool ready() const { return library && init; }
    void pump() const { sdk.EdsGetEvent(); }
};

Bridge& bridge() {
    static Bridge one;
    return one;
}

Ref refOf(Handle handle) {
    return reinterpret_cast<Ref>(static_cast<std::intptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}

Handle handleOf(Ref ref) {
    return static_cast<Handle>(reinterpret_cast<std::intptr_t>(ref));
}

void copyOut(std::string_view text, char* buffer, std::int32_t size) {
    if (!buffer || size < 1)
        return;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

/// Resolves the calls in order; the name of the first that is missing, null for none.
const char* resolve(const ports::SharedLibrary& library, Calls& sdk) {
    const char* missing = nullptr;
    const auto find = [&](auto& call, const char* name) {
        call = library.function<std::remove_pointer_t<std::remove_reference_t<decltype(call)>>>(name);
        if (!call && !missing)
            missing = name;
    };
    find(sdk.EdsInitializeSDK, "EdsInitializeSDK");
    find(sdk.EdsTerminateSDK, "EdsTerminateSDK");
    find(sdk.EdsGetCameraList, "EdsGetCameraList");
    find(sdk.EdsGetChildCount, "EdsGetChildCount");
    find(sdk.EdsGetChildAtIndex, "EdsGetChildAtIndex");
    find(sdk.EdsGetDeviceInfo, "EdsGetDeviceInfo");
    find(sdk.EdsOpenSession, "EdsOpenSession");
    find(sdk.EdsCloseSession, "EdsCloseSession");
    find(sdk.EdsSetPropertyData, "EdsSetPropertyData");
    find(sdk.EdsGetPropertyData, "EdsGetPropertyData");
    find(sdk.EdsSendCommand, "EdsSendCommand");
    find(sdk.EdsRelease, "EdsRelease");
    find(sdk.EdsGetEvent, "EdsGetEvent");
    const char* needed = missing;
    find(sdk.EdsSetCameraStateEventHandler, "EdsSetCameraStateEventHandler");
    return needed;
}

/// Called by the SDK within a pump.
Error canonStateEvent(std::uint32_t event, std::uint32_t, void* context) {
    Bridge& own = bridge();
    if (event == stateEventShutdown) {
        own.dead.insert(handleOf(context));
        own.diag = "camera reported SHUTDOWN (unplugged / powered off / auto power off)";
    } else if (event == stateEventWillSoonShutDown) {
        own.sdk.EdsSendCommand(context, commandExtendShutDownTimer, 0);
        ++own.timerExtensions;
    }
    return edsdk::ok;
}

Error saveToCard(Ref camera) {
    return bridge().sdk.EdsSetPropertyData(camera, propSaveTo, 0, sizeof saveToCamera, &saveToCamera);
}

/// A session that has just been opened; gives what came of the order to save to the card.
Error begin(Ref camera, std::int32_t slot) {
    Bridge& own = bridge();
    const Error saved = saveToCard(camera);
    own.pump();
    const Handle handle = handleOf(camera);
    own.expo.erase(handle);
    own.index[handle] = slot;
    own.dead.erase(handle);
    if (own.sdk.EdsSetCameraStateEventHandler)
        own.sdk.EdsSetCameraStateEventHandler(camera, stateEventAll, canonStateEvent, camera);
    return saved;
}

void dropList() {
    Bridge& own = bridge();
    if (own.list)
        own.sdk.EdsRelease(own.list);
    own.list = nullptr;
}

/// Takes a new list of bodies; "" or the SDK's error.
Error takeList() {
    Bridge& own = bridge();
    dropList();
    const Error error = own.sdk.EdsGetCameraList(&own.list);
    if (error != edsdk::ok)
        own.list = nullptr;
    return error;
}

template <typename... Values>
std::int32_t fail(const absl::FormatSpec<Values...>& format, const Values&... values) {
    bridge().diag = absl::StrFormat(format, values...);
    return 0;
}

/// Opens a session with the body of a slot; null, and why behind a prefix, where that fails.
Ref openSlot(std::int32_t slot, const char* prefix) {
    const Bridge& own = bridge();
    Ref camera = nullptr;
    if (const Error error = own.sdk.EdsGetChildAtIndex(own.list, slot, &camera);
        error != edsdk::ok || !camera) {
        fail("%sGetChildAtIndex err=0x%x", prefix, error);
        return nullptr;
    }
    if (const Error error = own.sdk.EdsOpenSession(camera); error != edsdk::ok) {
        own.sdk.EdsRelease(camera);
        fail("%sOpenSession err=0x%x", prefix, error);
        return nullptr;
    }
    return camera;
}

bool send(Ref camera, std::uint32_t property, std::optional<std::uint32_t>& confirmed, std::uint32_t code) {
    if (confirmed == code)
        return true;
    if (bridge().sdk.EdsSetPropertyData(camera, property, 0, sizeof code, &code) != edsdk::ok)
        return false;
    confirmed = code;
    return true;
}

/// Presses the shutter button whole, without autofocus; where that is refused, the older command decides.
Error attempt(Ref camera) {
    const Calls& sdk = bridge().sdk;
    const Error pressed = sdk.EdsSendCommand(camera, commandPressShutterButton, shutterCompletelyNonAF);
    sdk.EdsSendCommand(camera, commandPressShutterButton, shutterOff);
    return pressed == edsdk::ok ? edsdk::ok : sdk.EdsSendCommand(camera, commandTakePicture, 0);
}

bool worthAnotherAttempt(Error error) {
    return error == deviceBusy || error == notReady || error == tryAgain;
}

template <typename Steps>
void takeAll(Steps& steps) {
    for (;;) {
        const auto wait = steps.step();
        if (!wait)
            return;
        std::this_thread::sleep_for(*wait);
    }
}

} // namespace

void zenka_canon_use(ports::SharedLibraries& libraries) {
    bridge() = Bridge{};
    bridge().libraries = &libraries;
}

std::int32_t zenka_canon_init() {
    Bridge& own = bridge();
    if (!own.library) {
        if (!own.libraries)
            return 0;
        const auto opened = own.libraries->open(libraryName);
        if (!opened.library)
            return fail("dlopen failed: %s", opened.fault.empty() ? "?" : opened.fault);
        if (const char* missing = resolve(*opened.library, own.sdk))
            return fail("dlsym %s failed", missing);
        own.library = opened.library;
    }
    if (own.init)
        return 1;
    if (const Error error = own.sdk.EdsInitializeSDK(); error != edsdk::ok)
        return fail("EdsInitializeSDK err=0x%x", error);
    own.init = true;
    own.diag = "init ok";
    return 1;
}

std::int32_t zenka_canon_enumerate(char* names, char* serials, std::int32_t maxCameras, std::int32_t stride) {
    Bridge& own = bridge();
    if (!own.library)
        return 0;
    if (!own.init)
        return fail(notInitialized);
    // A new list would move the bodies to other slots, from under the sessions that are open.
    const bool keep = !own.index.empty() && own.list;
    if (!keep) {
        if (const Error error = takeList(); error != edsdk::ok || !own.list)
            return fail("GetCameraList err=0x%x", error);
    }
    std::uint32_t count = 0;
    if (own.sdk.EdsGetChildCount(own.list, &count) != edsdk::ok)
        return fail("GetChildCount failed");
    own.diag = keep ? absl::StrFormat("enumerated %d camera(s) (kept list: %d session(s) open)", count,
                                      own.index.size())
                    : absl::StrFormat("enumerated %d camera(s)", count);
    const auto slots =
        static_cast<std::int32_t>(std::min(count, static_cast<std::uint32_t>(std::max(maxCameras, 0))));
    for (std::int32_t slot = 0; slot < slots; ++slot) {
        Ref camera = nullptr;
        DeviceInfo info;
        if (own.sdk.EdsGetChildAtIndex(own.list, slot, &camera) == edsdk::ok && camera) {
            own.sdk.EdsGetDeviceInfo(camera, &info);
            own.sdk.EdsRelease(camera);
        }
        const auto& text = info.deviceDescription;
        const std::ptrdiff_t at = std::ptrdiff_t{slot} * stride;
        copyOut({text.data(), strnlen(text.data(), text.size())}, names + at, stride);
        copyOut("", serials + at, stride);
    }
    return slots;
}

std::int64_t zenka_canon_connect(std::int32_t slot) {
    Bridge& own = bridge();
    if (slot < 0 || !own.library || !own.list)
        return 0;
    if (!own.init)
        return fail(notInitialized);
    const Ref camera = openSlot(slot, "");
    if (!camera)
        return 0;
    const Error saved = begin(camera, slot);
    own.diag = saved == edsdk::ok
                   ? "connected (session open, save-to-card set)"
                   : absl::StrFormat("connected (session open, SaveTo REFUSED err=0x%x)", saved);
    return handleOf(camera);
}

std::int32_t zenka_canon_slot_in_use(std::int32_t slot) {
    return std::ranges::any_of(bridge().index, [&](const auto& session) { return session.second == slot; });
}

std::int64_t zenka_canon_reopen(std::int64_t handle) {
    Bridge& own = bridge();
    if (!own.ready() || handle == 0)
        return 0;
    const auto known = own.index.find(handle);
    if (known == own.index.end())
        return fail("reopen: unknown handle");
    const std::int32_t slot = known->second;
    own.index.erase(known);
    own.expo.erase(handle);
    own.sdk.EdsCloseSession(refOf(handle));
    own.sdk.EdsRelease(refOf(handle));
    if (!own.index.empty())
        return fail("reopen: skipped, %d other live session(s) share the camera list", own.index.size());
    if (const Error error = takeList(); error != edsdk::ok || !own.list)
        return fail("reopen: GetCameraList err=0x%x", error);
    std::uint32_t count = 0;
    own.sdk.EdsGetChildCount(own.list, &count);
    if (count <= static_cast<std::uint32_t>(slot))
        return fail("reopen: camera gone (slot %d of %d)", slot, count);
    const Ref camera = openSlot(slot, "reopen: ");
    if (!camera)
        return 0;
    begin(camera, slot);
    own.diag = absl::StrFormat("reopen: session rebuilt on slot %d", slot);
    return handleOf(camera);
}

void zenka_canon_diag(char* buffer, std::int32_t size) {
    copyOut(bridge().diag, buffer, size);
}

std::int32_t zenka_canon_set_exposure(std::int64_t handle, std::int32_t iso, double aperture,
                                      double shutterSec, double expComp) {
    Bridge& own = bridge();
    if (handle == 0 || !own.ready())
        return 0;
    const Ref camera = refOf(handle);
    CanonExpoCache& cache = own.expo[handle];
    bool all = true; // one that is refused does not keep the others back
    if (iso >= 1)
        all &= send(camera, propISOSpeed, cache.isoCode, CanonValues::isoCode(iso));
    if (aperture > 0)
        all &= send(camera, propAv, cache.avCode, CanonValues::apertureCode(aperture));
    if (shutterSec > 0)
        all &= send(camera, propTv, cache.tvCode, CanonValues::shutterCode(shutterSec));
    if (expComp != 0) // 0 is not sent: a body keeps the last compensation that a script has used
        all &= send(camera, propExposureCompensation, cache.expCompCode, CanonValues::expCompCode(expComp));
    own.pump();
    return all;
}

std::int32_t zenka_canon_fire(std::int64_t handle) {
    CanonFire fire(handle);
    takeAll(fire);
    return fire.fired();
}

std::uint32_t zenka_canon_last_fire_err() {
    return bridge().lastFireErr;
}

std::int32_t zenka_canon_session_dead(std::int64_t handle) {
    Bridge& own = bridge();
    if (!own.ready())
        return 0;
    own.pump();
    return own.dead.contains(handle);
}

std::int32_t zenka_canon_serial(std::int64_t handle, char* buffer, std::int32_t size) {
    CanonSerial serial(handle);
    takeAll(serial);
    copyOut(serial.text(), buffer, size);
    return !serial.text().empty();
}

void zenka_canon_reset_expo_cache(std::int64_t handle) {
    bridge().expo.erase(handle);
}

void zenka_canon_disconnect(std::int64_t handle) {
    Bridge& own = bridge();
    own.expo.erase(handle);
    own.dead.erase(handle);
    if (own.index.erase(handle) == 0 || !own.init)
        return;
    own.sdk.EdsCloseSession(refOf(handle));
    own.sdk.EdsRelease(refOf(handle));
}

void zenka_canon_release() {
    Bridge& own = bridge();
    if (!own.ready())
        return;
    dropList();
    own.sdk.EdsTerminateSDK();
    own.init = false;
    own.index.clear();
    own.expo.clear();
    own.dead.clear();
}

namespace zenka::cameras {

std::optional<base::Seconds> CanonFire::step() {
    Bridge& own = bridge();
    if (handle_ == 0 || !own.library)
        return std::nullopt; // the last error stays that of the last fire
    if (!own.init) {
        over(zenka_canon_err_terminated);
        return std::nullopt;
    }
    own.pump();
    if (roundsLeft_ > 0 && --roundsLeft_ > 0)
        return fireRound;
    if (own.dead.contains(handle_)) {
        over(zenka_canon_err_session_dead);
        return std::nullopt;
    }
    lastError_ = attempt(refOf(handle_));
    if (worthAnotherAttempt(lastError_) && ++attempts_ < mostAttempts) {
        roundsLeft_ = roundsBetweenAttempts;
        return fireRound;
    }
    own.pump();
    over(lastError_);
    return std::nullopt;
}

void CanonFire::over(std::uint32_t error) {
    bridge().lastFireErr = error;
    fired_ = error == edsdk::ok;
}

std::optional<base::Seconds> CanonSerial::step() {
    const Bridge& own = bridge();
    if (handle_ == 0 || !own.ready() || tries_ == serialTries)
        return std::nullopt;
    std::array<char, 256> text{};
    const Error error =
        own.sdk.EdsGetPropertyData(refOf(handle_), propBodyID, 0, text.size() - 1, text.data());
    if (error == edsdk::ok)
        text_.assign(text.data(), strnlen(text.data(), text.size()));
    if (!text_.empty())
        return std::nullopt;
    own.pump();
    ++tries_;
    return serialPause;
}

} // namespace zenka::cameras
