#pragma once

#include "rig/shots/FrameSeries.h"
#include "rig/shots/GapProfile.h"

#include <functional>
#include <optional>

namespace zenka::rig {

/// Fires one long burst on a body at a cadence, to see whether its buffer fills. Main thread.
class SustainedBurst {
public:
    struct Wish {
        double shutterSec = 0; ///< of long frames; 0 for short ones
        double targetSec = 0;  ///< cadence; 0 for one that suits
        std::optional<double> measuredFloorSec;
    };

    explicit SustainedBurst(const ports::Ports& ports) : series_(ports) {}

    /// How many frames a burst has, of long and of short ones.
    static constexpr int longFrames = 20;
    static constexpr int shortFrames = 40;

    /// The cadence that a burst is fired at.
    static double targetCadence(const Wish& wish);

    /// `changed` hears of each change of burst().
    void start(const CameraRoster::Camera& camera, const Wish& wish, const std::function<void()>& changed,
               std::function<void(GapProfileEnd end)> done);
    /// Ends it after the frame that is under way.
    void stop();
    /// Ends it at once and without a word.
    void abandon() { series_.abandon(); }

    const GapBurst& burst() const { return burst_; }

private:
    void take(const FrameSeries::Frames& frames);

    FrameSeries series_;
    GapBurst burst_;
    bool stopping_ = false;
};

} // namespace zenka::rig
