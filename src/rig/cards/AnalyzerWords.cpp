#include "rig/cards/AnalyzerWords.h"

#include "analysis/RunAnalysis.h"
#include "base/CivilTime.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig::AnalyzerWords {

namespace {

using Step = AnalyzerState::Step;

std::string summaryOf(const std::optional<RunSummary>& run) {
    if (!run)
        return {};
    std::string words =
        absl::StrFormat("%s fired, %d dropped.", base::counted(run->frames, "frame"), run->dropped);
    if (run->asymmetry)
        words += " " + *run->asymmetry;
    return words;
}

/// The commonest first, "mov ×12".
std::vector<std::string> commonestSkipped(const analysis::ExifReader& reader, std::size_t most) {
    std::vector<std::pair<std::string, int>> skipped(reader.lastSkippedExtensions().begin(),
                                                     reader.lastSkippedExtensions().end());
    std::ranges::stable_sort(skipped, std::ranges::greater(), &std::pair<std::string, int>::second);
    skipped.resize(std::min(skipped.size(), most));
    std::vector<std::string> words;
    words.reserve(skipped.size());
    for (const auto& [extension, count] : skipped)
        words.push_back(absl::StrFormat("%s ×%d", extension, count));
    return words;
}

/// What of the card went into no count, as a sentence; empty for nothing.
std::string skippedOf(const analysis::ExifReader& reader, const RunLogLibrary::Match& logs) {
    std::vector<std::string> parts;
    if (const int images = reader.lastUnreadable())
        parts.push_back(base::counted(images, "image") + (images == 1 ? " that is" : " that are") +
                        " damaged or without a time");
    if (const int folders = reader.lastUnreadableFolders())
        parts.push_back(base::counted(folders, "folder") + " that could not be read to the end");
    if (const auto others = commonestSkipped(reader, 4); !others.empty())
        parts.push_back("files that are no images: " + base::joined(others));
    if (!logs.others.empty())
        parts.push_back(base::counted(std::ssize(logs.others), "other run log") + " of the same shots");
    if (logs.unreadable > 0)
        parts.push_back(base::counted(logs.unreadable, "run log") + " that could not be read");
    return parts.empty() ? std::string() : "Left out: " + base::joined(parts, "; ") + ".";
}

} // namespace

AnalyzerState offer(const std::optional<RunSummary>& run) {
    return {.step = Step::offer,
            .unasked = true,
            .summary = summaryOf(run),
            .title = "Check what actually landed?",
            .text =
                "The Simulation Analyzer reads each RAW's real EXIF off the card in your reader and "
                "compares it to the script — ISO, aperture, shutter, and firing time — so you see exactly "
                "which planned frames landed and whether the exposures are right. Takes a few seconds."};
}

AnalyzerState runEnded(const std::optional<RunSummary>& run) {
    return {.step = Step::message,
            .unasked = true,
            .summary = summaryOf(run),
            .title = "Run complete",
            .text = "Put a camera's card into a reader, and the Simulation Analyzer offers to check what "
                    "landed on it."};
}

AnalyzerState liveRun() {
    return {.step = Step::message,
            .title = "A live run is on",
            .text = "Reading a card takes the computer's attention. Analyze when the run is over."};
}

AnalyzerState noScript() {
    return {.step = Step::message,
            .title = "No script loaded",
            .text = "Load or generate a capture script first, then run the analyzer against your SD card."};
}

AnalyzerState lookingForCards() {
    return {.step = Step::working, .text = "Looking for a card…"};
}

AnalyzerState noCard() {
    return {.step = Step::message,
            .title = "No SD card found",
            .text = "Insert your camera's SD card (a volume with a DCIM folder) and try again."};
}

AnalyzerState whichCard(const CardWatch::Cards& cards) {
    AnalyzerState state{.step = Step::pickCard,
                        .title = "Which card?",
                        .text = "Several cards are in. Pick the one to check against the loaded script."};
    for (const auto& card : cards)
        state.choices.push_back(CardWatch::nameOf(card));
    return state;
}

AnalyzerState whichCamera(const std::string& model, const script::CapturesByToken& script) {
    AnalyzerState state{.step = Step::pickCamera,
                        .title = "Which camera is this card from?",
                        .text = "This card reports “" + model +
                                "”. The analyzer compares it against only this body's frames in the loaded "
                                "script."};
    for (const auto& [token, captures] : script)
        state.choices.push_back(token);
    return state;
}

AnalyzerState whichRun(const std::vector<std::vector<analysis::ExifFrame>>& runs, int expected,
                       const absl::TimeZone& zone) {
    AnalyzerState state{.step = Step::pickRun,
                        .title = "Which run is this card from?",
                        .text = absl::StrFormat(
                            "This card holds %d separate bursts (runs + test-fires). Pick the one to check "
                            "against the loaded script (%d frames).",
                            runs.size(), expected)};
    for (const auto& run : runs)
        state.choices.push_back("Analyze " + base::counted(std::ssize(run), "frame") + " · " +
                                base::formatTime("%d %b %H:%M:%S", run.front().date, zone) + " to " +
                                base::formatTime("%H:%M:%S", run.back().date, zone));
    state.recommended = static_cast<int>(analysis::RunAnalysis::nearestRun(runs, expected));
    return state;
}

AnalyzerState verdict(const analysis::AnalysisResult& result, const analysis::ExifReader& reader,
                      const RunLogLibrary::Match& logs, bool written) {
    std::string text =
        absl::StrFormat("%d landed · %d dropped · %d at a rounded ISO (◐ yellow, still saved)\n",
                        result.matched, result.missing(), result.nearMiss);
    if (result.misExposed > 0)
        text += absl::StrFormat("%d at the wrong exposure: %s\n", result.misExposed,
                                base::joined(result.misExposedNote));
    if (!result.nearMissNote.empty())
        text += "ISO roundings: " + base::joined(result.nearMissNote) +
                " — LUMIX rounds 1/3-stop ISOs to the nearest whole stop; ≤1/3 stop, not a drop.\n";
    text += absl::StrFormat("Firing jitter ±%.0f ms (max %.0f ms) · duration %s\n", result.jitterMeanMs,
                            result.jitterMaxMs, result.durationStr());
    if (const std::string skipped = skippedOf(reader, logs); !skipped.empty())
        text += skipped + "\n";
    text += written
                ? "The report opened in your browser. Add an optional note (what you were testing, anything "
                  "that looked off), then send it to the team, or keep it local."
                : "The report could not be written to the disk.";
    return {.step = Step::verdict,
            .title = result.pass() ? "✓ Simulation Analyzer: PASS" : "Simulation Analyzer: review",
            .text = std::move(text),
            .pass = result.pass()};
}

std::string nothingReadable(const analysis::ExifReader& reader) {
    const auto skipped = commonestSkipped(reader, 4);
    if (skipped.empty())
        return {};
    return "⚠️ Analyzer: no readable images on this card, but it holds files I skipped (" +
           base::joined(skipped) +
           "). If one of those is this camera's image format, tell me — the analyzer needs to learn it.";
}

} // namespace zenka::rig::AnalyzerWords
