#include "analysis/RunAnalysis.h"

#include "analysis/RunTallies.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <compare>
#include <limits>
#include <utility>

namespace zenka::analysis::RunAnalysis {

namespace {

constexpr double runGapSec = 300.0;

void sortByDate(std::vector<ExifFrame>& frames) {
    // A total order, also where a date is no number.
    std::ranges::stable_sort(frames, [](const ExifFrame& a, const ExifFrame& b) {
        return std::is_lt(std::strong_order(a.date.epochSec, b.date.epochSec));
    });
}

/// Whole milliseconds, as "%.3f" rounds them: by the exact value, a half to the even one.
double milliseconds(double sec) {
    const double product = sec * 1000;
    const double lost = std::fma(sec, 1000, -product);
    const double below = std::floor(product);
    if (product - below == 0.5 && lost != 0)
        return lost > 0 ? below + 1 : below;
    return std::nearbyint(product);
}

} // namespace

int timeKey(double offsetSec) {
    constexpr double most = std::numeric_limits<int>::max(); // 248 days; no run is that long
    return static_cast<int>(std::clamp(std::round(milliseconds(offsetSec) / 10), -most, most));
}

std::vector<std::vector<ExifFrame>> segments(std::vector<ExifFrame> frames) {
    sortByDate(frames);
    std::vector<std::vector<ExifFrame>> runs;
    for (ExifFrame& frame : frames) {
        if (runs.empty() || (frame.date - runs.back().back().date).count() > runGapSec)
            runs.emplace_back();
        runs.back().push_back(std::move(frame));
    }
    return runs;
}

std::size_t nearestRun(const std::vector<std::vector<ExifFrame>>& runs, int expected) {
    const auto distance = [&](std::size_t run) { return std::abs(std::ssize(runs[run]) - expected); };
    std::size_t nearest = 0;
    for (std::size_t run = 1; run < runs.size(); ++run) {
        if (distance(run) <= distance(nearest)) // each run ends later than the one before it
            nearest = run;
    }
    return nearest;
}

std::vector<ExifFrame> bestSegment(const std::vector<ExifFrame>& frames, int expected) {
    auto runs = segments(frames);
    return runs.empty() ? std::vector<ExifFrame>() : std::move(runs[nearestRun(runs, expected)]);
}

std::string shutterText(double sec) {
    if (!(sec > 0) || !std::isfinite(sec))
        return "-";
    if (sec >= 1)
        return sec == std::floor(sec) ? absl::StrFormat("%.0fs", sec) : absl::StrFormat("%.1fs", sec);
    const double reciprocal = 1 / sec;
    const double whole = std::round(reciprocal);
    if (whole >= 2 && std::abs(reciprocal - whole) / reciprocal < 0.02)
        return absl::StrFormat("1/%.0f", whole);
    return absl::StrFormat("%gs", sec);
}

AnalysisResult compare(std::vector<script::Capture> expected, std::vector<ExifFrame> actual,
                       const Names& names, const std::optional<SoftwareOK>& softwareOK,
                       const std::optional<std::string>& runLogName) {
    AnalysisResult result{.sdName = names.sdName,
                          .scriptName = names.scriptName,
                          .camera = names.camera,
                          .expectedTotal = static_cast<int>(expected.size()),
                          .actualTotal = static_cast<int>(actual.size()),
                          .runLogName = runLogName};
    std::erase_if(actual, [](const ExifFrame& frame) { return !std::isfinite(frame.date.epochSec); });
    sortByDate(actual);
    std::ranges::stable_sort(expected, {}, &script::Capture::offsetSec);
    if (!actual.empty()) {
        result.runStart = actual.front().date;
        result.runEnd = actual.back().date;
    }

    ComparedRun run{.captures = std::move(expected), .frames = std::move(actual), .landings = {}};
    run.landings = findLandings(run.captures, run.frames);
    RunTallies::countLandings(run, result);
    if (softwareOK)
        RunTallies::countDrops(run, *softwareOK, result);
    RunTallies::measureJitter(run, result);
    RunTallies::listGroups(run, result);
    return result;
}

} // namespace zenka::analysis::RunAnalysis
