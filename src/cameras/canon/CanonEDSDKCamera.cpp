#include "cameras/canon/CanonEDSDKCamera.h"

#include "cameras/CameraProfiles.h"
#include "cameras/canon/CanonErrors.h"
#include "cameras/canon/Edsdk.h"
#include "cameras/canon/canon_bridge.h"

#include <absl/strings/str_format.h>

#include <optional>
#include <utility>

namespace zenka::cameras {

namespace {

constexpr int mostReopens = 3;
constexpr std::size_t mostReportedCodes = 5;

} // namespace

struct CanonEDSDKCamera::Shooting {
    Shot shot;
    CaptureDone done;
    double begunAt = 0;                           // continuous seconds
    CanonFire fire;                               // the attempt that is under way
    std::optional<DriverMachine::Fields> rebuilt; // the report of a rebuild, until the second attempt is over
};

CanonEDSDKCamera::CanonEDSDKCamera(CanonEDSDK& sdk, Body body)
    : sdk_(sdk), body_(std::move(body)),
      minIntervalSec_(ShotProfiles::forModel(body_.model).safeIntervalSec) {
}

CanonEDSDKCamera::~CanonEDSDKCamera() {
    teardownSync();
}

void CanonEDSDKCamera::teardownSync() {
    connected_ = false;
    if (shooting_)
        finish(false, "the camera was let go", true);
    if (std::exchange(released_, true) || body_.handle == 0)
        return;
    zenka_canon_disconnect(std::exchange(body_.handle, 0));
}

bool CanonEDSDKCamera::sessionDead() {
    return body_.handle != 0 && sdk_.sessionDead(body_.handle);
}

void CanonEDSDKCamera::capture(const Shot& shot, CaptureDone done) {
    if (shooting_ || released_) {
        done({.note = released_ ? "dropped, the camera was let go" : "dropped, camera busy",
              .responded = true});
        return;
    }
    shooting_ =
        std::make_unique<Shooting>(Shooting{.shot = shot,
                                            .done = std::move(done),
                                            .begunAt = sdk_.machine().driver.clock.continuousSeconds(),
                                            .fire = CanonFire(body_.handle),
                                            .rebuilt = std::nullopt});
    attempt();
}

void CanonEDSDKCamera::attempt() {
    if (std::exchange(forceFullExposureNextFrame_, false))
        zenka_canon_reset_expo_cache(body_.handle);
    const Shot& shot = shooting_->shot;
    // A frame at a slightly wrong setting is worth more than no frame.
    zenka_canon_set_exposure(body_.handle, shot.iso, shot.aperture, shot.shutterSec, shot.expComp);
    shooting_->fire = CanonFire(body_.handle);
    advance();
}

void CanonEDSDKCamera::advance() {
    if (!shooting_)
        return; // it was let go in the pause
    if (const auto wait = shooting_->fire.step())
        sdk_.machine().driver.loop.after(*wait, lifeline_.guard([this] { advance(); }));
    else
        attempted();
}

void CanonEDSDKCamera::attempted() {
    const bool fired = shooting_->fire.fired();
    if (auto& rebuilt = shooting_->rebuilt) {
        (*rebuilt)["recovered"] = fired ? "yes" : "no";
        sdk_.machine().driver.report("error", *rebuilt);
    }
    if (fired) {
        ++shotCount_;
        finish(true, "", true);
        return;
    }
    const std::uint32_t code = zenka_canon_last_fire_err();
    if (code == zenka_canon_err_session_dead)
        connected_ = false;
    // Once a shot: a second attempt that fails is the shot's failure.
    if (code == edsdk::invalidHandle && !shooting_->rebuilt && reopenCount_ < mostReopens && rebuild())
        return;
    reportFireError(code);
    finish(false,
           "EDSDK capture failed: " + std::string(canonErrorName(code)) + absl::StrFormat(" (0x%x)", code),
           false);
}

bool CanonEDSDKCamera::rebuild() {
    ++reopenCount_;
    body_.handle = sdk_.reopen(body_.handle);
    connected_ = body_.handle != 0;
    DriverMachine::Fields fields{{"kind", "canon_reopen"},
                                 {"model", body_.model},
                                 {"attempt", std::to_string(reopenCount_)},
                                 {"diag", sdk_.diag()}};
    if (!connected_) {
        fields["recovered"] = "session-rebuild-failed";
        sdk_.machine().driver.report("error", fields);
        return false;
    }
    shooting_->rebuilt = std::move(fields);
    attempt();
    return true;
}

void CanonEDSDKCamera::finish(bool ok, std::string note, bool responded) {
    const std::unique_ptr<Shooting> ended = std::move(shooting_);
    const double elapsed = sdk_.machine().driver.clock.continuousSeconds() - ended->begunAt;
    ended->done({.ok = ok, .latencyMs = elapsed * 1000, .note = std::move(note), .responded = responded});
}

void CanonEDSDKCamera::reportFireError(std::uint32_t code) {
    if (reportedFireCodes_.size() >= mostReportedCodes || !reportedFireCodes_.insert(code).second)
        return;
    DriverMachine::Fields fields{{"kind", "canon_fire"},
                                 {"model", body_.model},
                                 {"code", absl::StrFormat("0x%04x", code)},
                                 {"name", std::string(canonErrorName(code))},
                                 {"shots", std::to_string(shotCount_)},
                                 {"diag", sdk_.diag()}};
    // The processes are looked through where nobody waits for it.
    DriverMachine& driver = sdk_.machine().driver;
    driver.queues.background([&driver, rivals = sdk_.machine().rivals, fields = std::move(fields)]() mutable {
        rivals.tell(fields);
        driver.loop.post([&driver, fields = std::move(fields)] { driver.report("error", fields); });
    });
}

} // namespace zenka::cameras
