#include "rig/fire/FireScan.h"

#include <algorithm>
#include <map>

namespace zenka::rig {

namespace FireScan {

namespace {

constexpr double leapSec = 3.0;
constexpr double onTimeSec = 1.0;    // after a leap, frames this close behind the clock are on time
constexpr double worthItSec = 120.0; // a late frame older than this is not worth firing

} // namespace

Result scan(std::span<const double> offsets, std::size_t cursor, double lastScanClock, double clock) {
    Result result;
    std::size_t i = std::min(cursor, offsets.size());
    result.jump = clock - lastScanClock;
    if (result.jump > leapSec) {
        for (; i < offsets.size() && offsets[i] <= clock - onTimeSec; ++i)
            result.skipped.push_back(i);
        if (!result.skipped.empty() && clock - offsets[result.skipped.back()] <= worthItSec) {
            result.late = result.skipped.back();
            result.skipped.pop_back();
        }
    }
    for (; i < offsets.size() && offsets[i] <= clock; ++i)
        result.due.push_back(i);
    result.nextCursor = i;
    return result;
}

} // namespace FireScan

std::vector<double> fireStaggers(std::span<const std::optional<int>> buses, double busStep, double maxStep,
                                 double flatNudge) {
    std::vector<double> staggers;
    staggers.reserve(buses.size());
    std::map<int, int> before;
    double flat = 0;
    for (const std::optional<int>& bus : buses) {
        if (bus) {
            staggers.push_back(std::min(maxStep, busStep * before[*bus]++));
        } else {
            staggers.push_back(flat);
            flat += flatNudge;
        }
    }
    return staggers;
}

} // namespace zenka::rig
