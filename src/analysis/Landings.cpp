#include "analysis/Landings.h"

#include "analysis/CardClock.h"

#include <cmath>

namespace zenka::analysis {

namespace {

/// A frame further from where its capture is expected is another shot.
constexpr double reachSec = 45.0;

/// The free frame of a range that is nearest to an instant, the earlier one of equals; the range's end for
/// none.
std::size_t nearestFree(const FrameSet& free, FrameRange range, double instant,
                        const std::vector<ExifFrame>& frames) {
    std::size_t best = range.end;
    double bestSec = 0;
    for (FrameRange rest = range;; ++rest.begin) {
        rest.begin = FrameSet::firstInBoth(free, free, rest);
        if (rest.begin >= rest.end)
            return best;
        const double sec = std::abs(frames[rest.begin].date.epochSec - instant);
        if (best != range.end && sec > bestSec)
            return best; // they only get further off
        if (best == range.end || sec < bestSec) {
            best = rest.begin;
            bestSec = sec;
        }
    }
}

} // namespace

std::vector<Landing> findLandings(const std::vector<script::Capture>& captures,
                                  const std::vector<ExifFrame>& frames) {
    std::vector<Landing> landings(captures.size());
    MatchRows rows(captures, frames);
    const auto take = [&](const std::vector<int>& aligned) {
        for (std::size_t i = 0; i < captures.size(); ++i)
            landings[i].frame = aligned[i];
    };
    const std::vector<int> bySettings = align(rows, {});
    const std::optional<double> offset = findClockOffset(captures, frames, rows);
    if (!offset) {
        take(bySettings);
        return landings;
    }

    const CardClock clock(*offset, captures, frames, bySettings);
    std::vector<FrameRange> near;
    near.reserve(captures.size());
    for (const script::Capture& capture : captures)
        near.push_back(framesWithin(reachSec, clock.at(capture.offsetSec), frames));
    take(align(rows, near));

    FrameSet free(frames.size(), true);
    for (const Landing& landing : landings)
        if (landing.any())
            free.erase(static_cast<std::size_t>(landing.frame));
    for (std::size_t i = 0; i < captures.size(); ++i) {
        if (landings[i].any())
            continue;
        const std::size_t frame = nearestFree(free, near[i], clock.at(captures[i].offsetSec), frames);
        if (!near[i].contains(frame))
            continue;
        landings[i] = {.frame = static_cast<int>(frame), .rightSettings = false};
        free.erase(frame);
    }
    return landings;
}

} // namespace zenka::analysis
