#pragma once

#include "analysis/Settings.h"

#include <optional>
#include <vector>

namespace zenka::analysis {

/// The frames taken within so many seconds of an instant. The frames are in order.
FrameRange framesWithin(double seconds, double instant, const std::vector<ExifFrame>& frames);

/// What to add to a capture's offsetSec to get the card's time, seconds, found from the lists themselves: the
/// offset that the beginning of one and the beginning of the other agree on, and under which a sample of the
/// captures finds its frames. Nothing when less than half of it does. Both lists are in order.
std::optional<double> findClockOffset(const std::vector<script::Capture>& captures,
                                      const std::vector<ExifFrame>& frames, MatchRows& rows);

/// The time of the card at which a capture is expected: the offset, and how the clock has drifted from it.
class CardClock {
public:
    /// The frame of each capture is what the drift is measured with; some of them may be wrong.
    CardClock(double offset, const std::vector<script::Capture>& captures,
              const std::vector<ExifFrame>& frames, const std::vector<int>& aligned);

    double at(double offsetSec) const;

private:
    struct Residual {
        double offsetSec;
        double sec;
    };

    double driftAt(double offsetSec) const;

    double offset_;
    std::vector<Residual> residuals_; // ascending by offsetSec
};

} // namespace zenka::analysis
