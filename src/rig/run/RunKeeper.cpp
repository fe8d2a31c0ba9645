#include "rig/run/RunKeeper.h"

#include "base/CivilTime.h"
#include "eclipse/Catalog.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace zenka::rig {

namespace {

constexpr double heartbeatSec = 5.0;
constexpr double nudgeSec = 1800;

absl::CivilDay dayOf(base::Instant instant, const absl::TimeZone& zone) {
    return absl::CivilDay(base::civilTime(instant, zone));
}

base::Instant referenceInstant(const eclipse::Eclipse& eclipse) {
    return eclipse.utc(0);
}

} // namespace

RunKeeper::RunKeeper(const ports::Ports& ports, RigLog& log, SiteDesk& site, ScriptDesk& script,
                     CameraRoster& roster, Transport& transport, std::string appVersion)
    : ports_(ports), log_(log), site_(site), script_(script), roster_(roster), transport_(transport),
      appVersion_(std::move(appVersion)), store_(ports) {
}

void RunKeeper::saveRunState(RunState::ArmKind kind) {
    if (!keeping_)
        return;
    const bool real = kind == RunState::ArmKind::real;
    const base::Instant now = ports_.clock.now();
    const Site& site = site_.site();
    RunState state{.eclipseId = site_.eclipseId(),
                   .lat = site.lat,
                   .lon = site.lon,
                   .elev = site.elev,
                   .tzId = site.tzId,
                   .siteLabel = site.label,
                   .scriptText = script_.scriptText().get(),
                   .armKind = kind,
                   .anchorWall = real ? transport_.liveAnchor().wall : now,
                   .anchorClock = real ? transport_.liveAnchor().clock : transport_.clock(),
                   .tC1 = site_.tC1(),
                   .tC4 = site_.tC4(),
                   .armedAt = now,
                   .lastSeen = now,
                   .liveCameras = roster_.cameraMode().get() == CameraMode::live,
                   .appVersion = appVersion_};
    for (const auto& camera : roster_.cameras())
        state.cameras.push_back({.serial = camera->serial(),
                                 .label = roster_.labelFor(*camera),
                                 .model = CameraRoster::bareModel(camera->model())});
    store_.save(state);
    stored_ = true;
    lastRunSave_ = ports_.clock.continuousSeconds();
}

void RunKeeper::heartbeatRunState() {
    if (lastRunSave_ && ports_.clock.continuousSeconds() - *lastRunSave_ < heartbeatSec)
        return;
    if (transport_.live())
        saveRunState(RunState::ArmKind::real);
    else if (transport_.playing().get())
        saveRunState(RunState::ArmKind::simulation);
}

void RunKeeper::clearRunState() {
    lastRunSave_.reset();
    resumableRun_.set(std::nullopt);
    if (keeping_ && std::exchange(stored_, false)) // asked for on each tick of a run that is over
        store_.clear();
}

void RunKeeper::checkForResumableRun() {
    const RunStateStore::Loaded loaded = store_.load();
    const auto& state = loaded.state;
    const base::Instant now = ports_.clock.now();
    const bool strange = state && !eclipse::Catalog::has(state->eclipseId);
    if (loaded.damaged || loaded.unreadable || strange)
        log_.pushLog(
            "⚠️ The record of the last run could not be read, so it cannot be picked up. Check site, "
            "script and clock, then arm again.");
    if (state && !strange && !state->isComplete(now) && state->isResumable(now))
        resumableRun_.set(state);
    else if (!loaded.unreadable) // the next start may be given it
        clearRunState();
}

void RunKeeper::resumeRun() {
    const auto state = resumableRun_.get();
    if (!state)
        return;
    Site site = site_.site();
    site.lat = state->lat;
    site.lon = state->lon;
    site.elev = state->elev;
    if (!state->siteLabel.empty())
        site.label = state->siteLabel;
    if (!state->tzId.empty())
        site.tzId = state->tzId;
    script_.takeBack(state->scriptText);
    ports_.settings.setText(settingsKeys::scriptText, state->scriptText);
    site_.choose(state->eclipseId, std::move(site));
    site_.recompute();
    if (state->armKind == RunState::ArmKind::simulation)
        resumeSimulation(*state);
    else
        resumeReal(*state);
}

void RunKeeper::resumeSimulation(const RunState& state) {
    transport_.resumeSimulated(state.anchorClock);
    log_.pushLog("▶︎ RESUMED simulation. Clock at " + site_.fmtClock(transport_.clock()) +
                 ". Press Play to continue.");
    clearRunState();
}

void RunKeeper::resumeReal(const RunState& state) {
    const double clock = state.clockAt(ports_.clock.now());
    const auto& offsets = script_.captureOffsets();
    const auto past = std::ranges::upper_bound(offsets, clock) - offsets.begin();
    resumableRun_.set(std::nullopt);
    transport_.takeLiveClock(clock);
    log_.pushLog(absl::StrFormat(
        "▶︎ RESUMED real run; clock at %s; %d past captures skipped, continuing from the next.",
        site_.fmtClock(clock), past));
    if (state.liveCameras) {
        for (const RunState::Cam& cam : state.cameras) {
            if (!cam.serial.empty())
                roster_.setLabelOfSerial(cam.serial, cam.label);
        }
        log_.pushLog("Re-detecting cameras to rebind by serial…");
        rebindCameras_.emit();
    }
    transport_.beginLiveRun();
}

bool RunKeeper::isSelectedEclipseDayAtSite() const {
    const absl::TimeZone zone = site_.timeZone();
    return dayOf(ports_.clock.now(), zone) == dayOf(referenceInstant(site_.eclipse()), zone);
}

void RunKeeper::checkEclipseDay() {
    const absl::TimeZone utc = absl::UTCTimeZone();
    const absl::CivilDay today = dayOf(ports_.clock.now(), utc);
    std::vector<std::string> ids{site_.eclipseId()};
    for (const auto& row : eclipse::Catalog::all())
        ids.push_back(row.id);
    const auto found = std::ranges::find_if(ids, [&](const std::string& id) {
        return dayOf(referenceInstant(eclipse::Catalog::eclipse(id)), utc) == today;
    });
    if (found == ids.end())
        return;
    const std::string key = settingsKeys::eclipseDayPromptedPrefix + *found;
    const std::string todayText = absl::FormatCivilTime(today);
    if (ports_.settings.text(key) == todayText)
        return;
    ports_.settings.setText(key, todayText);
    site_.selectEclipse(*found);
    eclipseDayName_ = site_.eclipse().rec.name;
    showEclipseDay_.set(true);
    log_.pushLog("📅 It's eclipse day: " + eclipseDayName_ + ".");
}

void RunKeeper::eclipseDayLiveNudge() {
    if (!isSelectedEclipseDayAtSite() || transport_.live() || showEclipseDay_.get() ||
        script_.showWelcome().get() || resumableRun_.get())
        return;
    const double now = ports_.clock.continuousSeconds();
    if (lastEclipseNudge_ && now - *lastEclipseNudge_ < nudgeSec)
        return;
    lastEclipseNudge_ = now;
    log_.pushLog(
        "📅 Eclipse day at your site. Timing is still SIMULATED. Switch to the live clock when you're "
        "ready.");
}

void RunKeeper::closeForExit() {
    const auto state = store_.load().state;
    if (state && state->armKind == RunState::ArmKind::simulation) {
        store_.clear();
        store_.drain();
    }
}

} // namespace zenka::rig
