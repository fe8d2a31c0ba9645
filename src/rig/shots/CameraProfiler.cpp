#include "rig/shots/CameraProfiler.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

/// The slowest driver gives up after a minute and a half.
constexpr base::Seconds patience{120};

} // namespace

CameraProfiler::CameraProfiler(const ports::Ports& ports, const CameraRoster& roster,
                               const Transport& transport, const LibraryDesk& library, BodiesInUse& inUse)
    : ports_(ports), roster_(roster), transport_(transport), library_(library), inUse_(inUse) {
}

std::string CameraProfiler::runCameraProfile(const std::string& camID) {
    if (cameraProfileRunning_.get())
        return "A camera is being read. Wait for its answer.";
    if (transport_.runActive())
        return "A run is on, and reading the camera could cost it frames. Read it when the run is over.";
    const auto& cameras = roster_.cameras();
    const auto found = std::ranges::find(cameras, camID, [](const auto& each) { return each->id(); });
    if (found == cameras.end() || !(*found)->connected() || roster_.isDisconnected(camID))
        return "This camera is not connected.";
    if (inUse_.has(camID))
        return "This camera is being measured or fired. Read it when that is over.";

    camera_ = *found;
    use_ = inUse_.take(camID, BodiesInUse::Task::reading);
    const CameraRoster::Camera& camera = camera_;
    CameraProfileResult result{.model = camera->model(), .serial = camera->serial()};
    if (const auto entry = library_.find(result.serial))
        result.lens = entry->lens;
    cameraProfileResult_.set(std::nullopt);
    cameraProfileRunning_.set(true);
    const int reading = ++reading_;
    ports_.loop.after(patience, lifeline_.guard([this, reading, result] {
        if (reading == reading_)
            finish(result, "The camera did not answer in time.");
    }));
    camera->readExposureChoices(
        lifeline_.guard([this, reading, result](const cameras::ExposureChoices& choices) {
            if (reading == reading_)
                take(result, choices);
        }));
    return {};
}

void CameraProfiler::take(CameraProfileResult result, const cameras::ExposureChoices& choices) {
    std::string error = camera_->lastProfileError();
    if (choices.empty() && error.empty())
        error = camera_->isReal() ? "The camera returned no value lists (its driver does not expose them)."
                                  : "A simulated camera has no settings to read.";
    result.choices = choices;
    finish(std::move(result), error);
}

void CameraProfiler::finish(CameraProfileResult result, const std::string& error) {
    result.error = error;
    ++reading_;
    camera_.reset();
    use_ = {};
    cameraProfileRunning_.set(false);
    cameraProfileResult_.set(std::move(result));
}

} // namespace zenka::rig
