#include "rig/checks/Checklist.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "base/TimeWords.h"
#include "eclipse/SiteWords.h"
#include "rig/checks/ChecklistBodies.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr double filterMarginSec = 20;  // off so long before C2, on so long behind C3, as in scripts
constexpr std::size_t mostMoments = 24; // that leave room for the bodies on two pages
constexpr std::size_t longestNameBytes = 80;

std::string tenths(base::Instant instant, const absl::TimeZone& zone) {
    return base::formatTime("%H:%M:%E1S", instant, zone);
}

/// With a minus as long as printers set it.
std::string degrees(double angleDeg) {
    return base::replacedAll(absl::StrFormat("%.1f°", angleDeg), "-", "−");
}

bool isTotalHere(const SiteDesk& site) {
    const auto& circ = site.circ();
    return circ && circ->totalitySeconds > 0 && circ->maxMagnitude >= 1;
}

std::vector<std::string> headLines(const ChecklistSources& rig) {
    const Site& site = rig.site.site();
    const absl::TimeZone zone = rig.site.timeZone();
    const base::Instant day = rig.site.wallAt(0);
    return {rig.site.eclipse().rec.name,
            absl::StrFormat("%s · %s · %.0f m", site.label, eclipse::positionText(site.lat, site.lon, 5),
                            site.elev),
            absl::StrFormat("Times of %s (%s, UTC%s) · made %s by Zenka %s", zone.name(),
                            base::tzAbbr(zone.name(), day), base::formatTime("%Ez", day, zone),
                            base::formatTime("%Y-%m-%d %H:%M", rig.now, zone), rig.appVersion)};
}

base::PrintedSection contacts(const ChecklistSources& rig) {
    base::PrintedSection section{.title = "Contacts"};
    const auto& circ = rig.site.circ();
    if (!circ || circ->maxMagnitude <= 0) {
        section.lines = {"This eclipse is not seen at this site."};
        return section;
    }
    const absl::TimeZone zone = rig.site.timeZone();
    const auto& horizon = rig.horizons.here().get();
    section.table.heads = {"", "site time", "UTC", "Sun up", "azimuth"};
    if (horizon)
        section.table.heads.emplace_back("over the terrain");
    for (const eclipse::ContactEvent& event : circ->events) {
        std::vector<std::string> row{event.key, tenths(event.utc, zone),
                                     tenths(event.utc, absl::UTCTimeZone()), degrees(event.sunAltDeg),
                                     degrees(event.sunAzDeg)};
        if (horizon)
            row.push_back(degrees(event.sunAltDeg - eclipse::TerrainHorizon::elevationAt(
                                                        horizon->result.samples, event.sunAzDeg)));
        section.table.rows.push_back(std::move(row));
    }
    std::vector<std::string> facts;
    if (circ->totalitySeconds > 0)
        facts.push_back((isTotalHere(rig.site) ? "Totality " : "Ring ") +
                        eclipse::durationText(circ->totalitySeconds));
    facts.push_back(absl::StrFormat("magnitude %.4f", circ->maxMagnitude));
    if (circ->sunriseUTC)
        facts.push_back("sunrise " + base::localHMS(*circ->sunriseUTC, zone.name()));
    if (circ->sunsetUTC)
        facts.push_back("sunset " + base::localHMS(*circ->sunsetUTC, zone.name()));
    section.lines.push_back(base::joined(facts, " · "));
    return section;
}

struct Moment {
    double offsetSec = 0;
    std::string ref;
    std::string words;
};

/// When the filter comes off and goes on; nothing where it stays on.
std::vector<Moment> filterMoments(const SiteDesk& site) {
    const auto& hours = site.contactTHours();
    const auto c2 = hours.find("C2");
    const auto c3 = hours.find("C3");
    if (!isTotalHere(site) || c2 == hours.end() || c3 == hours.end())
        return {};
    return {{c2->second * 3600 - filterMarginSec, "C2 −20s", "FILTERS OFF"},
            {c3->second * 3600 + filterMarginSec, "C3 +20s", "FILTERS ON"}};
}

base::PrintedSection byHand(const ChecklistSources& rig) {
    base::PrintedSection section{.title = "By hand"};
    std::vector<Moment> moments;
    std::size_t more = 0;
    for (const script::AudioCue& cue : rig.script.audioCues()) {
        if (!cue.shell.empty())
            continue; // the computer's own work
        if (moments.size() < mostMoments)
            moments.push_back({cue.offsetSec, cue.refLabel, cue.text});
        else
            ++more;
    }
    const std::vector<Moment> filters = filterMoments(rig.site);
    moments.insert(moments.end(), filters.begin(), filters.end());
    std::ranges::stable_sort(moments, {}, &Moment::offsetSec);
    if (!moments.empty())
        section.table.heads = {"site time", "", "what is said or to be done", "done"};
    for (const Moment& moment : moments)
        section.table.rows.push_back(
            {base::formatTime("%H:%M:%S", rig.site.wallAt(moment.offsetSec), rig.site.timeZone()), moment.ref,
             moment.words, "☐"});
    if (more > 0)
        section.lines.push_back(absl::StrFormat("and %d more, which are spoken", more));
    if (filters.empty())
        section.lines.emplace_back("The Sun is never covered wholly here: filters stay on throughout.");
    return section;
}

} // namespace

base::PrintedList checklist(const ChecklistSources& rig) {
    base::PrintedList list{.title = "Zenka Checklist", .lines = headLines(rig)};
    list.sections.push_back(contacts(rig));
    list.sections.push_back(byHand(rig));
    std::ranges::move(checklistBodies(rig), std::back_inserter(list.sections));
    list.sections.push_back(
        {.title = "Computer",
         .boxes = {"power", "clock against GPS or server", "sleep off", "brightness not automatic",
                   "sound heard", "site confirmed", "pre-flight green", "armed"}});
    list.sections.push_back(
        {.title = "After totality",
         .boxes = {"filters on", "partials run on", "stop after C4", "cards out", "run analyzed"}});
    return list;
}

std::string checklistName(const std::string& eclipseId, const std::string& site) {
    std::string name;
    for (const char letter : site) {
        const auto code = static_cast<unsigned char>(letter);
        name += code < 0x20 || code == 0x7f || letter == '/' || letter == '\\' ? ' ' : letter;
    }
    if (name.size() > longestNameBytes) {
        std::size_t end = longestNameBytes; // not within a letter of several bytes
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xc0) == 0x80)
            --end;
        name.resize(end);
    }
    return std::string(
        base::trimmed("Zenka Checklist " + eclipseId + " " + std::string(base::trimmed(name))));
}

} // namespace zenka::rig
