#pragma once

#include "eclipse/Besselian.h"

#include <optional>
#include <vector>

namespace zenka::eclipse {

/// The eclipse as seen at one instant from one place.
struct ViewSample {
    double t = 0;        ///< seconds from the reference instant
    double coverage = 0; ///< obscuration, 0 to 1
    double alt = 0;      ///< the Sun's altitude, degrees
    double az = 0;       ///< the Sun's azimuth, degrees
    double sep = 0;      ///< distance of the discs' centres, solar radii
    double moonR = 0;    ///< the Moon's radius, solar radii
    double ang = 0;      ///< direction of the Moon's centre from the Sun's on the observer's sky, degrees
    double mag = 0;      ///< magnitude

    friend bool operator==(const ViewSample&, const ViewSample&) = default;
};

/// 241 samples evenly spaced over startHours to endHours, both included.
std::vector<ViewSample> sampleCurve(const Eclipse& eclipse, const Observer& observer, double startHours,
                                    double endHours);

/// The curve at a time in seconds, interpolated; its first or last sample outside of it; nothing for an
/// empty curve.
std::optional<ViewSample> sampleAt(const std::vector<ViewSample>& curve, double t);

} // namespace zenka::eclipse
