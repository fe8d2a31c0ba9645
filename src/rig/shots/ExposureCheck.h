#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/BodyModes.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/run/Transport.h"
#include "rig/shared/RigLog.h"
#include "rig/shots/ManualFire.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>

namespace zenka::rig {

/// A field test of what a shutter list really sends to a body: fires a frame for each of some shutters and
/// writes down what was sent, to be held against the frames on the card. Main thread.
class ExposureCheck {
public:
    ExposureCheck(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                  const Transport& transport, const BodyModes& modes, ManualFire& manualFire,
                  BodiesInUse& inUse);

    /// On the first body behind the universal driver. Not in a run; a second call while one is under way does
    /// nothing.
    void runExposureCheck();
    const base::Published<bool>& running() const { return running_; }

private:
    struct Check;

    void begin(const std::shared_ptr<Check>& check, const cameras::ExposureChoices& choices);
    void fireNext(const std::shared_ptr<Check>& check);
    void fired(const std::shared_ptr<Check>& check, const cameras::CaptureOutcome& outcome);
    void finish(const std::shared_ptr<Check>& check);

    const ports::Ports& ports_;
    RigLog& log_;
    const CameraRoster& roster_;
    const Transport& transport_;
    const BodyModes& modes_;
    ManualFire& manualFire_;
    BodiesInUse& inUse_;
    base::Published<bool> running_{false};
    std::shared_ptr<ports::WorkQueue> queue_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
