#include "rig/AssistantContext.h"

#include "base/Text.h"
#include "base/TimeWords.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace zenka::rig {

namespace {

constexpr std::size_t mostListed = 40;   ///< far above any rig
constexpr std::size_t longestName = 200; ///< bytes of a label, a model, a place

/// A name in one line of fair length, whatever it came from.
std::string plainName(std::string_view text) {
    std::string name;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (name.size() >= longestName && (byte & 0xC0) != 0x80)
            break;
        name += byte < 0x20 || byte == 0x7F ? ' ' : c;
    }
    return name;
}

std::string listed(const std::vector<std::string>& items) {
    if (items.empty())
        return "none";
    if (items.size() <= mostListed)
        return base::joined(items, "; ");
    return base::joined({items.begin(), items.begin() + mostListed}, "; ") +
           absl::StrFormat("; and %d more", items.size() - mostListed);
}

std::string siteLines(const SiteDesk& desk) {
    const eclipse::EclipseRecord& record = desk.eclipse().rec;
    const Site& site = desk.site();
    return absl::StrFormat("ECLIPSE: %s (%s)\n"
                           "SITE: %s, latitude %.5f, longitude %.5f, %.0f m, time zone %s%s\n",
                           record.name, record.type, plainName(site.label), site.lat, site.lon, site.elev,
                           plainName(site.tzId),
                           desk.locationConfirmed().get() ? "" : " (not confirmed yet)");
}

std::string contactsLine(const SiteDesk& desk) {
    const auto& circ = desk.circ();
    const bool seen = circ && circ->maxMagnitude > 0;
    std::vector<std::string> moments;
    if (seen)
        for (const eclipse::ContactEvent& event : circ->events)
            moments.push_back(absl::StrFormat("%s %s (Sun %.0f°)", event.key,
                                              base::localHMS(event.utc, desk.site().tzId), event.sunAltDeg));
    const base::Instant day = desk.wallAt((desk.tC1() + desk.tC4()) / 2);
    return absl::StrFormat("CONTACTS (local %s): %s\n", base::tzAbbr(desk.site().tzId, day),
                           moments.empty() ? "none, the eclipse is not seen from this site"
                                           : base::joined(moments));
}

std::string totalityLine(const SiteDesk& desk) {
    const auto& circ = desk.circ();
    const bool central = circ && circ->isTotal;
    // Cut to a tenth before it is split, so that no 60.0 comes of it.
    const double tenths = central ? std::floor(circ->totalitySeconds * 10) : 0;
    const int minutes = static_cast<int>(tenths / 600);
    const char* kind = !central                   ? ", there is no central phase here"
                       : circ->maxMagnitude < 1.0 ? ", the central phase is annular"
                                                  : "";
    return absl::StrFormat("TOTALITY DURATION at this site: %d:%04.1f (mm:ss)%s\n", minutes,
                           (tenths - 600.0 * minutes) / 10, kind);
}

bool isConnected(const CameraRoster& roster, const cameras::CameraControl& camera) {
    return camera.connected() && !roster.isDisconnected(camera.id());
}

std::string bodiesLine(const AssistantSources& rig) {
    std::vector<std::string> rows;
    for (const auto& camera : rig.roster.cameras()) {
        if (!isConnected(rig.roster, *camera))
            continue;
        rows.push_back(absl::StrFormat("%s [%s], %s driver, min gap ~%gs",
                                       plainName(rig.roster.labelFor(*camera)), plainName(camera->model()),
                                       camera->backend(), rig.cadence.bodyFloorSec(*camera)));
    }
    return absl::StrFormat("CAMERAS CONNECTED NOW (%d): %s\n", rows.size(), listed(rows));
}

std::string spacingLines(const AssistantSources& rig) {
    double floor = rig.cadence.suggestedMinSpacingSec();
    for (const auto& camera : rig.roster.cameras())
        if (isConnected(rig.roster, *camera))
            floor = std::max(floor, rig.cadence.bodyFloorSec(*camera));
    return absl::StrFormat(
        "SHOT SPACING for this rig: RECOMMENDED ~1.0s between corona-bracket frames (reliability over frame "
        "count — real multi-cam rigs drop frames at 0.4-0.6s but run clean at 1s, and a 3-min totality still "
        "yields ~180 frames/body), more for a body whose min gap is longer. Write floor of the slowest body "
        "~%gs where a setting changes; ~%gs will do between identical frames.\n"
        "EXPOSURE OCCUPANCY: the gap to the next frame must be at least the EXPOSURE TIME plus the write "
        "floor (~%gs above), NOT just the larger of the two.\n"
        "LONG-EXPOSURE NOISE REDUCTION: for any exposure over 1s, leave ~2x the shutter time before the next "
        "frame in case the user has LENR on (it shoots a matching dark frame, during which the body takes no "
        "other).\n",
        floor, rig.cadence.suggestedSameGapSec(), floor);
}

std::string libraryLine(const LibraryDesk& desk) {
    std::vector<std::string> rows;
    for (const LibraryDesk::Entry& entry : desk.entries()) {
        const auto& lens = entry.lens;
        rows.push_back(plainName(entry.label) + " [" + plainName(entry.model) +
                       (lens ? ", lens " + plainName(*lens) : "") + "]");
    }
    return "CAMERAS IN LIBRARY (known bodies): " + listed(rows) + "\n";
}

std::string scriptNamesLine(const ScriptDesk& desk) {
    std::vector<std::string> names;
    for (const std::string& token : desk.cameraTokens())
        names.push_back(plainName(token));
    return "CAMERA NAMES IN CURRENT SCRIPT: " + listed(names) + "\n";
}

} // namespace

std::string assistantContext(const AssistantSources& rig) {
    return siteLines(rig.site) + contactsLine(rig.site) + totalityLine(rig.site) + bodiesLine(rig) +
           spacingLines(rig) + libraryLine(rig.library) + scriptNamesLine(rig.script);
}

} // namespace zenka::rig
