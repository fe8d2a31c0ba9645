#include "analysis/AnalysisResult.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::analysis {

namespace {

constexpr double mostMissedPercent = 2.0;
constexpr double mostYellowPercent = 10.0;
/// Up to so many captures a fixed number of extras is let through, beyond it a fifth of the captures.
constexpr int smallRun = 99;
constexpr int extrasOfSmallRun = 20;

} // namespace

std::string AnalysisResult::Group::isoDisplay() const {
    if (nearCount >= 1 && landedISO >= 1 && landedISO != iso)
        return absl::StrFormat("ISO %d → %d", iso, landedISO);
    return absl::StrFormat("ISO %d", iso);
}

int AnalysisResult::missing() const {
    return std::max(0, expectedTotal - (matched + misExposed));
}

double AnalysisResult::missedPercent() const {
    return expectedTotal < 1 ? 0 : 100.0 * missing() / expectedTotal;
}

int AnalysisResult::extrasLimit() const {
    return expectedTotal > smallRun ? expectedTotal / 5 : extrasOfSmallRun;
}

bool AnalysisResult::pass() const {
    return matched >= 1 && extras <= extrasLimit() && missedPercent() <= mostMissedPercent && misExposed == 0;
}

std::string AnalysisResult::landedStatus() const {
    const double missed = missedPercent();
    return missed <= mostMissedPercent ? "green" : missed <= mostYellowPercent ? "yellow" : "red";
}

std::string AnalysisResult::durationStr() const {
    if (!runStart || !runEnd)
        return "?";
    constexpr double longest = 1e9; // a clock that says more is no clock
    const double sec = (*runEnd - *runStart).count();
    const bool plausible = sec >= 0 && sec <= longest;
    if (!plausible)
        return "?";
    const auto whole = static_cast<int>(sec);
    const std::string minutes = absl::StrFormat("%02dm %02ds", whole / 60 % 60, whole % 60);
    return whole >= 3600 ? absl::StrFormat("%dh ", whole / 3600) + minutes : minutes;
}

} // namespace zenka::analysis
