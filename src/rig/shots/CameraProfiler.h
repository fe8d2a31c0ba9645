#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "cameras/ExposureChoices.h"
#include "ports/Ports.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/LibraryDesk.h"
#include "rig/run/Transport.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// What a body is and offers.
struct CameraProfileResult {
    std::string model;
    std::string serial;
    std::optional<std::string> lens; ///< that the operator's library knows on this body
    cameras::ExposureChoices choices;
    std::string error; ///< why nothing was read, a sentence; empty when something was

    friend bool operator==(const CameraProfileResult&, const CameraProfileResult&) = default;
};

/// Reads what a body offers, one body at a time. Main thread; it never waits.
class CameraProfiler {
public:
    CameraProfiler(const ports::Ports& ports, const CameraRoster& roster, const Transport& transport,
                   const LibraryDesk& library, BodiesInUse& inUse);

    /// Starts. When it cannot, the answer is the reason, a sentence; else it is empty.
    std::string runCameraProfile(const std::string& camID);

    const base::Published<bool>& cameraProfileRunning() const { return cameraProfileRunning_; }
    const base::Published<std::optional<CameraProfileResult>>& cameraProfileResult() const {
        return cameraProfileResult_;
    }

private:
    void take(CameraProfileResult result, const cameras::ExposureChoices& choices);
    void finish(CameraProfileResult result, const std::string& error);

    const ports::Ports& ports_;
    const CameraRoster& roster_;
    const Transport& transport_;
    const LibraryDesk& library_;
    BodiesInUse& inUse_;
    CameraRoster::Camera camera_; // that is being read
    BodiesInUse::Use use_;        // of it
    int reading_ = 0;             // what comes of an earlier one is passed over
    base::Published<bool> cameraProfileRunning_{false};
    base::Published<std::optional<CameraProfileResult>> cameraProfileResult_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
