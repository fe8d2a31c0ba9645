#include "cameras/MockCamera.h"

#include <utility>

namespace zenka::cameras {

MockCamera::MockCamera(std::string id, std::string model)
    : id_(std::move(id)), model_(std::move(model)), profile_(CameraProfiles::forModel(model_)) {
}

void MockCamera::capture(const Shot&, CaptureDone done) {
    ++tick_;
    ++shotCount_;
    const int jitterPercent = (tick_ % 25 * 37) % 25 - 12;
    done({.ok = true, .latencyMs = profile_.triggerMs * (1 + jitterPercent / 100.0), .responded = true});
}

} // namespace zenka::cameras
