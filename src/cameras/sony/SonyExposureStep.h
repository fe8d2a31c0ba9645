#pragma once

#include "cameras/sony/SonyDevice.h"

#include <cstdint>

namespace zenka::cameras {

/// The exposure of one shot as the bridge is asked for it.
struct SonyExposureRequest {
    std::int32_t iso = 0;   ///< below 1 stays as it is
    double aperture = 0;    ///< f-number; 0 or less stays as it is
    double shutterSec = -1; ///< above 0 a time, 0 bulb, below 0 stays as it is
    double expComp = 0;     ///< stops
};

/// What is remembered of a session from one shot to the next.
struct SonyExposureMemory {
    SonyExpoCache cache;
    SonyCandidates candidates;
    bool evEverWritten = false; ///< a compensation other than 0 has been on this body
};

/// Sends what differs from what the body has, each setting snapped to one that the body offers. One that it
/// refuses twice does not stop the others, and is sent again with the next shot; false then.
bool setSonyExposure(const SonyDevice& device, const SonyExposureRequest& request,
                     SonyExposureMemory& memory);

} // namespace zenka::cameras
