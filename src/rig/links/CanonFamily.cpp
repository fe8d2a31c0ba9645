#include "rig/links/CanonFamily.h"

#include "base/Text.h"
#include "rig/links/UnclaimedSession.h"
#include "rig/shared/PlatformWords.h"
#include "rig/shared/SettingsKeys.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr char nativeDriverOff[] =
    "Canon native driver is OFF (eclipse.canonNativeDriver). Using the universal driver.";
constexpr char noLibrary[] =
    "Canon's library libEDSDK.so is not installed, so the Canon gets the universal driver. Help, Cameras "
    "tells where to put it.";
const std::string unclaimed = "Canon is on USB but the native driver could not claim it (the " +
                              std::string(platformWords::computer) +
                              " grabbed the body first). Most reliable fix: with Zenka already open, unplug "
                              "the Canon, wait a moment, plug it back in, then Detect.";
const std::string linkEnded =
    ": the camera ended the USB link a moment after connecting (the camera stays on when this happens). On "
    "the camera body: turn Wi-Fi OFF (Airplane mode ON is easiest), and set the menu item \"Choose USB "
    "connection app\" to \"Photo Import/Remote Control\" (not \"Video calls/streaming\"). If EOS Webcam "
    "Utility is installed on this " +
    std::string(platformWords::computer) + ", quit it. Then press Detect again.";

constexpr base::Seconds settling{4.0};
constexpr base::Seconds settlingStep{0.5};

} // namespace

bool CanonFamily::nativeDriverOn() {
    bool on = false;
    sdk_.machine().onMain([&] { on = settings_.flag(settingsKeys::canonNativeDriver).value_or(true); });
    return on;
}

std::vector<CanonFamily::Found> CanonFamily::look() {
    std::vector<Found> found = sdk_.enumerate();
    if (found.empty() && sdk_.ready()) {
        sdk_.releaseSDK();
        found = sdk_.enumerate();
    }
    return found;
}

std::vector<FoundBody> CanonFamily::enumerate(const std::vector<FoundBody>&, const Tell& tell) {
    const bool onBus = sdk_.canonUSBPresent();
    if (!nativeDriverOn()) {
        tell(nativeDriverOff);
        report("edsdk_enumerated", {{"usb", onBus ? "1" : "0"}, {"native", "off"}});
        return {};
    }
    if (!onBus)
        return {};
    const std::vector<Found> found = look();
    if (found.empty())
        tellUnclaimed(tell);
    std::vector<FoundBody> bodies;
    bodies.reserve(found.size());
    for (const Found& each : found)
        bodies.push_back({.model = each.model, .port = std::to_string(each.index), .serial = {}, .hub = {}});
    return bodies;
}

CameraFamily::MakeDriver CanonFamily::connect(const FoundBody& body, const Tell& tell) {
    const auto session = sdk_.connect(base::readInteger(body.port).value_or(-1));
    if (session.handle == 0) {
        tellUnclaimed(tell);
        return {};
    }
    auto make = driverOf(session, body.model, session.serial); // closes the session when it is dropped
    if (stays(session.handle))
        return make;
    tell(body.model + linkEnded);
    report("canon_session_died_after_detect", {{"model", body.model}});
    return {};
}

bool CanonFamily::stays(std::int64_t handle) {
    for (base::Seconds passed{0}; passed < settling; passed += settlingStep) {
        sdk_.machine().driver.pause(settlingStep);
        if (sdk_.sessionDead(handle))
            return false;
    }
    return true;
}

void CanonFamily::tellUnclaimed(const Tell& tell) {
    report("edsdk_enumerated", {{"usb", "1"}, {"native", "on"}});
    tell(lastCanonDiag().starts_with("dlopen failed") ? noLibrary : unclaimed);
}

void CanonFamily::report(const std::string& event, cameras::DriverMachine::Fields fields) {
    const std::string diag = sdk_.diag();
    {
        const std::lock_guard lock(mutex_);
        lastCanonDiag_ = diag;
    }
    fields["diag"] = diag;
    cameras::DriverMachine& driver = sdk_.machine().driver;
    driver.loop.post([&driver, event, fields = std::move(fields)] { driver.report(event, fields); });
}

std::map<std::string, std::string> CanonFamily::reportFacts() const {
    std::string diag = lastCanonDiag();
    return diag.empty() ? std::map<std::string, std::string>()
                        : std::map<std::string, std::string>{{"canon_detect", std::move(diag)}};
}

std::string CanonFamily::lastCanonDiag() const {
    const std::lock_guard lock(mutex_);
    return lastCanonDiag_;
}

CameraFamily::MakeDriver CanonFamily::driverOf(const cameras::CanonEDSDK::Session& session,
                                               const std::string& model, const std::string& serial) {
    const int number = ++made_;
    const std::string id =
        "canon-" + (serial.empty() ? std::to_string(number) : serial + "-" + std::to_string(number));
    return [this, id, model, serial,
            held = std::make_shared<UnclaimedSession>(
                session.handle, [&sdk = sdk_](std::int64_t handle) { sdk.close(handle); })] {
        auto camera = std::make_shared<cameras::CanonEDSDKCamera>(
            sdk_, cameras::CanonEDSDKCamera::Body{
                      .id = id, .model = model, .serial = serial, .handle = held->claim()});
        drivers_.push_back(camera);
        return camera;
    };
}

void CanonFamily::closeSessionsOf(const std::vector<DownBody>& down) {
    sdk_.machine().onMain([&] {
        for (const auto& camera : drivers())
            if (std::ranges::count(down, camera->id(), &DownBody::id) > 0)
                camera->teardownSync();
    });
}

std::vector<std::shared_ptr<cameras::CanonEDSDKCamera>> CanonFamily::drivers() {
    std::vector<std::shared_ptr<cameras::CanonEDSDKCamera>> living;
    std::erase_if(drivers_, [&](const auto& driver) {
        auto camera = driver.lock();
        const bool gone = !camera;
        if (!gone)
            living.push_back(std::move(camera));
        return gone;
    });
    return living;
}

std::vector<CameraFamily::Rebound> CanonFamily::rebind(const std::vector<DownBody>& down, const Tell&) {
    std::vector<Rebound> back;
    if (!sdk_.canonUSBPresent())
        return back;
    closeSessionsOf(down);
    std::vector<DownBody> missing = down;
    for (const Found& found : sdk_.enumerate()) {
        if (std::ranges::count(missing, found.model, &DownBody::model) == 0)
            continue;
        const auto session = sdk_.connect(found.index);
        if (session.handle == 0)
            continue;
        const auto wanted = std::ranges::find(missing, session.serial, &DownBody::serial);
        if (session.serial.empty() || wanted == missing.end()) {
            sdk_.close(session.handle);
            continue;
        }
        back.push_back({.id = wanted->id, .make = driverOf(session, found.model, session.serial)});
        missing.erase(wanted);
    }
    return back;
}

std::vector<std::string> CanonFamily::goneFromBus(const std::vector<HeldBody>& held) {
    std::vector<std::string> gone;
    const bool none = !sdk_.canonUSBPresent();
    sdk_.machine().onMain([&] {
        for (const auto& camera : drivers())
            if (std::ranges::count(held, camera->id(), &HeldBody::id) > 0 && (none || camera->sessionDead()))
                gone.push_back(camera->id());
    });
    return gone;
}

} // namespace zenka::rig
