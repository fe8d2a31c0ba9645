#include "analysis/ReportGroups.h"

#include "analysis/HtmlText.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <unordered_map>

namespace zenka::analysis {

namespace {

struct Phase {
    std::string_view name;
    std::vector<const AnalysisResult::Group*> groups;
    int expected = 0;
    int landed = 0;
    int wrong = 0;
    int rounded = 0;
};

std::vector<Phase> phasesOf(const std::vector<AnalysisResult::Group>& groups) {
    std::vector<Phase> phases;
    std::unordered_map<std::string_view, std::size_t> known;
    for (const AnalysisResult::Group& group : groups) {
        const std::string_view name = phaseName(group.label);
        const auto [found, fresh] = known.try_emplace(name, phases.size());
        if (fresh)
            phases.push_back({.name = name, .groups = {}});
        Phase& phase = phases[found->second];
        phase.groups.push_back(&group);
        phase.expected += group.expCount;
        phase.landed += group.actCount;
        phase.wrong += group.wrongCount;
        phase.rounded += group.nearCount;
    }
    return phases;
}

std::string_view withoutEnd(std::string_view text, std::string_view characters) {
    const auto last = text.find_last_not_of(characters);
    return text.substr(0, last == text.npos ? 0 : last + 1);
}

constexpr std::string_view blanks = " \t\r\n\v\f";

/// Without "(...)" at the end.
std::string_view withoutParenthesis(std::string_view text) {
    const std::string_view closed = withoutEnd(text, blanks);
    if (!closed.ends_with(')'))
        return text;
    const std::string_view inner = closed.substr(0, closed.size() - 1);
    const auto before = inner.rfind(')');
    const auto open = inner.find('(', before == inner.npos ? 0 : before + 1);
    return open == inner.npos ? text : withoutEnd(inner.substr(0, open), blanks);
}

/// Without " 1/500" or " 2s" at the end.
std::string_view withoutExposure(std::string_view text) {
    std::string_view rest = withoutEnd(text, blanks);
    if (rest.ends_with('s'))
        rest.remove_suffix(1);
    const std::string_view head = withoutEnd(rest, "0123456789/.");
    const std::string_view name = withoutEnd(head, blanks);
    return head.size() < rest.size() && name.size() < head.size() ? name : text;
}

void appendRow(std::string& html, const AnalysisResult::Group& group) {
    const std::string aperture = group.ap > 0 ? absl::StrFormat("f/%g", group.ap) : "-";
    absl::StrAppendFormat(&html, "<tr%s><td>%s</td><td>%s</td><td>%s</td><td>%s</td><td>%d / %d",
                          group.ok ? "" : " class=\"bad\"", escaped(group.label), group.isoDisplay(),
                          aperture, escaped(group.shutter), group.actCount, group.expCount);
    if (group.wrongCount > 0)
        absl::StrAppendFormat(&html, " (%d at the wrong exposure)", group.wrongCount);
    html += "</td></tr>\n";
}

} // namespace

std::string_view phaseName(std::string_view label) {
    const std::string_view name = base::trimmed(withoutExposure(withoutParenthesis(label)));
    return name.empty() ? label : name;
}

std::string phaseBlocks(const std::vector<AnalysisResult::Group>& groups) {
    std::string html;
    for (const Phase& phase : phasesOf(groups)) {
        absl::StrAppendFormat(&html, "<details class=\"ph\"><summary><b>%s</b>%d / %d landed ",
                              escaped(phase.name), phase.landed, phase.expected);
        if (const int missing = phase.expected - phase.landed - phase.wrong; missing > 0)
            absl::StrAppendFormat(&html, "· <span class=\"bad\">%d missing</span> ", missing);
        if (phase.wrong > 0)
            absl::StrAppendFormat(&html, "· <span class=\"bad\">%d at the wrong exposure</span> ",
                                  phase.wrong);
        if (phase.rounded > 0)
            absl::StrAppendFormat(&html, "· <span class=\"accent\">%d snapped</span>", phase.rounded);
        html += "</summary>\n<div class=\"scroll\"><table>\n<thead><tr><th scope=\"col\">Group</th>"
                "<th scope=\"col\">ISO</th><th scope=\"col\">f/</th><th scope=\"col\">Shutter</th>"
                "<th scope=\"col\">Landed</th></tr></thead>\n<tbody>\n";
        for (const AnalysisResult::Group* group : phase.groups)
            appendRow(html, *group);
        html += "</tbody></table></div></details>\n";
    }
    return html;
}

} // namespace zenka::analysis
