#include "analysis/ReportTimeline.h"

#include "base/CivilTime.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>

namespace zenka::analysis {

namespace {

constexpr double leftX = 60;
constexpr double rightX = 1060;
constexpr int landedY = 42;
constexpr int missingY = 74;
constexpr int labelY = 110;

/// Diamond ring, beads and chromosphere: shots so close to totality belong to it.
constexpr double edgeSec = 60;
/// No totality is longer (7 min 32 s at most). A label does not tell how long this one is.
constexpr double longestTotalitySec = 452;

/// The signed seconds of "−8s", "+1:30"; nothing for other text.
std::optional<double> signedSeconds(std::string_view text) {
    const bool negative = text.starts_with(base::minusSign);
    if (!negative && !text.starts_with('+'))
        return std::nullopt;
    text.remove_prefix(negative ? base::minusSign.size() : 1);
    if (text.ends_with('s'))
        text.remove_suffix(1);
    const auto seconds = script::ZenkaScript::parseTimeMMSS(text);
    return seconds && negative ? -*seconds : seconds;
}

std::string dots(const std::string& circles, std::string_view colour) {
    return circles.empty() ? std::string()
                           : absl::StrFormat("<g fill=\"%s\" fill-opacity=\"0.9\">%s</g>\n", colour, circles);
}

std::string axisLabel(double x, const std::optional<base::Instant>& date, const absl::TimeZone& zone) {
    return date ? absl::StrFormat("<text x=\"%g\" y=\"%d\">%s</text>", x, labelY, hms(*date, zone)) : "";
}

} // namespace

std::string hms(base::Instant date, const absl::TimeZone& zone) {
    return base::formatTime("%H:%M:%S", date, zone);
}

std::optional<bool> isNearTotality(std::string_view refLabel) {
    const auto blank = std::min(refLabel.find(' '), refLabel.size());
    const std::string_view name = refLabel.substr(0, blank);
    if (refLabel == "after last" || name == "last")
        return std::nullopt;
    double from = 0;
    double to = 0;
    if (name == "C2" || name == "U2") {
        from = -edgeSec;
        to = longestTotalitySec + edgeSec;
    } else if (name == "MAX") {
        from = -longestTotalitySec / 2 - edgeSec;
        to = -from;
    } else if (name == "C3" || name == "U3") {
        from = -longestTotalitySec - edgeSec;
        to = edgeSec;
    } else {
        return false;
    }
    if (blank == refLabel.size())
        return true;
    const auto seconds = signedSeconds(refLabel.substr(blank + 1));
    return seconds && *seconds >= from && *seconds <= to;
}

std::string timelineDrawing(const AnalysisResult& result, std::vector<script::Capture> expected,
                            const absl::TimeZone& zone) {
    std::ranges::stable_sort(expected, {}, &script::Capture::offsetSec);
    const double first = expected.empty() ? 0 : expected.front().offsetSec;
    const double span = expected.empty() ? 0 : expected.back().offsetSec - first;

    std::array<std::string, 2> circles; // partials, totality
    bool near = false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        near = isNearTotality(expected[i].refLabel).value_or(near); // else as the capture before
        const double share = span > 0 ? (expected[i].offsetSec - first) / span : 0.5;
        const bool missing = i < result.landed.size() && !result.landed[i];
        absl::StrAppendFormat(&circles[near ? 1 : 0], "<circle cx=\"%.1f\" cy=\"%d\" r=\"2.4\"/>",
                              leftX + share * (rightX - leftX), missing ? missingY : landedY);
    }

    constexpr std::string_view partialColour = "#3b6ea5";
    constexpr std::string_view totalityColour = "#ff8c2b";
    std::string drawing = absl::StrFormat(
        "<div class=\"scroll\"><svg viewBox=\"0 0 1100 120\" width=\"100%%\" role=\"img\" "
        "aria-label=\"%d of %d captures have a frame\">\n"
        "<line x1=\"%g\" y1=\"%d\" x2=\"%g\" y2=\"%d\" stroke=\"#6b7d93\" stroke-opacity=\"0.6\"/>\n",
        result.expectedTotal - result.missing(), result.expectedTotal, leftX, landedY, rightX, landedY);
    drawing += dots(circles[0], partialColour) + dots(circles[1], totalityColour);
    drawing += "<g class=\"mono\" font-size=\"10pt\" fill=\"#6b7d93\" text-anchor=\"middle\">" +
               axisLabel(leftX, result.runStart, zone) + axisLabel(rightX, result.runEnd, zone) +
               "</g>\n</svg></div>\n";
    drawing += absl::StrFormat("<p class=\"legend\"><span><i style=\"background:%s\"></i>Partials</span>"
                               "<span><i style=\"background:%s\"></i>Totality</span>",
                               partialColour, totalityColour);
    if (result.missing() > 0)
        drawing += "<span>Lower row: no frame on the card</span>";
    return drawing + "</p>\n";
}

} // namespace zenka::analysis
