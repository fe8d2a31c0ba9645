#include "analysis/CardClock.h"

#include "analysis/Alignment.h"

#include <algorithm>
#include <iterator>

namespace zenka::analysis {

namespace {

constexpr std::size_t candidatesOfASide = 6;
constexpr std::size_t sampleSize = 60;
constexpr double sampleReachSec = 15.0;
constexpr std::ptrdiff_t driftNeighbours = 4; // to either side

/// How many captures of a sample find a frame under an offset.
int score(double offset, std::size_t step, const std::vector<script::Capture>& captures,
          const std::vector<ExifFrame>& frames, MatchRows& rows) {
    int found = 0;
    for (std::size_t i = 0; i < captures.size(); i += step) {
        const FrameRange range = framesWithin(sampleReachSec, offset + captures[i].offsetSec, frames);
        const FrameSet& row = rows.of(i);
        found += range.contains(FrameSet::firstInBoth(row, row, range)) ? 1 : 0;
    }
    return found;
}

} // namespace

FrameRange framesWithin(double seconds, double instant, const std::vector<ExifFrame>& frames) {
    // By the same difference that a look at each frame would take, so that rounding changes nothing.
    const auto first = std::ranges::partition_point(
        frames, [&](const ExifFrame& frame) { return frame.date.epochSec - instant < -seconds; });
    const auto last = std::ranges::partition_point(
        frames, [&](const ExifFrame& frame) { return frame.date.epochSec - instant <= seconds; });
    return {static_cast<std::size_t>(first - frames.begin()),
            static_cast<std::size_t>(last - frames.begin())};
}

std::optional<double> findClockOffset(const std::vector<script::Capture>& captures,
                                      const std::vector<ExifFrame>& frames, MatchRows& rows) {
    const std::size_t step = std::max<std::size_t>(captures.size() / sampleSize, 1);
    const std::size_t samples = (captures.size() + step - 1) / step;
    std::optional<double> best;
    int bestScore = 0;
    for (std::size_t i = 0; i < std::min(candidatesOfASide, captures.size()); ++i) {
        for (std::size_t j = 0; j < std::min(candidatesOfASide, frames.size()); ++j) {
            if (!rows.of(i).contains(j))
                continue;
            const double offset = frames[j].date.epochSec - captures[i].offsetSec;
            const int found = score(offset, step, captures, frames, rows);
            if (best && found <= bestScore)
                continue;
            best = offset;
            bestScore = found;
        }
    }
    if (best && 2 * static_cast<std::size_t>(bestScore) >= samples)
        return best;
    return std::nullopt;
}

CardClock::CardClock(double offset, const std::vector<script::Capture>& captures,
                     const std::vector<ExifFrame>& frames, const std::vector<int>& aligned)
    : offset_(offset) {
    for (std::size_t i = 0; i < captures.size(); ++i) {
        if (aligned[i] == noFrame)
            continue;
        const double offsetSec = captures[i].offsetSec;
        const double landed = frames[static_cast<std::size_t>(aligned[i])].date.epochSec;
        residuals_.push_back({offsetSec, landed - (offset + offsetSec)});
    }
}

double CardClock::at(double offsetSec) const {
    return offset_ + offsetSec + driftAt(offsetSec);
}

double CardClock::driftAt(double offsetSec) const {
    if (residuals_.empty())
        return 0;
    const auto after = std::ranges::lower_bound(residuals_, offsetSec, {}, &Residual::offsetSec);
    const auto first = after - std::min(driftNeighbours, after - residuals_.begin());
    const auto last = after + std::min(driftNeighbours, residuals_.end() - after);
    std::vector<double> near;
    near.reserve(2 * driftNeighbours);
    std::ranges::transform(first, last, std::back_inserter(near), &Residual::sec);
    std::ranges::sort(near);
    return near[near.size() / 2]; // the median: a few false pairs do not bend the line
}

} // namespace zenka::analysis
