#include "rig/ManualFire.h"

#include "base/Text.h"

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

void ManualFire::fireManual(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                            const cameras::CameraControl::CaptureDone& done) {
    attempt(camera, shot, ports_.clock.continuousSeconds() + patienceSec, done);
}

void ManualFire::attempt(const CameraRoster::Camera& camera, const cameras::Shot& shot, double deadline,
                         const cameras::CameraControl::CaptureDone& done) {
    camera->capture(
        shot, lifeline_.guard([this, camera, shot, deadline, done](const cameras::CaptureOutcome& outcome) {
            if (!notReadyYet(*camera, outcome) || ports_.clock.continuousSeconds() >= deadline) {
                done(outcome);
                return;
            }
            outcomes_.setLastFire(camera->id(), "waiting for camera…");
            ports_.loop.after(pauseBetweenAttempts, lifeline_.guard([this, camera, shot, deadline, done] {
                attempt(camera, shot, deadline, done);
            }));
        }));
}

} // namespace zenka::rig
