#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/CameraRoster.h"
#include "rig/FireOutcomes.h"

namespace zenka::rig {

/// A test shot outside the script. Main thread.
class ManualFire {
public:
    ManualFire(const ports::Ports& ports, FireOutcomes& outcomes) : ports_(ports), outcomes_(outcomes) {}

    /// Fires once. A body behind gphoto2 that has not handed control over yet is tried again for up to
    /// 25 s; everything else completes as it comes.
    void fireManual(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                    const cameras::CameraControl::CaptureDone& done);

private:
    void attempt(const CameraRoster::Camera& camera, const cameras::Shot& shot, double deadline,
                 const cameras::CameraControl::CaptureDone& done);

    const ports::Ports& ports_;
    FireOutcomes& outcomes_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
