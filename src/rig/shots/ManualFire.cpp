#include "rig/shots/ManualFire.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr double patienceSec = 25;
constexpr base::Seconds pauseBetweenAttempts{1.5};

/// Nikon bodies can take up to a minute to hand over control.
bool notReadyYet(const cameras::CameraControl& camera, const cameras::CaptureOutcome& outcome) {
    return !outcome.ok && camera.backend() == "gphoto2" &&
           (base::containsIgnoringCase(outcome.note, "could not trigger capture") ||
            base::containsIgnoringCase(outcome.note, "camera busy"));
}

} // namespace

struct ManualFire::Attempt {
    CameraRoster::Camera camera;
    cameras::Shot shot;
    double deadline = 0; ///< continuous seconds
    cameras::CameraControl::CaptureDone done;
    std::unique_ptr<ServicesOff> servicesOff;
};

ManualFire::ManualFire(const ports::Ports& ports, const CameraRoster& roster, const Transport& transport,
                       FireOutcomes& outcomes, Families families)
    : ports_(ports), roster_(roster), transport_(transport), outcomes_(outcomes),
      families_(std::move(families)) {
}

void ManualFire::fireManual(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                            const cameras::CameraControl::CaptureDone& done) {
    const auto attempt =
        std::make_shared<Attempt>(Attempt{.camera = camera,
                                          .shot = shot,
                                          .deadline = ports_.clock.continuousSeconds() + patienceSec,
                                          .done = done,
                                          .servicesOff = keepServicesOff(*camera)});
    attempts_.push_back(attempt);
    fire(attempt);
}

void ManualFire::fire(const std::shared_ptr<Attempt>& attempt) {
    const CameraRoster::Camera& camera = attempt->camera;
    // A body that is down is not troubled: it may be on its way back.
    if (!camera->connected() || roster_.isDisconnected(camera->id())) {
        finish(attempt, {.ok = false, .note = "dropped, camera disconnected", .responded = true});
        return;
    }
    camera->capture(attempt->shot, lifeline_.guard([this, attempt](const cameras::CaptureOutcome& outcome) {
        if (std::ranges::find(attempts_, attempt) == attempts_.end())
            return; // an answer after the end
        if (!notReadyYet(*attempt->camera, outcome) ||
            ports_.clock.continuousSeconds() >= attempt->deadline) {
            finish(attempt, outcome);
            return;
        }
        outcomes_.setLastFire(attempt->camera->id(), "waiting for camera…");
        ports_.loop.after(pauseBetweenAttempts, lifeline_.guard([this, attempt] {
            if (std::ranges::find(attempts_, attempt) != attempts_.end())
                fire(attempt);
        }));
    }));
}

void ManualFire::finish(const std::shared_ptr<Attempt>& attempt, const cameras::CaptureOutcome& outcome) {
    if (std::erase(attempts_, attempt) == 0)
        return;
    attempt->servicesOff.reset();
    attempt->done(outcome);
}

void ManualFire::followRoster() {
    const auto& cameras = roster_.cameras();
    for (const auto& attempt : std::vector(attempts_)) {
        if (std::ranges::find(cameras, attempt->camera) == cameras.end())
            finish(attempt, {.ok = false, .note = "the camera was removed or connected anew"});
    }
}

std::unique_ptr<ServicesOff> ManualFire::keepServicesOff(const cameras::CameraControl& camera) const {
    // Ending those services severs a session that Canon's own library holds.
    const bool canon = std::ranges::any_of(roster_.cameras(),
                                           [](const auto& each) { return each->backend() == "CanonEDSDK"; });
    const auto family =
        std::ranges::find(families_, camera.backend(), [](const auto& each) { return each->backend(); });
    if (transport_.playing().get() || canon || family == families_.end())
        return nullptr;
    return std::make_unique<ServicesOff>(*family);
}

} // namespace zenka::rig
