#include "rig/links/SonyFamily.h"

#include "cameras/sony/sony_bridge.h"
#include "cameras/usb/SonyNames.h"
#include "rig/links/UnclaimedSession.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::rig {

namespace {

constexpr base::Seconds afterSonyRelease{0.5};
constexpr base::Seconds beforeSecondLook{2.0};
constexpr base::Seconds afterRebind{0.3};

constexpr char initFailed[] =
    "Sony CrSDK failed to initialize (the native SDK never loaded). Running on the universal fallback.";
constexpr char sawNone[] =
    "Native Sony SDK loaded but saw 0 cameras, the body is on USB but the SDK couldn't open it. Quit any "
    "Sony app (Imaging Edge / Remote), confirm USB mode is Remote Shooting, unplug/replug with Zenka open, "
    "then Detect.";
constexpr char connectFailed[] =
    "Native Sony SDK saw the camera but couldn't open a control session (connect failed). Unplug/replug with "
    "Zenka open and Detect again. Running on the universal fallback meanwhile.";
constexpr char driveDialAdvice[] =
    " Also set the drive dial to Single: on the universal driver I can't check it, and a continuous dial "
    "sprays a burst per press.";
constexpr char stuck[] =
    "⚠️ The Sony connection layer is stuck (a camera scan never returned). Unplug and "
    "replug the Sony USB "
    "cables, or power-cycle the bodies; this state cannot be cleared in software.";

} // namespace

SonyFamily::SonyFamily(Machine machine) : machine_(std::move(machine)) {
    cameras::zenka_sony_set_up(&machine_.libraries, machine_.waits);
}

SonyFamily::~SonyFamily() {
    cameras::zenka_sony_release();
    cameras::zenka_sony_set_up(nullptr);
}

std::vector<SonyFamily::Found> SonyFamily::lookTwice() {
    auto found = cameras::SonyCRSDK::enumerate();
    if (found.empty() && !cameras::SonyCRSDK::enumerateWedged()) {
        machine_.driver.pause(beforeSecondLook);
        found = cameras::SonyCRSDK::enumerate();
    }
    return found;
}

std::vector<FoundBody> SonyFamily::enumerate(const std::vector<FoundBody>& listed, const Tell&) {
    namespace SonyNames = cameras::SonyNames;
    matched_.clear();
    if (cameras::zenka_sony_init() == 0) {
        sonyFallbackReason_ = initFailed;
        noteDiag("init failed");
        return listed;
    }
    sonyFallbackReason_ = sawNone;
    cameras::zenka_sony_disconnect_all();
    machine_.driver.pause(afterSonyRelease);
    std::vector<Found> found = lookTwice();
    noteDiag(absl::StrFormat("enumerated %d camera(s)", found.size()));
    for (const FoundBody& body : listed) {
        const auto match =
            std::ranges::find(found, SonyNames::sonyModelKey(body.model), [](const Found& candidate) {
                return SonyNames::sonyModelKey(candidate.model);
            });
        if (match == found.end())
            continue;
        matched_.emplace_back(body, *match);
        found.erase(match);
    }
    return listed;
}

CameraFamily::MakeDriver SonyFamily::connect(const FoundBody& body, const Tell&) {
    const auto match = std::ranges::find(matched_, body, &std::pair<FoundBody, Found>::first);
    if (match == matched_.end())
        return {};
    const Found found = match->second;
    const std::int64_t handle = cameras::zenka_sony_connect(found.index, found.serial.c_str());
    if (handle == 0) {
        sonyFallbackReason_ = connectFailed;
        noteDiag(absl::StrFormat(
            "connect of %s failed, last callback error %s", found.model,
            cameras::SonyCRSDK::callbackErrorName(cameras::zenka_sony_last_callback_error())));
        return {};
    }
    return driverOf(handle, body.model, found.serial);
}

CameraFamily::MakeDriver SonyFamily::driverOf(std::int64_t handle, const std::string& model,
                                              const std::string& serial) {
    using namespace cameras;
    SonyCRSDKCamera::Body body{.id = absl::StrFormat("crsdk-%s-%d", serial, ++made_),
                               .model = model,
                               .serial = serial,
                               .handle = 0, // until the driver is made
                               .driveModeBurst = zenka_sony_drive_is_burst(handle) != 0,
                               .handshakeOK = zenka_sony_last_handshake_ok() != 0,
                               .firmwareVersion = SonyCRSDK::firmware(handle),
                               .choices = SonyCRSDK::exposureChoices(handle)};
    const DriverMachine::Fields fields{
        {"model", model},
        {"fw", body.firmwareVersion},
        {"state", SonyCRSDK::stateDump(handle)},
        {"prio", absl::StrFormat("%d>%d", zenka_sony_priority_before(), zenka_sony_priority_after())},
        {"ep",
         absl::StrFormat("%d>%d", zenka_sony_exposure_program_before(), zenka_sony_exposure_program_after())},
        {"hs", body.handshakeOK ? "1" : "0"},
        {"shutters", absl::StrFormat("%d", body.choices.shutter.size())}};
    // Closing waits.
    const auto session = std::make_shared<UnclaimedSession>(
        handle, [&queues = machine_.driver.queues](std::int64_t unclaimed) {
            queues.background([unclaimed] { zenka_sony_disconnect(unclaimed); });
        });
    return [this, body, fields, session]() mutable -> Camera {
        machine_.driver.report("sony_connected", fields);
        body.handle = session->claim();
        auto camera = std::make_shared<SonyCRSDKCamera>(machine_.driver, machine_.rivals, body);
        const std::lock_guard lock(mutex_);
        links_[body.id] = camera->link();
        return camera;
    };
}

std::vector<std::string> SonyFamily::goneFromBus(const std::vector<HeldBody>& held) {
    using namespace cameras;
    std::vector<std::string> gone;
    const std::lock_guard lock(mutex_);
    std::erase_if(links_, [](const auto& link) { return link.second.expired(); });
    for (const HeldBody& body : held) {
        const auto known = links_.find(body.id);
        const auto link = known == links_.end() ? nullptr : known->second.lock();
        // One that has no session just now is being mended by its driver.
        const std::int64_t handle = link ? link->handle() : 0;
        if (handle != 0 && zenka_sony_is_connected(handle) == 0 && zenka_sony_reconnecting(handle) == 0)
            gone.push_back(body.id);
    }
    return gone;
}

std::string SonyFamily::explainFallback() const {
    return sonyFallbackReason_ + driveDialAdvice;
}

void SonyFamily::release(const Camera& camera) {
    camera->disconnect();
    camera->suspend();
}

std::vector<CameraFamily::Rebound> SonyFamily::rebind(const std::vector<DownBody>& down, const Tell&) {
    std::vector<Rebound> back;
    for (const Found& found : cameras::SonyCRSDK::enumerate()) {
        const auto wanted = std::ranges::find(down, found.serial, &DownBody::serial);
        if (wanted == down.end() || found.serial.empty())
            continue;
        const std::int64_t handle = cameras::zenka_sony_connect(found.index, found.serial.c_str());
        if (handle == 0)
            continue;
        back.push_back({.id = wanted->id, .make = driverOf(handle, wanted->model, wanted->serial)});
        machine_.driver.pause(afterRebind);
    }
    return back;
}

void SonyFamily::noteDiag(std::string diag) {
    const std::lock_guard lock(mutex_);
    lastSonyDiag_ = std::move(diag);
}

std::string SonyFamily::lastSonyDiag() const {
    const std::lock_guard lock(mutex_);
    return lastSonyDiag_;
}

std::map<std::string, std::string> SonyFamily::reportFacts() const {
    std::string diag = lastSonyDiag();
    if (diag.empty())
        return {}; // it has looked for none
    if (const auto fire = cameras::zenka_sony_last_fire_error(); fire != 0)
        diag += absl::StrFormat(" fire=0x%04x", fire);
    if (const auto code = cameras::zenka_sony_last_callback_error(); code != 0)
        diag += absl::StrFormat(" cb=0x%04x (%s)", code, cameras::SonyCRSDK::callbackErrorName(code));
    return {{"sony_detect", std::move(diag)}};
}

std::string SonyFamily::stuckAdvice() const {
    return cameras::SonyCRSDK::enumerateWedged() ? stuck : "";
}

} // namespace zenka::rig
