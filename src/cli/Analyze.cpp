#include "cli/Analyze.h"

#include "analysis/ExifReader.h"
#include "analysis/ReportHTML.h"
#include "analysis/RunAnalysis.h"
#include "base/CivilTime.h"
#include "base/Text.h"
#include "cli/Carbondale.h"
#include "cli/Print.h"
#include "platform/Exiv2Metadata.h"
#include "platform/LinuxClock.h"
#include "platform/LinuxFiles.h"
#include "platform/ThreadWorkQueues.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <filesystem>

namespace zenka::cli {

namespace {

namespace fs = std::filesystem;

constexpr char reportPath[] = "/tmp/zenka_analyzer_cli.html";
constexpr std::size_t mostMismatches = 8;

/// The last part of a path, of "card/" as well.
std::string nameOf(const std::string& path) {
    const fs::path whole = fs::path(path).lexically_normal();
    return (whole.has_filename() ? whole : whole.parent_path()).filename();
}

void print(const analysis::AnalysisResult& result, std::size_t cardFrames) {
    printLine(absl::StrFormat("ANALYZE %s  vs  %s", result.scriptName, result.sdName));
    printLine(absl::StrFormat("  card frames: %d  | isolated run: %d  | expected: %d", cardFrames,
                              result.actualTotal, result.expectedTotal));
    printLine(absl::StrFormat("  PASS=%s  count %d/%d  ISO %d/%d  F %d/%d  shutter %d/%d",
                              result.pass() ? "true" : "false", result.matched, result.expectedTotal,
                              result.isoOK, result.matched, result.apOK, result.matched, result.shOK,
                              result.matched));
    printLine(absl::StrFormat("  jitter mean ±%dms max ±%dms over %d intervals  | duration %s",
                              static_cast<long long>(result.jitterMeanMs),
                              static_cast<long long>(result.jitterMaxMs), result.jitterCount,
                              result.durationStr()));
    printLine(absl::StrFormat("  mismatches: %d", result.mismatches.size()));
    const std::size_t shown = std::min(result.mismatches.size(), mostMismatches);
    for (std::size_t i = 0; i < shown; ++i)
        printLine("    " + result.mismatches[i]);
}

} // namespace

void analyzeCLI(const std::string& script, const std::string& folder) {
    platform::LinuxFiles files;
    const auto bytes = files.read(script);
    const auto text = bytes ? base::utf8Text(*bytes) : std::nullopt;
    if (!text) {
        printLine("cannot read " + script);
        return;
    }
    const auto captures = script::ZenkaScript::compile(*text, carbondaleContext()).captures;
    platform::Exiv2Metadata metadata;
    platform::ThreadWorkQueues queues;
    const absl::TimeZone zone = base::machineTimeZone();
    analysis::ExifReader reader(metadata, queues, zone);
    // A link to a card is the card, though links on it are not followed.
    std::error_code fault;
    const fs::path real = fs::canonical(folder, fault);
    const auto frames = reader.read(fault ? fs::path(folder) : real);
    const auto run = analysis::RunAnalysis::bestSegment(frames, static_cast<int>(captures.size()));
    const auto result =
        analysis::RunAnalysis::compare(captures, run,
                                       {.sdName = nameOf(folder),
                                        .scriptName = nameOf(script),
                                        .camera = captures.empty() ? "?" : captures.front().camera});
    print(result, frames.size());
    const std::string html = analysis::ReportHTML::generate(result, run, captures,
                                                            {.imageFiles = reader.lastImageFiles(),
                                                             .generated = platform::LinuxClock().now(),
                                                             .zone = zone,
                                                             .cardFrames = static_cast<int>(frames.size())});
    files.writeAtomically(reportPath, html);
    printLine(absl::StrFormat("  [html -> %s]", reportPath));
}

} // namespace zenka::cli
