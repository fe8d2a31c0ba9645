#include "rig/runlog/DropAsymmetry.h"

#include <algorithm>

namespace zenka::rig {

namespace {

constexpr int minFrames = 10; // fewer say nothing of a body
constexpr std::size_t minBodies = 3;
constexpr int minDrops = 15;

double medianDrops(std::vector<BodyTally> bodies) {
    std::ranges::sort(bodies, {}, &BodyTally::dropped);
    const std::size_t upper = bodies.size() / 2;
    const std::size_t lower = (bodies.size() - 1) / 2;
    return (bodies[lower].dropped + bodies[upper].dropped) / 2.0;
}

} // namespace

std::optional<std::string> dropAsymmetryHint(const std::vector<BodyTally>& bodies) {
    std::vector<BodyTally> counted;
    std::ranges::copy_if(bodies, std::back_inserter(counted),
                         [](const BodyTally& body) { return body.ok + body.dropped >= minFrames; });
    if (counted.size() < minBodies)
        return std::nullopt;
    const double median = medianDrops(counted);
    const double threshold = std::max(1.5 * median, median + 12);

    std::string names;
    int flagged = 0;
    for (const BodyTally& body : counted) {
        if (body.dropped < minDrops || body.dropped < threshold)
            continue;
        names += (flagged++ ? " and " : "") + body.label;
    }
    if (flagged == 0)
        return std::nullopt;
    return names +
           " dropped far more frames than the other bodies on the SAME script and settings. That asymmetry "
           "usually means a per-body setting Zenka can't read over USB, most often Long-Exposure NR or "
           "High-ISO NR (they add processing to every frame). Check those on " +
           (flagged == 1 ? names : "those bodies") + ".";
}

} // namespace zenka::rig
