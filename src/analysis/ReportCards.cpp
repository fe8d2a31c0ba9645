#include "analysis/ReportCards.h"

#include "analysis/HtmlText.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <string_view>
#include <vector>

namespace zenka::analysis::ReportCards {

namespace {

/// Heading and body are HTML.
std::string card(std::string_view kind, const std::string& heading, const std::string& body) {
    return absl::StrFormat("<section class=\"card keep %s\"><h2>%s</h2><p>%s</p></section>\n", kind, heading,
                           body);
}

std::string tooManyExtras(const AnalysisResult& result) {
    return card("warn", absl::StrFormat("⚠ %d card frames match no scheduled shot", result.extras),
                "That's a lot of unexplained frames. The card most likely holds more than this one run (not "
                "formatted between sessions), or belongs to a different body, so the totals below can't be "
                "fully trusted. Format the card before a clean test run, and confirm you picked the right "
                "camera.");
}

std::string wrongExposures(const AnalysisResult& result) {
    return card(
        "wrong", absl::StrFormat("%d frame(s) landed at the WRONG exposure", result.misExposed),
        absl::StrFormat(
            "These shots <b>fired and saved</b>, in the right place in the run, but the file does not carry "
            "the "
            "settings the script asked for. That is not a dropped frame and it is not a rounding: it is a "
            "picture taken at the wrong exposure. Differences this run: %s. Check that the body is in "
            "Manual, "
            "that no in-camera Auto ISO or exposure-comp is overriding the command, and that the commanded "
            "value exists on this body's dial.",
            escaped(base::joined(result.misExposedNote, "; "))));
}

std::string missingFrames(const AnalysisResult& result) {
    return card(
        "wrong",
        absl::StrFormat("%d scheduled frames didn't land (%.1f%%)", result.missing(), result.missedPercent()),
        "These commanded frames have no matching frame on the card. Usual causes: the body couldn't "
        "sustain the cadence (its write buffer filled), or it missed the trigger. <b>Fix:</b> widen the "
        "spacing between frames (the Script Wizard's Spacing control defaults to a per-body-safe rate), "
        "or drop an exposure or two per bracket set.");
}

std::string roundedISOs(const AnalysisResult& result) {
    return card(
        "rounded", absl::StrFormat("◐ %d frame(s) landed at a rounded ISO", result.nearMiss),
        absl::StrFormat(
            "These shots <b>fired and saved</b> — the body just rounded the commanded ISO to its "
            "nearest available value (LUMIX bodies don't accept 1/3-stop ISOs, so a commanded 320 "
            "records as 400). This is a <b>rounding, not a drop or a mistake</b>, and it's ≤1/3 stop — "
            "negligible in exposure. Roundings this run: %s. If you want exact ISOs, command whole-stop "
            "values (100, 200, 400, 800, 1600) in the ramp.",
            escaped(base::joined(result.nearMissNote))));
}

std::string fewExtras(const AnalysisResult& result) {
    return card("note", absl::StrFormat("Note: %d extra frame(s) on the card", result.extras),
                "A few more frames than scheduled, most likely leftover test-fires. Worth a glance.");
}

/// "1 was a false alarm", "2 were false alarms".
std::string falseAlarms(int count) {
    return std::to_string(count) + (count == 1 ? " was a false alarm" : " were false alarms");
}

} // namespace

std::string warnings(const AnalysisResult& result) {
    const bool tooMany = result.extras > result.extrasLimit();
    std::string html;
    if (tooMany)
        html += tooManyExtras(result);
    if (result.misExposed >= 1)
        html += wrongExposures(result);
    if (result.missing() >= 1)
        html += missingFrames(result);
    if (result.nearMiss >= 1)
        html += roundedISOs(result);
    if (result.missing() == 0 && result.extras >= 1 && !tooMany)
        html += fewExtras(result);
    return html;
}

std::string dropDetection(const AnalysisResult& result) {
    if (!result.dropSilent)
        return card(
            "", "Drop detection",
            "No matching run log was found for this card, so detected-vs-silent drops can't be computed "
            "here. (Keep the run's log in ~/Documents/Zenka Logs and analyze the matching card.)");
    const std::string log =
        result.runLogName ? " <small>· matched log: " + escaped(*result.runLogName) + "</small>" : "";
    const int detected = result.dropDetected.value_or(0);
    const int falseAlarm = result.dropFalseAlarm.value_or(0);
    if (*result.dropSilent >= 1)
        return card("silent",
                    absl::StrFormat("⚠ %d SILENT drop(s) — the app logged “fired OK” but nothing landed",
                                    *result.dropSilent) +
                        log,
                    absl::StrFormat(
                        "The most dangerous case: the software believed it got these shots, yet they have no "
                        "frame on the card. %d correctly detected, %s (logged as dropped but actually "
                        "present).",
                        detected, falseAlarms(falseAlarm)));
    std::string body =
        absl::StrFormat("Every frame missing from the card was one the software also flagged as "
                        "dropped (%d detected). Nothing was silently lost.",
                        detected);
    if (falseAlarm >= 1)
        body += " " + falseAlarms(falseAlarm) + " (logged dropped but present on the card).";
    return card("healthy", "✓ Drop detection healthy — 0 silent drops" + log, body);
}

} // namespace zenka::analysis::ReportCards
