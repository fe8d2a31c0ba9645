#include "services/GlancePage.h"

#include "analysis/HtmlText.h"

#include <absl/strings/str_format.h>

namespace zenka::services {

namespace {

using analysis::escaped;

// White on black, and no blue at night: red is what is left where it matters.
constexpr char style[] =
    "*{box-sizing:border-box}"
    "body{margin:0;background:#000;color:#f2f2f2;font:17px/1.35 system-ui,sans-serif;overflow-wrap:anywhere}"
    "main{max-width:44rem;margin:0 auto;padding:0 .8rem 2rem}"
    ".mode{padding:.5rem .8rem;font-weight:700;letter-spacing:.06em;background:#333}"
    ".live{background:#c00;color:#fff}"
    ".silent{background:#fc0;color:#000}"
    ".title{margin:.9rem 0 0;font-size:1.2rem}"
    ".count{font:700 clamp(2.8rem,17vw,6rem)/1 ui-monospace,monospace;margin:.1rem 0 .5rem;color:#ffb84d}"
    ".alarm{background:#c00;color:#fff;padding:.6rem .8rem;font-weight:700;margin:.6rem 0}"
    "p{margin:.2rem 0}.quiet{color:#b8b8b8}"
    "table{border-collapse:collapse;width:100%;margin:.8rem 0;font-size:.8rem}"
    "th,.whole{overflow-wrap:normal}"
    "td,th{text-align:left;padding:.35rem .4rem .35rem 0;border-bottom:1px solid #444;vertical-align:top}"
    "td.n,th.n{text-align:right}"
    ".trouble{color:#ff7b6b;font-weight:700}"
    ".past{color:#8f8f8f}"
    "h2{font-size:1rem;margin:1.2rem 0 .2rem}"
    "ol{list-style:none;margin:0;padding:0;font:14px/1.4 ui-monospace,monospace}"
    "li{padding:.15rem 0;border-bottom:1px solid #222}";

std::string begin(const std::string& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
           "<meta http-equiv=\"refresh\" content=\"2\"><title>" +
           escaped(title) + "</title><style>" + style + "</style></head><body>";
}

std::string contactsTable(const std::vector<GlanceState::Contact>& contacts) {
    std::string html = "<table><caption class=\"quiet\">Contacts, time of the site</caption><tr>";
    for (const auto& contact : contacts)
        html +=
            std::string("<th scope=\"col\">") + (contact.past ? "✓ " : "") + escaped(contact.key) + "</th>";
    html += "</tr><tr>";
    for (const auto& contact : contacts)
        html += std::string("<td class=\"whole") + (contact.past ? " past\">" : "\">") +
                escaped(contact.time) + "</td>";
    return html + "</tr></table>";
}

std::string bodiesTable(const std::vector<GlanceState::Body>& bodies) {
    if (bodies.empty())
        return "<p class=\"quiet\">No bodies.</p>";
    std::string html =
        "<table><tr><th scope=\"col\">Body</th><th scope=\"col\">State</th>"
        "<th scope=\"col\" class=\"n\">Fired</th><th scope=\"col\" class=\"n\">Dropped</th></tr>";
    for (const auto& body : bodies) {
        html +=
            "<tr><td><b>" + escaped(body.label) + "</b><br><span class=\"quiet\">" + escaped(body.model) +
            (body.battery.empty() ? "" : " · battery " + escaped(body.battery)) + "</span></td><td" +
            (body.trouble ? " class=\"trouble\">" : ">") + escaped(body.symbol + " " + body.state) +
            absl::StrFormat("</td><td class=\"n\">%d</td><td class=\"n%s\">%s%d</td></tr>", body.fired,
                            body.dropped > 0 ? " trouble" : "", body.dropped > 0 ? "▲ " : "", body.dropped);
    }
    return html + "</table>";
}

} // namespace

std::string glancePage(const GlanceState& state) {
    std::string html = begin(state.countdownTitle + " " + state.countdown);
    html += std::string("<div class=\"mode") + (state.live ? " live\">● LIVE" : "\">○ SIMULATED") + " · " +
            escaped(state.eclipse) + "</div><main>";
    if (!state.alarm.empty())
        html += "<div class=\"alarm\" role=\"alert\">▲ " + escaped(state.alarm) + "</div>";
    html += "<p class=\"title\">" + escaped(state.countdownTitle) + "</p><p class=\"count\">" +
            escaped(state.countdown) + "</p><p>" + escaped(state.nextShot) + "</p><p class=\"quiet\">" +
            escaped(state.status) + (state.status.empty() ? "" : " · ") + "as of " + escaped(state.time) +
            "</p>";
    if (state.skipped > 0)
        html += absl::StrFormat("<p class=\"trouble\">⏭ %d skipped</p>", state.skipped);
    html += contactsTable(state.contacts) + bodiesTable(state.bodies) + "<h2>Log</h2><ol>";
    for (const std::string& line : state.log)
        html += "<li>" + escaped(line) + "</li>";
    return html + "</ol></main></body></html>\n";
}

std::string silentGlancePage() {
    return begin("Zenka is silent") +
           "<div class=\"mode silent\">▲ NO WORD FROM ZENKA</div><main><p class=\"title\">The program has "
           "not "
           "been heard of for ten seconds. Look at the laptop.</p></main></body></html>\n";
}

} // namespace zenka::services
