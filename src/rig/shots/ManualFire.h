#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/fire/FireOutcomes.h"
#include "rig/links/CameraFamily.h"
#include "rig/run/Transport.h"

#include <memory>
#include <vector>

namespace zenka::rig {

/// A shot outside the script. Main thread.
class ManualFire {
public:
    using Families = std::vector<std::shared_ptr<CameraFamily>>;

    ManualFire(const ports::Ports& ports, const CameraRoster& roster, const Transport& transport,
               FireOutcomes& outcomes, Families families);

    /// Fires once. A body behind gphoto2 that has not handed control over yet is tried again for up to
    /// 25 s; everything else completes as it comes. Completes exactly once, also when the body leaves the
    /// roster meanwhile. While nothing plays, the desktop's camera services are kept off the body's family.
    void fireManual(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                    const cameras::CameraControl::CaptureDone& done);

    /// Keeps the desktop's camera services off a body's family for as long as the answer lives; empty where
    /// they are to be left alone.
    std::unique_ptr<ServicesOff> keepServicesOff(const cameras::CameraControl& camera) const;

    /// The roster has changed: ends the attempts on bodies that it no longer holds.
    void followRoster();

private:
    struct Attempt;

    void fire(const std::shared_ptr<Attempt>& attempt);
    void finish(const std::shared_ptr<Attempt>& attempt, const cameras::CaptureOutcome& outcome);

    const ports::Ports& ports_;
    const CameraRoster& roster_;
    const Transport& transport_;
    FireOutcomes& outcomes_;
    const Families families_;
    std::vector<std::shared_ptr<Attempt>> attempts_; // under way
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
