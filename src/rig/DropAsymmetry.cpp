#include "rig/DropAsymmetry.h"

#include <algorithm>

namespace zenka::rig {

namespace {

constexpr int minFrames = 10; // fewer say nothing of a body
constexpr std::size_t minBodies = 3;
constexpr int minDrops = 15;

} // namespace

std::optional<std::string> dropAsymmetryHint(const std::vector<BodyTally>& bodies) {
    std::vector<BodyTally> counted;
    std::ranges::copy_if(bodies, std::back_inserter(counted),
                         [](const BodyTally& body) { return body.ok + body.dropped >= minFrames; });
    if (counted.size() < minBodies)
        return std::nullopt;
    const double fewest = std::ranges::min(counted, {}, &BodyTally::dropped).dropped;
    const double threshold = std::max(1.5 * fewest, fewest + 12);

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
