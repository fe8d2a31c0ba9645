#include "analysis/RunTallies.h"

#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <utility>

namespace zenka::analysis::RunTallies {

namespace {

constexpr double longestJitterIntervalSec = 10.0;
constexpr std::size_t mostMismatches = 40;

/// Counts equal texts.
class TextCounts {
public:
    void add(const std::string& text) {
        const auto [found, fresh] = index_.try_emplace(text, counts_.size());
        if (fresh)
            counts_.emplace_back(text, 0);
        ++counts_[found->second].second;
    }

    /// "text (x3)", the most frequent first and equals as they came.
    std::vector<std::string> lines(std::string_view times) const {
        std::vector<std::pair<std::string, int>> sorted = counts_;
        std::ranges::stable_sort(sorted, std::ranges::greater(), &std::pair<std::string, int>::second);
        std::vector<std::string> lines;
        lines.reserve(sorted.size());
        for (const auto& [text, count] : sorted)
            lines.push_back(absl::StrFormat("%s (%s%d)", text, times, count));
        return lines;
    }

private:
    std::vector<std::pair<std::string, int>> counts_;
    std::unordered_map<std::string, std::size_t> index_;
};

const ExifFrame& frameOf(const ComparedRun& run, std::size_t capture) {
    return run.frames[static_cast<std::size_t>(run.landings[capture].frame)];
}

/// The ISO that a capture landed at when it is another than was asked for; 0 otherwise.
int roundedISO(const ComparedRun& run, std::size_t capture) {
    if (!run.landings[capture].matched())
        return 0;
    const int asked = run.captures[capture].iso;
    const int landed = frameOf(run, capture).iso;
    return asked >= 1 && landed >= 1 && asked != landed ? landed : 0;
}

bool sameExposure(const script::Capture& a, const script::Capture& b) {
    return a.iso == b.iso && a.aperture == b.aperture && a.shutterSec == b.shutterSec;
}

/// "ISO 200 f/8 1/500", without what is left to the camera.
std::string exposureLabel(const script::Capture& capture) {
    std::string label;
    const auto add = [&](const std::string& part) { label += (label.empty() ? "" : " ") + part; };
    if (capture.iso > 0)
        add(absl::StrFormat("ISO %d", capture.iso));
    if (capture.aperture > 0)
        add(absl::StrFormat("f/%g", capture.aperture));
    if (capture.bulb)
        add("BULB");
    else if (capture.shutterSec > 0)
        add(exposure::shutterLabel(capture.shutterSec));
    return label.empty() ? "Camera's own settings" : label;
}

} // namespace

void countLandings(const ComparedRun& run, AnalysisResult& result) {
    TextCounts rounded;
    TextCounts wrong;
    result.landed.reserve(run.captures.size());
    for (std::size_t i = 0; i < run.captures.size(); ++i) {
        const Landing& landing = run.landings[i];
        result.landed.push_back(landing.any());
        if (landing.matched())
            ++result.matched;
        if (landing.misExposed()) {
            ++result.misExposed;
            wrong.add(settingsDifference(run.captures[i], frameOf(run, i)));
        }
        if (const int iso = roundedISO(run, i); iso > 0) {
            ++result.nearMiss;
            rounded.add(absl::StrFormat("ISO %d→%d", run.captures[i].iso, iso));
        }
    }
    result.nearMissNote = rounded.lines("×");
    result.misExposedNote = wrong.lines("x");
    result.isoOK = result.apOK = result.shOK = result.matched;
    result.extras = std::max(0, result.actualTotal - result.matched - result.misExposed);
}

void countDrops(const ComparedRun& run, const SoftwareOK& softwareOK, AnalysisResult& result) {
    int detected = 0;
    int silent = 0;
    int falseAlarm = 0;
    for (std::size_t i = 0; i < run.captures.size(); ++i) {
        const auto logged = softwareOK.find(RunAnalysis::timeKey(run.captures[i].offsetSec));
        if (logged == softwareOK.end())
            continue;
        if (run.landings[i].any())
            falseAlarm += logged->second ? 0 : 1;
        else
            ++(logged->second ? silent : detected);
    }
    result.dropDetected = detected;
    result.dropSilent = silent;
    result.dropFalseAlarm = falseAlarm;
}

void measureJitter(const ComparedRun& run, AnalysisResult& result) {
    double sum = 0;
    for (std::size_t i = 1; i < run.captures.size(); ++i) {
        if (!run.landings[i - 1].matched() || !run.landings[i].matched())
            continue;
        const double planned = run.captures[i].offsetSec - run.captures[i - 1].offsetSec;
        if (planned <= 0 || planned > longestJitterIntervalSec)
            continue;
        const double actual = (frameOf(run, i).date - frameOf(run, i - 1).date).count();
        const double errorMs = std::abs(actual - planned) * 1000;
        sum += errorMs;
        result.jitterMaxMs = std::max(result.jitterMaxMs, errorMs);
        ++result.jitterCount;
    }
    if (result.jitterCount > 0)
        result.jitterMeanMs = sum / result.jitterCount;
}

void listGroups(const ComparedRun& run, AnalysisResult& result) {
    for (std::size_t i = 0; i < run.captures.size(); ++i) {
        const script::Capture& capture = run.captures[i];
        if (i == 0 || !sameExposure(run.captures[i - 1], capture))
            result.groups.push_back(
                {.label = capture.comment.empty() ? exposureLabel(capture) : capture.comment,
                 .iso = capture.iso,
                 .ap = capture.aperture,
                 .shutter = exposure::shutterLabel(capture.shutterSec)});
        AnalysisResult::Group& group = result.groups.back();
        ++group.expCount;
        group.actCount += run.landings[i].matched() ? 1 : 0;
        group.wrongCount += run.landings[i].misExposed() ? 1 : 0;
        if (const int iso = roundedISO(run, i); iso > 0) {
            ++group.nearCount;
            group.landedISO = iso;
        }
    }
    std::vector<const AnalysisResult::Group*> incomplete;
    for (AnalysisResult::Group& group : result.groups) {
        group.ok = group.actCount == group.expCount;
        if (!group.ok)
            incomplete.push_back(&group);
    }
    std::ranges::stable_sort(incomplete, std::ranges::greater(), [](const AnalysisResult::Group* group) {
        return group->expCount - group->actCount;
    });
    incomplete.resize(std::min(incomplete.size(), mostMismatches));
    for (const AnalysisResult::Group* group : incomplete)
        result.mismatches.push_back(
            absl::StrFormat("%s: %d/%d landed", group->label, group->actCount, group->expCount));
}

} // namespace zenka::analysis::RunTallies
