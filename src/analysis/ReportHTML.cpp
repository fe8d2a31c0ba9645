#include "analysis/ReportHTML.h"

#include "analysis/HtmlText.h"
#include "analysis/ReportCards.h"
#include "analysis/ReportGroups.h"
#include "analysis/ReportStyle.h"
#include "analysis/ReportTimeline.h"
#include "base/CivilTime.h"

#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::analysis::ReportHTML {

namespace {

constexpr std::string_view title = "Zenka Simulation Analyzer Report";

int landed(const AnalysisResult& result) {
    return result.matched + result.misExposed;
}

std::string head(const AnalysisResult& result) {
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
                       "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    // Names on the page come from cards and scripts; what they might bring in could still load nothing.
    html += "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
            "'unsafe-inline'\">\n";
    absl::StrAppendFormat(&html, "<title>%s</title>\n<style>%s</style>\n</head>\n<body>\n", title,
                          reportStyle);
    absl::StrAppendFormat(&html,
                          "<header><h1>%s</h1>\n<p class=\"sub\">Card <span class=\"accent\">%s</span> · "
                          "Script <span class=\"accent\">%s</span> · Camera <span class=\"accent\">%s</span>"
                          "</p></header>\n<main>\n",
                          title, escaped(result.sdName), escaped(result.scriptName), escaped(result.camera));
    return html;
}

std::string bannerDetail(const AnalysisResult& result) {
    if (result.pass() && result.nearMiss < 1)
        return absl::StrFormat("All %d scheduled captures landed, exposures correct, across a %s run.",
                               result.expectedTotal, result.durationStr());
    if (result.pass())
        return absl::StrFormat("All %d scheduled captures landed across a %s run. %d landed at the body's "
                               "nearest ISO (rounded, see below).",
                               result.expectedTotal, result.durationStr(), result.nearMiss);
    std::string detail =
        absl::StrFormat("%d of %d scheduled frames landed", landed(result), result.expectedTotal);
    if (result.misExposed > 0)
        absl::StrAppendFormat(&detail, ", %d of them at the wrong exposure", result.misExposed);
    if (result.extras > result.extrasLimit())
        absl::StrAppendFormat(&detail, ", %d card frames matched no scheduled shot", result.extras);
    return detail + ". See below.";
}

std::string banner(const AnalysisResult& result) {
    return absl::StrFormat("<section class=\"banner %s\"><h2>%s</h2><p>%s</p></section>\n",
                           result.pass() ? "pass" : "review", result.pass() ? "PASS" : "REVIEW",
                           bannerDetail(result));
}

std::string fileNote(int files, int frames) {
    if (files <= frames)
        return "";
    return absl::StrFormat(
        "<section class=\"card note\"><p>This card holds <b>%d image files</b> for <b>%d frames</b>: you are "
        "shooting RAW+JPEG, so each shutter actuation writes two files. Everything below counts frames, not "
        "files.</p></section>\n",
        files, frames);
}

std::string tile(const std::string& value, std::string_view colour, std::string_view label) {
    return absl::StrFormat("<div class=\"tile\"><dt>%s</dt><dd style=\"color:var(--%s)\">%s</dd></div>\n",
                           label, colour, value);
}

std::string tiles(const AnalysisResult& result) {
    std::string html = "<dl class=\"tiles\">\n";
    html += tile(absl::StrFormat("%d / %d", landed(result), result.expectedTotal),
                 result.missing() == 0 ? "green" : "red", "Frames landed");
    if (result.dropSilent)
        html += tile(std::to_string(*result.dropSilent), *result.dropSilent == 0 ? "green" : "red",
                     "Silent drops (undetected)");
    if (result.nearMiss >= 1)
        html += tile(std::to_string(result.nearMiss), "pale", "Landed at a rounded ISO");
    html += tile(std::to_string(result.matched - result.nearMiss), "text", "Exact matches");
    html += tile(std::to_string(result.extras), result.extras > result.extrasLimit() ? "amber" : "text",
                 "Unmatched on card");
    html += tile(absl::StrFormat("±%.0f ms", std::floor(result.jitterMeanMs)), "text",
                 "Mean firing jitter (totality)");
    html += tile(result.durationStr(), "text", "Run duration");
    return html + "</dl>\n";
}

std::string precision(const AnalysisResult& result) {
    return absl::StrFormat(
        "<section class=\"card keep\"><h2>Firing-interval precision</h2><p>Over %d short deterministic "
        "intervals "
        "(the totality sequence): mean ±%.0f ms, max ±%.0f ms. Larger spreads come from shutter-changing "
        "brackets (set-exposure overhead), not scheduler drift. Partial-phase intervals are magnitude-driven "
        "and validated by count + ordering.</p></section>\n",
        result.jitterCount, std::floor(result.jitterMeanMs), std::floor(result.jitterMaxMs));
}

std::string mismatches(const AnalysisResult& result) {
    std::string html = "<section class=\"card\"><h2>Frames that didn't land</h2>";
    if (result.mismatches.empty())
        return html + "<p>Every scheduled frame landed on the card.</p></section>\n";
    html +=
        "<table><thead><tr><th scope=\"col\">Group · frames landed / commanded</th></tr></thead>\n<tbody>";
    for (const std::string& line : result.mismatches)
        html += "<tr><td>" + escaped(line) + "</td></tr>\n";
    return html + "</tbody></table></section>\n";
}

} // namespace

std::string generate(const AnalysisResult& result, const std::vector<ExifFrame>& actual,
                     const std::vector<script::Capture>& expected, const Context& context) {
    std::string html = head(result);
    html += banner(result);
    html += fileNote(context.imageFiles, context.cardFrames.value_or(static_cast<int>(actual.size())));
    html += tiles(result);
    html += ReportCards::warnings(result);
    html += ReportCards::dropDetection(result);
    html += "<section class=\"card keep\"><h2>Capture timeline</h2>\n" +
            timelineDrawing(result, expected, context.zone) + "</section>\n";
    html += "<section class=\"card\"><h2>Per-group results <small>· click a phase to expand</small></h2>\n" +
            phaseBlocks(result.groups) + "</section>\n";
    html += precision(result);
    html += mismatches(result);
    absl::StrAppendFormat(&html,
                          "</main>\n<footer>Generated by Zenka Simulation Analyzer · %s</footer>\n</body>\n"
                          "</html>\n",
                          base::formatTime("%Y-%m-%d %H:%M:%S", context.generated, context.zone));
    return html;
}

} // namespace zenka::analysis::ReportHTML
