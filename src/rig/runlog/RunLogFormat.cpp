#include "rig/runlog/RunLogFormat.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

namespace zenka::rig::RunLogFormat {

namespace {

constexpr char timeOfDay[] = "%H:%M:%E3S";

/// A text field of the CSV, in quotes where it has to be.
std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == text.npos)
        return std::string(text);
    return '"' + base::replacedAll(text, "\"", "\"\"") + '"';
}

/// A comment ends at its line's end.
std::string oneLine(std::string_view text) {
    return base::replacedAll(base::replacedAll(text, "\r", " "), "\n", " ");
}

} // namespace

std::string baseName(const RunLogMeta& meta, const absl::TimeZone& machineZone) {
    return "Zenka " + meta.runKind + " run " +
           base::formatTime("%Y-%m-%d %H%M%S", meta.startedAt, machineZone);
}

std::string csvHead(const RunLogMeta& meta) {
    const absl::TimeZone zone = base::timeZoneOrUtc(meta.tz);
    std::string head;
    head += "# Zenka run log: " + meta.runKind + "\n";
    head += "# eclipse: " + meta.eclipseName + " (" + meta.eclipseId + ")\n";
    head += absl::StrFormat("# site: %s  %.5f, %.5f @ %.0f m  tz %s\n", oneLine(meta.site), meta.lat,
                            meta.lon, meta.elev, oneLine(meta.tz));
    head += "# started: " + base::formatTime("%Y-%m-%d %H:%M:%S", meta.startedAt, zone) + "  app v" +
            meta.appVersion + "\n";
    head +=
        "scheduled_local,fired_local,offset_sec,ref,camera_token,camera_label,serial,backend,iso,f_number,"
        "shutter,sent_shutter,bulb,result,latency_ms,note,comp_ev,comp_note\n";
    return head;
}

std::string csvRow(const RunLogEntry& entry, const absl::TimeZone& zone) {
    const std::string scheduled =
        entry.scheduledWall ? base::formatTime(timeOfDay, *entry.scheduledWall, zone) : std::string();
    const std::string shutter = entry.bulb ? "BULB" : exposure::shutterLabel(entry.shutterSec);
    return absl::StrFormat("%s,%s,%.3f,%s,%s,%s,%s,%s,%d,%g,%s,%s,%d,%s,%.0f,%s,%d,%s\n", scheduled,
                           base::formatTime(timeOfDay, entry.firedWall, zone), entry.offsetSec,
                           csvField(entry.refLabel), csvField(entry.cameraToken), csvField(entry.cameraLabel),
                           csvField(entry.serial), csvField(entry.backend), entry.iso, entry.aperture,
                           shutter, csvField(entry.sentShutter), entry.bulb ? 1 : 0, csvField(entry.result),
                           entry.latencyMs, csvField(entry.note), entry.compEV, csvField(entry.compNote));
}

std::string csvEvent(const RunLogEvent& event, const absl::TimeZone& zone) {
    return "# event " + base::formatTime(timeOfDay, event.at, zone) + " " + oneLine(event.text) + "\n";
}

std::string json(const RunLogMeta& meta, const std::vector<RunLogEntry>& entries,
                 const std::vector<RunLogEvent>& events) {
    using Json = nlohmann::json; // its objects keep their keys sorted
    Json shots = Json::array();
    for (const RunLogEntry& entry : entries) {
        shots.push_back({{"scheduled_offset_sec", entry.offsetSec},
                         {"fired_epoch", entry.firedWall.epochSec},
                         {"ref", entry.refLabel},
                         {"camera_token", entry.cameraToken},
                         {"camera_label", entry.cameraLabel},
                         {"serial", entry.serial},
                         {"backend", entry.backend},
                         {"iso", entry.iso},
                         {"f_number", entry.aperture},
                         {"shutter_sec", entry.shutterSec},
                         {"sent_shutter", entry.sentShutter},
                         {"bulb", entry.bulb},
                         {"result", entry.result},
                         {"latency_ms", entry.latencyMs},
                         {"note", entry.note},
                         {"comp_ev", entry.compEV},
                         {"comp_note", entry.compNote}});
    }
    Json eventList = Json::array();
    for (const RunLogEvent& event : events)
        eventList.push_back({{"epoch", event.at.epochSec}, {"text", event.text}});

    const Json run{{"run_kind", meta.runKind},
                   {"eclipse_id", meta.eclipseId},
                   {"eclipse", meta.eclipseName},
                   {"site", meta.site},
                   {"lat", meta.lat},
                   {"lon", meta.lon},
                   {"elev", meta.elev},
                   {"tz", meta.tz},
                   {"app_version", meta.appVersion},
                   {"started_epoch", meta.startedAt.epochSec},
                   {"contacts_t_hours", meta.contacts},
                   {"shot_count", entries.size()},
                   {"shots", std::move(shots)},
                   {"events", std::move(eventList)}};
    // A script may hold bytes that are no UTF-8; they must not cost the whole log.
    return run.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace zenka::rig::RunLogFormat
