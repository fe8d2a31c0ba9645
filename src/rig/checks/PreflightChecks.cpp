#include "rig/checks/PreflightChecks.h"

#include "base/Text.h"
#include "rig/shared/PlatformWords.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace zenka::rig {

namespace {

using Cameras = std::vector<CameraRoster::Camera>;
using enum PreflightStatus;

const std::string_view computer = platformWords::computer;
const std::string_view computerAtStart = platformWords::computerAtStart;

/// The list as it grows.
class List {
public:
    void add(std::string title, PreflightStatus status, std::string detail, bool holdsArming = true) {
        checks.push_back({.id = base::Uuid::fresh(),
                          .title = std::move(title),
                          .detail = std::move(detail),
                          .status = status,
                          .holdsArming = holdsArming});
    }
    std::vector<PreflightCheck> checks;
};

std::string quantity(double value, const char* unit) {
    return absl::StrFormat("%.0f %s", value, unit);
}

Cameras liveCameras(const CameraRoster& roster) {
    Cameras live;
    std::ranges::copy_if(roster.cameras(), std::back_inserter(live), [&](const auto& camera) {
        return camera->isReal() && camera->connected() && !roster.isDisconnected(camera->id());
    });
    return live;
}

/// The labels of those for which something holds.
template <typename Holds>
std::string labelsWhere(const PreflightSources& rig, const Cameras& cameras, Holds holds) {
    std::vector<std::string> names;
    for (const auto& camera : cameras) {
        if (holds(*camera))
            names.push_back(rig.roster.labelFor(*camera));
    }
    return base::joined(names);
}

// --- where and when

void location(const PreflightSources& rig, List& list) {
    const Site& site = rig.site.site();
    const auto& circ = rig.site.circ();
    const bool visible = circ && circ->maxMagnitude > 0;
    std::string phase = "no eclipse visible at this site";
    PreflightStatus status = fail;
    if (visible && circ->isTotal) {
        const int seconds = static_cast<int>(std::lround(circ->totalitySeconds));
        const bool annular =
            rig.site.eclipse().geometry(circ->event("MAX")->tHours, rig.site.observer()).L2 > 0;
        phase = absl::StrFormat("%s here: %d:%02d", annular ? "annularity" : "totality", seconds / 60,
                                seconds % 60);
        status = rig.site.locationConfirmed().get() ? ok : warn;
    } else if (visible) {
        phase = "NO totality at this site (partial only)";
        status = warn;
    }
    list.add("Location", status,
             absl::StrFormat("%s · %.3f, %.3f · %s", site.label.empty() ? "Custom location" : site.label,
                             site.lat, site.lon, phase));
    if (rig.sites.timeZoneIsEstimate())
        list.add("Time zone estimated", warn,
                 site.tzId +
                     " was guessed from your longitude because no lookup was available. It carries no "
                     "daylight-saving rule, so contact times could be an hour out. Set the zone by hand in "
                     "Location.");
    if (!rig.site.locationConfirmed().get())
        list.add("Location not set", fail,
                 "You are still on the shipped default (" + site.label +
                     "). Every contact time and every exposure is computed from the site, so a run started "
                     "here would be confidently wrong. Open Location and choose where you are actually "
                     "standing.");
}

// --- bodies

void modes(const PreflightSources& rig, const Cameras& live, List& list) {
    if (live.empty())
        list.add("Cameras", warn, "No live cameras. This runs as a simulation only.");
    else
        list.add("Cameras", ok, absl::StrFormat("%d live connected.", live.size()));
    const auto modeOf = [&](const auto& camera) { return rig.modes.of(camera.id()); };
    const auto known = [&](const auto& camera) { return modeOf(*camera).isManual.has_value(); };
    if (std::ranges::any_of(live, known)) {
        const std::string names = labelsWhere(
            rig, live, [&](const auto& camera) { return !modeOf(camera).isManual.value_or(true); });
        list.add("Manual mode", names.empty() ? ok : fail,
                 names.empty() ? "All live cameras in Manual."
                               : "Not in Manual: " + names + ". Set the dial to M or exposures won't apply.");
    }
    if (std::ranges::any_of(live, [&](const auto& camera) { return modeOf(*camera).autoIso.has_value(); })) {
        const std::string names = labelsWhere(
            rig, live, [&](const auto& camera) { return modeOf(camera).autoIso.value_or(false); });
        list.add("Auto-ISO", names.empty() ? ok : fail,
                 names.empty() ? "Off on every body we could ask."
                               : "Auto-ISO is ON: " + names +
                                     ". The camera will choose its own ISO and ignore every ISO in your "
                                     "script. Turn it off in the camera menu, then Re-check.");
    }
    const auto silent = std::ranges::count_if(live, [&](const auto& camera) { return !known(camera); });
    if (silent > 0)
        list.add("Mode not readable", warn,
                 "Zenka could not read the exposure mode on " +
                     labelsWhere(rig, live, [&](const auto& camera) { return !modeOf(camera).isManual; }) +
                     ". That is not a failure, but it means the checks above cannot vouch for " +
                     (silent == 1 ? "it" : "them") +
                     ", confirm by hand that the dial is on M and Auto-ISO is off.");
}

void unprofiledCadence(const PreflightSources& rig, const Cameras& live, List& list) {
    for (const auto& camera : live) {
        const auto alert = rig.cadence.alertFor(*camera);
        if (alert && alert->estimated)
            list.add("Cadence (unprofiled)", warn,
                     absl::StrFormat("%s has never been profiled. The script's tightest gap is %.2gs vs a "
                                     "%.2gs floor, %s's driver-wide guess — close enough to matter if this "
                                     "body runs slow. Tools → Camera Profiler measures it in about 60s.",
                                     alert->cameraName, alert->scriptGapSec, alert->bodyFloorSec,
                                     camera->backend()));
    }
}

void usbBuses(const Cameras& live, List& list) {
    std::map<int, int> bodies;
    for (const auto& camera : live) {
        if (const auto bus = camera->usbBus())
            ++bodies[*bus];
    }
    for (const auto& [bus, count] : bodies) {
        if (count >= 3)
            list.add("USB bus", warn,
                     absl::StrFormat("%d cameras share one USB bus. Zenka auto-staggers their writes, but %d "
                                     "bodies oversubscribe one bus's bandwidth during totality (the "
                                     "uniform-drop failure from the 4-cam test). Split them across separate "
                                     "USB ports or powered hubs.",
                                     count, count));
        else if (count == 2)
            list.add("USB bus", ok,
                     "2 cameras share one USB bus. Zenka auto-staggers their RAW writes ~0.35s apart so they "
                     "serialize cleanly, so 2 on a bus is fine — but putting each on its own bus is safest.");
    }
}

void driveDials(const PreflightSources& rig, const Cameras& live, List& list) {
    for (const auto& camera : live) {
        if (!camera->driveModeBurst() || camera->singleShotImmuneToDrive())
            continue;
        const std::string label = rig.roster.labelFor(*camera);
        const bool bulb = std::ranges::any_of(rig.script.captures(), [&](const script::Capture& capture) {
            return capture.bulb && rig.roster.cameraMatches(*camera, capture.camera);
        });
        if (camera->lacksSingleMode())
            list.add("Drive dial", fail,
                     label + " on a continuous/BURST drive mode. This body has no single-frame mode over "
                             "USB, so a single fire sprays a burst and can wedge it writing to the card "
                             "mid-totality. Set the dial to Single, then re-detect.");
        else if (bulb)
            list.add("Drive dial", fail,
                     label + " on a BURST drive mode, and your script has long (bulb) exposures. On a burst "
                             "dial a long exposure fires a BURST of frames, not one — wrong images and a "
                             "buffer flood that can wedge the body mid-totality. Set the dial to Single, "
                             "then re-detect.");
        else
            list.add("Drive dial", warn,
                     label + " on a BURST drive mode. Set the dial to Single — a long/bulb exposure would "
                             "spray a burst instead of one frame. Re-detect after changing it.");
    }
}

void focusAndHandshake(const PreflightSources& rig, const Cameras& live, List& list) {
    for (const auto& camera : live) {
        if (camera->focusIsMF() == false)
            list.add("Focus mode", warn,
                     rig.roster.labelFor(*camera) +
                         " in AUTOFOCUS. Switch to Manual Focus (the lens switch or the body's focus mode) "
                         "and prefocus — on AF the camera can refuse the remote shutter until focus locks, "
                         "which drops shots.");
    }
    for (const auto& camera : live) {
        const std::string label = rig.roster.labelFor(*camera);
        if (camera->handshakeOK() == false)
            list.add(
                "Camera handshake", fail,
                absl::StrFormat("%s connected but the control handshake didn't finish, so %s can't fire. "
                                "Unplug and replug (straight into the %s or a powered hub, not a shared "
                                "dock), then Detect again.",
                                label, label, computer));
    }
}

void batteries(const PreflightSources& rig, const Cameras& live, List& list) {
    const auto percentOf = [&](const auto& camera) {
        return rig.modes.of(camera.id()).batteryPercent.value_or(100);
    };
    const std::string criticals =
        labelsWhere(rig, live, [&](const auto& camera) { return percentOf(camera) < 10; });
    const std::string low = labelsWhere(rig, live, [&](const auto& camera) {
        return percentOf(camera) <= rig.batteries.lowBatteryThreshold();
    });
    if (!criticals.empty())
        list.add("Battery", fail, criticals + " critically low. Swap before you arm.");
    else if (!low.empty())
        list.add("Battery", warn, "Low: " + low + ". Consider a fresh battery.");
}

// --- script

void tailFrames(const PreflightSources& rig, List& list) {
    const auto& captures = rig.script.captures();
    const auto& eclipse = rig.site.eclipse();
    const auto observer = rig.site.observer();
    const auto sunIsDown = [&](const script::Capture& capture) {
        return eclipse.geometry(capture.offsetSec / 3600, observer).altDeg < 0;
    };
    const auto lastInSun = std::find_if_not(captures.rbegin(), captures.rend(), sunIsDown).base();
    if (lastInSun == captures.end())
        return;
    list.add("Tail frames", warn,
             base::counted(captures.end() - lastInSun, "frame") + " with the Sun below the horizon, from " +
                 lastInSun->refLabel +
                 " on. These won't capture the Sun — usually the timelapse runs past sunset here. Trim the "
                 "tail, or keep them if intended.");
}

/// Only where the horizon was looked up.
void horizon(const PreflightSources& rig, List& list) {
    const auto& known = rig.horizons.here().get();
    const auto& circ = rig.site.circ();
    if (!known || !circ)
        return;
    std::vector<std::string> hidden;
    for (const ContactClearance& contact : contactClearances(*circ, known->result.samples)) {
        if (contact.hidden())
            hidden.push_back(absl::StrFormat("%s (Sun %.1f°, horizon %.1f°)", contact.key, contact.sunAltDeg,
                                             contact.horizonDeg));
    }
    if (hidden.empty())
        list.add("Horizon", ok,
                 "The Sun stands clear of the " + known->result.source + " at every contact that is up.");
    else
        list.add("Horizon", warn,
                 "The " + known->result.source + " hides the Sun at " + base::joined(hidden) +
                     ". Open Location to see where, and choose a place with a freer view.");
}

void scriptCameras(const PreflightSources& rig, List& list) {
    const auto& byToken = rig.script.capturesByToken();
    for (const auto& missing : rig.roster.missingCameras(rig.script.cameraTokens())) {
        const auto shots = byToken.find(missing.token);
        list.add(
            "Script cameras", warn,
            absl::StrFormat("%s not connected (%s). Those shots only simulate.", missing.token,
                            base::counted(shots == byToken.end() ? 0 : std::ssize(shots->second), "shot")));
    }
}

void scriptValidation(const PreflightSources& rig, List& list) {
    const auto& issues = rig.validator.latestIssues();
    if (!issues)
        return list.add("Script validation", warn, "Still being looked at. Press Re-check in a moment.");
    std::vector<script::ScriptDiag> all = rig.script.diagnostics();
    std::ranges::copy(*issues, std::back_inserter(all));
    for (const auto& [severity, status] : {std::pair("error", fail), std::pair("warning", warn)}) {
        const auto first = std::ranges::find(all, severity, &script::ScriptDiag::severity);
        if (first == all.end())
            continue;
        const auto count = std::ranges::count(all, severity, &script::ScriptDiag::severity);
        return list.add("Script validation", status,
                        absl::StrFormat("%d %s(s). First: %s", count, severity, first->message));
    }
    list.add("Script validation", ok, "No timing or cadence issues.");
}

void commands(const PreflightSources& rig, List& list) {
    const auto& waiting = rig.consent.waiting().get();
    if (!waiting.empty())
        list.add("Commands", warn,
                 absl::StrFormat("%s of the script came with its file and will not be run before you allow "
                                 "it. Read what is to be run under Script, Commands….",
                                 base::counted(std::ssize(waiting), "command")));
}

void sharedTokens(const PreflightSources& rig, List& list) {
    for (const std::string& token : rig.script.cameraTokens()) {
        const Cameras bodies = rig.roster.camerasFor(token);
        if (bodies.size() < 2)
            continue;
        const std::string names = labelsWhere(rig, bodies, [](const auto&) { return true; });
        list.add(
            "Shared camera token", warn,
            absl::StrFormat("%d cameras (%s) all match script token “%s”. Give each camera its own token "
                            "so every body fires every shot.",
                            bodies.size(), names, token));
    }
}

// --- the computer

void machine(const PreflightSources& rig, List& list) {
    if (rig.audio.systemMuted().get())
        list.add("Audio", warn,
                 absl::StrFormat("Your %s is muted. You won't hear voice or battery cues.", computer));
    const SystemHealth& health = rig.health.health().get();
    const auto heat = health.thermal.value_or(ports::ThermalState::nominal);
    if (heat >= ports::ThermalState::serious)
        list.add(absl::StrFormat("%s temperature", computerAtStart),
                 heat == ports::ThermalState::critical ? fail : warn,
                 "Running " + wordOf(heat) + ". Move it into shade and give it airflow.");
    if (health.lowPowerMode)
        list.add("Low Power Mode", warn,
                 absl::StrFormat(
                     "Low Power Mode is ON. It throttles the CPU and can drop shots. Turn it off in %s.",
                     platformWords::powerSettings));
}

void clock(const PreflightSources& rig, List& list) {
    if (const auto offset = rig.time.gpsOffsetSeconds().get()) {
        list.add(
            "Clock source", ok,
            absl::StrFormat("GPS lock: arming to satellite UTC (accurate offline). %s clock is %.1f s %s; "
                            "it will be corrected automatically.",
                            computerAtStart, std::abs(*offset), *offset >= 0 ? "ahead" : "behind"));
        return;
    }
    const auto skew = rig.time.clockSkewSeconds().get();
    if (!skew || std::abs(*skew) <= 5)
        return;
    const double seconds = std::abs(*skew);
    const std::string amount = seconds < 90 ? quantity(seconds, "s") : quantity(seconds / 60, "min");
    const bool ahead = *skew > 0;
    list.add(absl::StrFormat("%s clock", computerAtStart), fail,
             absl::StrFormat(
                 "Your %s clock is ~%s %s real time. Every shot is contact-relative, so this fires "
                 "the whole script %s %s. Plug in a GPS puck, or turn on Set time automatically in %s.",
                 computer, amount, ahead ? "ahead of" : "behind", amount, ahead ? "early" : "late",
                 platformWords::clockSettings));
}

void powerAndDisk(const PreflightSources& rig, List& list) {
    const SystemHealth& health = rig.health.health().get();
    if (health.hasInternalBattery && !health.onACPower) {
        const auto percent = health.macBatteryPercent;
        list.add("Power", percent && *percent <= 20 ? fail : warn,
                 "Running on battery" + (percent ? absl::StrFormat(" (%d%%)", *percent) : std::string()) +
                     ". The battery may not last a full eclipse run. Plug into wall power.");
    }
    if (health.freeDiskGB && *health.freeDiskGB < 5)
        list.add("Disk space", *health.freeDiskGB < 1 ? fail : warn,
                 absl::StrFormat("Only %.1f GB free. The run log needs headroom. Free up space.",
                                 *health.freeDiskGB));
}

} // namespace

std::vector<PreflightCheck> preflightChecks(const PreflightSources& rig) {
    const Cameras live = liveCameras(rig.roster);
    List list;
    location(rig, list);
    modes(rig, live, list);
    list.add(
        "Screen brightness", warn,
        absl::StrFormat("Turn OFF “Automatically adjust brightness” (%s). When the sky darkens at totality "
                        "your %s will dim with it, and the screen can become unreadable exactly when you "
                        "want to see the run.",
                        platformWords::displaySettings, computer),
        false);
    tailFrames(rig, list);
    horizon(rig, list);
    unprofiledCadence(rig, live, list);
    usbBuses(live, list);
    driveDials(rig, live, list);
    focusAndHandshake(rig, live, list);
    batteries(rig, live, list);
    scriptCameras(rig, list);
    scriptValidation(rig, list);
    commands(rig, list);
    machine(rig, list);
    clock(rig, list);
    powerAndDisk(rig, list);
    if (rig.script.captures().empty())
        list.add("Script", warn,
                 "No shots in the loaded script. Nothing will fire. Load or build a script first.");
    sharedTokens(rig, list);
    for (const auto& camera : rig.roster.cameras()) {
        if (rig.roster.isDisconnected(camera->id()))
            list.add("Disconnected camera", fail,
                     rig.roster.labelFor(*camera) +
                         " dropped and hasn't reconnected. Re-seat the cable/battery before arming.");
    }
    return list.checks;
}

} // namespace zenka::rig
