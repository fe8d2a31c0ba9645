#include "rig/run/Transport.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "base/TimeWords.h"
#include "rig/shared/PlatformWords.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <optional>

namespace zenka::rig {

namespace {

constexpr double captureMargin = 30;    // seconds around the first and last capture
constexpr double contactMargin = 600;   // seconds around first and last contact
constexpr double wrapTolerance = 0.01;  // seconds
constexpr double clockSavePeriod = 2.0; // seconds
constexpr char liveRefusal[] = "Timeline jumps are disabled in LIVE timing — the clock follows real time.";

} // namespace

Transport::Transport(const ports::Ports& ports, RigLog& log, const SiteDesk& site, const ScriptDesk& script,
                     RunLogbook& logbook, SleepGuard& sleepGuard)
    : ports_(ports), log_(log), site_(site), script_(script), logbook_(logbook), sleepGuard_(sleepGuard) {
}

double Transport::clockNow() const {
    if (live())
        return liveClock();
    if (!playing_.get())
        return clock_;
    return clock_ + (ports_.clock.uptimeSeconds() - clockReadAt_);
}

double Transport::liveClock() const {
    return site_.clockAt(liveAnchorTrue_) + (ports_.clock.continuousSeconds() - liveAnchorUp_);
}

bool Transport::advance(double dt) {
    clockReadAt_ = ports_.clock.uptimeSeconds();
    if (live()) {
        clock_ = liveClock();
        if (site_.tC4() + contactMargin <= clock_)
            runOver_.emit();
        else
            runTicked_.emit();
        return true;
    }
    if (!playing_.get())
        return false;
    clock_ += dt;
    saveSimClock(false);
    runTicked_.emit();
    const double end = timeline().last;
    if (end <= clock_) {
        clock_ = end;
        setPlaying(false);
        logbook_.endRunLog(true, false);
        runOver_.emit();
        sleepGuard_.update(live(), playing_.get());
    }
    return true;
}

Transport::Range Transport::timeline() const {
    if (const auto& bounds = script_.captureBounds())
        return {.first = bounds->first - captureMargin, .last = bounds->last + captureMargin};
    return {.first = site_.tC1() - contactMargin, .last = site_.tC4() + contactMargin};
}

void Transport::togglePlay() {
    if (!playing_.get() && clock_ >= timeline().last - wrapTolerance)
        clock_ = timeline().first;
    clockReadAt_ = ports_.clock.uptimeSeconds();
    setPlaying(!playing_.get());
    moved_.emit();
    if (playing_.get()) {
        logbook_.beginRunLog("simulated");
        runBegan_.emit(TimingMode::simulated);
    } else {
        logbook_.endRunLog(false, true);
        runOver_.emit();
    }
    sleepGuard_.update(live(), playing_.get());
}

void Transport::jump(std::string_view contactKey) {
    if (live()) {
        log_.pushLog(liveRefusal);
        return;
    }
    const auto& contacts = site_.contactTHours();
    if (const auto contact = contacts.find(std::string(contactKey)); contact != contacts.end())
        moveTo(contact->second * 3600);
}

bool Transport::jumpToLocalTime(std::string_view text) {
    if (live()) {
        log_.pushLog(liveRefusal);
        return false;
    }
    const auto time = base::readTimeOfDay(text);
    if (!time)
        return false;
    const auto& contacts = site_.contactTHours();
    const auto maximum = contacts.find("MAX");
    const double reference = maximum == contacts.end() ? 0 : maximum->second * 3600;
    const absl::TimeZone zone = site_.timeZone();
    const absl::CivilDay day(base::civilTime(site_.wallAt(reference), zone));
    const base::Instant wanted = base::instantOf(
        absl::CivilSecond(day.year(), day.month(), day.day(), time->hour, time->minute, time->second), zone);
    const Range range = timeline();
    moveTo(std::clamp(site_.clockAt(wanted), range.first, range.last));
    return true;
}

void Transport::scrubTo(double clock) {
    if (live())
        return;
    moveTo(clock);
    saveSimClock(true);
}

void Transport::moveTo(double clock) {
    clock_ = clock;
    clockReadAt_ = ports_.clock.uptimeSeconds();
    moved_.emit();
    shown_.emit();
}

void Transport::useSimulatedTiming() {
    setMode(TimingMode::simulated);
    timingStatus_.set("simulated clock");
    setPlaying(false);
    clock_ = site_.tC1();
    moved_.emit();
    runOver_.emit();
    logbook_.endRunLog(false, false);
    sleepGuard_.update(live(), playing_.get());
    log_.pushLog("Timing: SIMULATED");
}

void Transport::armRealEclipseTiming(bool force) {
    if (!force && holdsArming_ && holdsArming_())
        return;
    const std::optional<double> offset = clockOffset_ ? clockOffset_() : std::nullopt;
    timingStatus_.set(offset ? "LIVE · real eclipse clock (GPS)" : "LIVE · real eclipse clock");
    anchorLive(ports_.clock.now() - base::Seconds{offset.value_or(0)});
    beginLiveRun();
    log_.pushLog(
        offset ? absl::StrFormat("Timing: LIVE. Armed to GPS satellite UTC (%s was %+.1fs off, corrected)",
                                 platformWords::computerAtStart, *offset)
               : "Timing: LIVE. Armed to real eclipse UTC clock");
}

Transport::LiveAnchor Transport::liveAnchor() const {
    return {.wall = liveAnchorWall_, .clock = site_.clockAt(liveAnchorTrue_)};
}

void Transport::anchorLive(base::Instant trueTime) {
    liveAnchorWall_ = ports_.clock.now();
    liveAnchorTrue_ = trueTime;
    liveAnchorUp_ = ports_.clock.continuousSeconds();
    setMode(TimingMode::live);
    setPlaying(false);
    clock_ = liveClock();
    moved_.emit();
}

void Transport::takeLiveClock(double clock) {
    timingStatus_.set("LIVE · real eclipse clock · resumed");
    anchorLive(site_.wallAt(clock));
}

void Transport::beginLiveRun() {
    logbook_.beginRunLog("real");
    runBegan_.emit(TimingMode::live);
    sleepGuard_.update(live(), playing_.get());
}

void Transport::resumeSimulated(double clock) {
    setMode(TimingMode::simulated);
    timingStatus_.set("simulated clock · resumed");
    setPlaying(false);
    const Range range = timeline();
    moveTo(std::clamp(clock, range.first, range.last));
    sleepGuard_.update(live(), playing_.get());
}

void Transport::followSite() {
    clock_ = live() ? liveClock() : site_.tC1();
    clockReadAt_ = ports_.clock.uptimeSeconds();
}

void Transport::saveSimClock(bool force) {
    if (live())
        return;
    const double now = ports_.clock.uptimeSeconds();
    if (!force && lastClockSave_ && now - *lastClockSave_ < clockSavePeriod)
        return;
    lastClockSave_ = now;
    ports_.settings.setText(settingsKeys::simClock, site_.eclipseId() + "|" + base::plainNumber(clock_));
}

void Transport::restoreSimClock() {
    const auto saved = ports_.settings.text(settingsKeys::simClock);
    if (!saved)
        return;
    const auto bar = saved->find('|');
    if (bar == std::string::npos || saved->substr(0, bar) != site_.eclipseId())
        return;
    const auto value = base::readNumber(std::string_view(*saved).substr(bar + 1));
    const Range range = timeline();
    if (!value || *value < range.first || *value > range.last)
        return;
    clock_ = *value;
    clockReadAt_ = ports_.clock.uptimeSeconds();
    moved_.emit();
    shown_.emit();
}

void Transport::setMode(TimingMode mode) {
    timingMode_.set(mode);
    activityChanged_.emit();
}

void Transport::setPlaying(bool playing) {
    playing_.set(playing);
    activityChanged_.emit();
}

} // namespace zenka::rig
