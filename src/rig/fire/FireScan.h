#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace zenka::rig {

/// Which frames of a schedule the clock has reached.
namespace FireScan {

struct Result {
    std::vector<std::size_t> due;     ///< indices to fire now
    std::vector<std::size_t> skipped; ///< indices given up
    std::optional<std::size_t> late;  ///< one index to fire late
    double jump = 0;                  ///< how far the clock came since the last scan, seconds
    std::size_t nextCursor = 0;       ///< first index not handled yet

    friend bool operator==(const Result&, const Result&) = default;
};

/// Scans ascending offsets from a cursor. Where the clock has leapt by more than 3 s (sleep, stall),
/// frames more than a second behind it are given up, but for the newest of them if it is at most two
/// minutes old: a late frame is worth one try, a burst of stale ones would jam the bodies.
Result scan(std::span<const double> offsets, std::size_t cursor, double lastScanClock, double clock);

} // namespace FireScan

/// Delays in seconds that keep the frames due on one tick apart. Entries on one USB bus, whose bodies
/// cannot take overlapping traffic, go out busStep apart, at most maxStep late, each bus in a lane of
/// its own; entries without a bus flatNudge apart.
std::vector<double> fireStaggers(std::span<const std::optional<int>> buses, double busStep, double maxStep,
                                 double flatNudge);

} // namespace zenka::rig
