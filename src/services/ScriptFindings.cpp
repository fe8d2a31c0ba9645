#include "services/ScriptFindings.h"

#include "base/Text.h"
#include "base/TimeWords.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>

namespace zenka::services {

namespace {

constexpr std::size_t mostToldCues = 100;
constexpr std::size_t mostToldCameras = 40;
constexpr std::size_t mostToldIssues = 60;
constexpr std::size_t longestRepair = 16 << 10; ///< bytes

std::string timeOf(const rig::CompileSite& site, double offsetSec) {
    return base::localHMS(site.eclipse->utc(offsetSec / 3600), site.tzId);
}

/// The frames of one camera.
struct CameraFrames {
    std::size_t count = 0;
    const script::Capture* first = nullptr;
    const script::Capture* last = nullptr;
    double fastest = std::numeric_limits<double>::infinity();
    double slowest = 0;

    void add(const script::Capture& capture) {
        ++count;
        first = first ? first : &capture;
        last = &capture;
        if (capture.shutterSec > 0) {
            fastest = std::min(fastest, capture.shutterSec);
            slowest = std::max(slowest, capture.shutterSec);
        }
    }
    std::string words(const rig::CompileSite& site) const {
        std::string text = absl::StrFormat(
            "%s from %s (%s) to %s (%s)", base::counted(static_cast<std::int64_t>(count), "frame"),
            first->refLabel, timeOf(site, first->offsetSec), last->refLabel, timeOf(site, last->offsetSec));
        if (slowest > 0)
            text += ", shutter " + exposure::shutterLabel(fastest) +
                    (slowest > fastest ? " to " + exposure::shutterLabel(slowest) : "");
        return text;
    }
};

std::string summaryOf(const rig::ScriptValidator::Examined& examined, std::size_t commands) {
    const script::CompiledScript& script = examined.compiled;
    std::map<std::string, CameraFrames> cameras;
    for (const script::Capture& capture : script.captures)
        cameras[capture.camera].add(capture);
    std::string text = base::counted(std::ssize(script.captures), "frame") + " on " +
                       base::counted(std::ssize(cameras), "camera") + ", " +
                       base::counted(std::ssize(script.audioCues), "cue") + "\n";
    std::size_t told = 0;
    for (const auto& [name, frames] : cameras) {
        if (++told > mostToldCameras)
            break;
        text += "\n" + name + ": " + frames.words(examined.site);
    }
    if (cameras.size() > mostToldCameras)
        text += "\nand more cameras";
    const bool speaks =
        std::ranges::any_of(script.audioCues, [](const auto& cue) { return cue.shell.empty(); });
    if (speaks)
        text += "\n\nWhat is said:";
    told = 0;
    for (const script::AudioCue& cue : script.audioCues) {
        if (!cue.shell.empty())
            continue;
        if (++told > mostToldCues) {
            text += "\nand more";
            break;
        }
        text += "\n" + timeOf(examined.site, cue.offsetSec) + "  " + cue.refLabel + ": " + cue.text;
    }
    if (commands > 0)
        text += "\n\nIt runs commands on this computer, in " +
                base::counted(static_cast<std::int64_t>(commands), "line") + ".";
    return text;
}

} // namespace

ScriptFindings findingsOf(const rig::ScriptValidator::Examined& examined) {
    ScriptFindings findings;
    findings.issues = examined.issues;
    const auto errors = std::ranges::count(findings.issues, "error", &script::ScriptDiag::severity);
    findings.errors = static_cast<std::size_t>(errors);
    findings.tally = "Auto-validate: " + base::counted(errors, "error") + ", " +
                     base::counted(std::ssize(findings.issues) - errors, "warning");
    findings.commands = script::commandLines(examined.text);
    findings.summary = summaryOf(examined, findings.commands.size());
    return findings;
}

std::string repairRequest(const ScriptFindings& findings) {
    std::vector<const script::ScriptDiag*> order;
    order.reserve(findings.issues.size());
    for (const script::ScriptDiag& issue : findings.issues)
        order.push_back(&issue);
    std::ranges::stable_partition(order, [](const auto* issue) { return issue->severity == "error"; });
    std::string text = "Zenka has checked this script. Mend the errors, and the warnings where that makes "
                       "sense, and answer with the whole script.\n";
    std::size_t told = 0;
    for (const script::ScriptDiag* issue : order) {
        const std::string where = issue->lineNo > 0 ? absl::StrFormat("line %d", issue->lineNo) : "script";
        const std::string row = where + ", " + issue->severity + ": " + issue->message + "\n";
        if (told == mostToldIssues || text.size() + row.size() > longestRepair)
            break;
        text += row;
        ++told;
    }
    if (told < order.size())
        text += absl::StrFormat("and %d more\n", order.size() - told);
    return text;
}

} // namespace zenka::services
