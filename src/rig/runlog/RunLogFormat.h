#pragma once

#include "base/Instant.h"

#include <absl/time/time.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

/// What a whole run has in common.
struct RunLogMeta {
    std::string runKind; ///< "real" or "simulated"
    std::string eclipseId;
    std::string eclipseName;
    std::string site;
    double lat = 0;                         ///< degrees, north positive
    double lon = 0;                         ///< degrees, east positive
    double elev = 0;                        ///< metres
    std::string tz;                         ///< time-zone identifier of the site
    std::map<std::string, double> contacts; ///< hours from the reference instant, by key
    std::string appVersion;
    base::Instant startedAt;
};

/// One frame of a run: fired, dropped, skipped, or with no camera to take it.
struct RunLogEntry {
    std::optional<base::Instant> scheduledWall;
    base::Instant firedWall;
    double offsetSec = 0; ///< clock seconds
    std::string refLabel;
    std::string cameraToken;
    std::string cameraLabel;
    std::string serial;
    std::string backend;
    int iso = 0;
    double aperture = 0;   ///< f-number
    double shutterSec = 0; ///< seconds
    bool bulb = false;
    std::string result; ///< "ok", "dropped", "skipped" or "no-camera"
    double latencyMs = 0;
    std::string note;
    std::string sentShutter;
    int compEV = 0; ///< live compensation asked for, stops
    std::string compNote;

    friend bool operator==(const RunLogEntry&, const RunLogEntry&) = default;
};

/// Something else that happened in a run.
struct RunLogEvent {
    base::Instant at;
    std::string text;
};

/// How a run is written down: docs/data-formats.md.
namespace RunLogFormat {

/// The files' name without its ending: "Zenka real run 2026-08-12 183000", in the machine's time.
std::string baseName(const RunLogMeta& meta, const absl::TimeZone& machineZone);

/// The comment lines and the header of the CSV, with a newline at the end of each.
std::string csvHead(const RunLogMeta& meta);
std::string csvRow(const RunLogEntry& entry, const absl::TimeZone& zone);
/// An event as a comment line of the CSV.
std::string csvEvent(const RunLogEvent& event, const absl::TimeZone& zone);

std::string json(const RunLogMeta& meta, const std::vector<RunLogEntry>& entries,
                 const std::vector<RunLogEvent>& events);

} // namespace RunLogFormat

} // namespace zenka::rig
