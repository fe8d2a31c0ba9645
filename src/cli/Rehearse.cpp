#include "cli/Rehearse.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "cli/Print.h"
#include "eclipse/Catalog.h"
#include "platform/LinuxClock.h"
#include "platform/LinuxFiles.h"
#include "platform/LinuxFolders.h"
#include "platform/virtual/VirtualPorts.h"
#include "rig/RigModel.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <numeric>
#include <optional>

namespace zenka::cli {

namespace {

constexpr std::size_t placeValues = 5;
constexpr char simulatedModel[] = "Generic PTP";

struct Place {
    std::string eclipseId;
    rig::Site site;
};

/// Reads eclipse, position and zone; a sentence where a value makes no sense.
std::optional<std::string> readPlace(std::span<const std::string> values, Place& place) {
    place.eclipseId = values[0];
    const auto known = std::ranges::any_of(eclipse::Catalog::all(),
                                           [&](const auto& row) { return row.id == place.eclipseId; });
    if (!known)
        return "no eclipse \"" + values[0] + "\" in the catalogue: give its date, as 2026-08-12";
    const auto lat = base::readNumber(values[1]);
    const auto lon = base::readNumber(values[2]);
    const auto elev = base::readNumber(values[3]);
    if (!lat || *lat < -90 || *lat > 90)
        return "cannot read the latitude \"" + values[1] + "\": give degrees from -90 to 90, north positive";
    if (!lon || *lon < -180 || *lon > 180)
        return "cannot read the longitude \"" + values[2] +
               "\": give degrees from -180 to 180, east positive";
    if (!elev)
        return "cannot read the elevation \"" + values[3] + "\": give metres";
    if (!base::findTimeZone(values[4]))
        return "unknown time zone \"" + values[4] + "\": give a name such as Europe/Madrid";
    place.site = {.lat = *lat, .lon = *lon, .elev = *elev, .label = "", .tzId = values[4]};
    place.site.label = absl::StrFormat("%.4f, %.4f", *lat, *lon);
    return std::nullopt;
}

std::string siteTime(rig::RigModel& rig, double clock) {
    return base::formatTime("%H:%M:%S", rig.site().wallAt(clock), rig.site().timeZone());
}

void printHead(rig::RigModel& rig, const std::string& scriptPath) {
    const rig::Site& site = rig.site().site();
    printLine("Rehearsing " + scriptPath);
    printLine(absl::StrFormat("%s at %s: %.5f, %.5f, %.0f m, %s", rig.site().eclipse().rec.name, site.label,
                              site.lat, site.lon, site.elev, site.tzId));
    std::string contacts;
    const auto circ = rig.site().circ().value_or(eclipse::LocalCircumstances{});
    for (const eclipse::ContactEvent& event : circ.events)
        contacts += absl::StrFormat("%s%s %s (Sun %.0f°)", contacts.empty() ? "" : "   ", event.key,
                                    siteTime(rig, event.tHours * 3600), event.sunAltDeg);
    printLine(contacts);
    for (const script::ScriptDiag& diag : rig.script().diagnostics())
        printLine(absl::StrFormat("line %d, %s: %s", diag.lineNo, diag.severity, diag.message));
}

int total(const std::map<std::string, int>& counts) {
    return std::accumulate(counts.begin(), counts.end(), 0,
                           [](int sum, const auto& count) { return sum + count.second; });
}

} // namespace

void rehearse(const std::string& scriptPath, std::span<const std::string> placeArguments) {
    platform::LinuxFiles files;
    const auto bytes = files.read(scriptPath);
    const auto text = bytes ? base::utf8Text(*bytes) : std::nullopt;
    if (!text) {
        printLine("cannot read " + scriptPath);
        return;
    }
    std::optional<Place> place;
    if (placeArguments.size() >= placeValues) {
        if (const auto fault = readPlace(placeArguments.first(placeValues), place.emplace())) {
            printLine(*fault);
            return;
        }
    }

    platform::LinuxFolders folders;
    platform::VirtualPorts machine(platform::LinuxClock().now(), folders, files);
    rig::RigModel rig(machine.all, ZENKA_VERSION);
    rig.keeper().keepNothing(); // the window may have a run that can be resumed
    if (place)
        rig.site().choose(place->eclipseId, place->site);
    rig.script().load(*text, std::filesystem::path(scriptPath).filename().string());
    rig.recompute();
    for (const std::string& token : rig.script().cameraTokens())
        rig.roster().setLabel(*rig.roster().addPlanningCamera(simulatedModel), token);
    printHead(rig, scriptPath);

    rig.log().lineAdded().connect([&rig](const std::string& line) {
        printLine(siteTime(rig, rig.transport().clockNow()) + "  " + line);
    });
    rig.fireClock().startClock();
    const auto timeline = rig.transport().timeline();
    rig.transport().scrubTo(timeline.first);
    rig.transport().togglePlay();
    machine.time.runUntil([&rig] { return !rig.transport().runActive(); },
                          base::Seconds{timeline.last - timeline.first + 60});
    rig.logbook().drain(base::Seconds{60});

    const auto csv = rig.logbook().lastCsvPath();
    printLine(absl::StrFormat(
        "Rehearsed %d captures on %d bodies: %d frames ok, %d dropped, %d skipped. Largest "
        "lateness %.1f ms. Run log: %s",
        rig.script().captures().size(), rig.roster().cameras().size(), total(rig.outcomes().shotCounts()),
        total(rig.outcomes().drops()), rig.fireLoop().skippedCount().get(),
        rig.logbook().lateness().largest(),
        files.exists(csv) ? csv.string() : "none, cannot write to " + csv.parent_path().string()));
}

} // namespace zenka::cli
