#pragma once

#include "eclipse/Framing.h"
#include "script/Bursts.h"

#include <optional>

namespace zenka::rig {

/// A circle around the Sun in the frame over a burst.
struct CircleInFrame {
    bool atFirst = true; ///< all of it is in the frame at the burst's first frame
    bool atLast = true;
    std::optional<double> leavesAfterSec; ///< when it was in at first and is not at last

    friend bool operator==(const CircleInFrame&, const CircleInFrame&) = default;
};

/// What becomes of the Sun on a sensor that stands still over a burst.
struct BurstDrift {
    std::optional<eclipse::Framing::FramePoint> first; ///< nothing where it is behind the camera
    std::optional<eclipse::Framing::FramePoint> last;
    double pixels = 0;   ///< the way between the two; 0 where the sensor's pixels are not known
    double ofHeight = 0; ///< the same as a part of the frame's height as the camera is held
    double trailPx = 0;  ///< of the longest exposure
    CircleInFrame sun;
    CircleInFrame corona;
};

/// For a camera that was aimed at the Sun at an instant, hours, and has not been touched since.
BurstDrift burstDrift(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
                      const eclipse::Framing::Optics& optics, const script::Burst& burst, double aimedHours,
                      double coronaRadii);

} // namespace zenka::rig
