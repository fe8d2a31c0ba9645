#pragma once

#include "cameras/CameraControl.h"
#include "exposure/ExposureComp.h"
#include "script/ZenkaScript.h"

#include <optional>
#include <string>

namespace zenka::rig {

/// What a capture asks of a body.
inline cameras::Shot shotOf(const script::Capture& capture) {
    return {.iso = capture.iso,
            .aperture = capture.aperture,
            .shutterSec = capture.shutterSec,
            .bulb = capture.bulb,
            .expComp = capture.expComp};
}

/// A capture as it goes to the camera, and what live compensation did to it.
struct CompensatedCapture {
    script::Capture capture;
    int ev = 0; ///< stops asked for
    std::string note;
    std::optional<exposure::CompResult> result;
};

/// Live exposure compensation. No request can be made yet, so every capture goes out as written.
class ExposureControl {
public:
    CompensatedCapture compensated(const script::Capture& capture) const { return {.capture = capture}; }
};

} // namespace zenka::rig
