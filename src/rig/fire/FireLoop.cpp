#include "rig/fire/FireLoop.h"

#include "rig/fire/FireScan.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace zenka::rig {

namespace {

constexpr double multiCamStaggerSec = 0.06;
constexpr double busLaneStepSec = 0.35;
constexpr double maxBusStaggerSec = 1.2;

/// The lane that a body's commands must keep to; a bus numbered 0 is an unknown one.
std::optional<int> busLane(const cameras::CameraControl& camera) {
    const auto bus = camera.usbBus();
    return bus && *bus != 0 ? bus : std::nullopt;
}

} // namespace

FireLoop::FireLoop(const ports::Ports& ports, RigLog& log, const ScriptDesk& script,
                   const CameraRoster& roster, const ExposureControl& exposure, RunLogbook& logbook,
                   const Transport& transport, FireOutcomes& outcomes)
    : ports_(ports), log_(log), script_(script), roster_(roster), exposure_(exposure), logbook_(logbook),
      transport_(transport), outcomes_(outcomes) {
}

void FireLoop::scan() {
    const double clock = transport_.clock();
    const auto& offsets = script_.captureOffsets();
    // Nearly every tick ends here, on one comparison.
    if (cursor_ >= offsets.size() || offsets[cursor_] > clock) {
        lastFireScanClock_ = clock;
        return;
    }
    const FireScan::Result result = FireScan::scan(offsets, cursor_, lastFireScanClock_, clock);
    cursor_ = result.nextCursor;
    lastFireScanClock_ = clock;
    giveUp(result.skipped, result.jump, result.late.has_value());
    if (result.late) {
        firedCount_.set(firedCount_.get() + 1);
        const script::Capture capture = script_.captures()[*result.late];
        fireCapture(capture, capture.offsetSec);
    }
    fireDue(result.due);
}

void FireLoop::giveUp(const std::vector<std::size_t>& skipped, double jump, bool oneGoesLate) {
    if (skipped.empty())
        return;
    const std::string reason = absl::StrFormat("clock leapt %ds (sleep/stall)", static_cast<int>(jump));
    for (const std::size_t index : skipped)
        outcomes_.logSkipped(script_.captures()[index], reason);
    const int count = static_cast<int>(skipped.size());
    skippedCount_.set(skippedCount_.get() + count);
    log_.pushLog(absl::StrFormat("⏭ Clock leapt %ds (sleep/stall) — %d frame(s) SKIPPED, not fired%s",
                                 static_cast<int>(jump), count,
                                 oneGoesLate ? ", firing the most recent one late" : ""));
}

void FireLoop::fireDue(const std::vector<std::size_t>& due) {
    if (due.empty())
        return;
    // Copies, since a fire may in the end lead to another script.
    std::vector<script::Capture> frames;
    std::vector<std::optional<int>> buses;
    for (const std::size_t index : due) {
        frames.push_back(script_.captures()[index]);
        const auto cameras = roster_.camerasFor(frames.back().camera);
        buses.push_back(cameras.empty() ? std::nullopt : busLane(*cameras.front()));
    }
    firedCount_.set(firedCount_.get() + static_cast<int>(frames.size()));
    const auto staggers = fireStaggers(buses, busLaneStepSec, maxBusStaggerSec, multiCamStaggerSec);
    const int generation = fireGeneration_;
    for (std::size_t i = 0; i < frames.size() && generation == fireGeneration_; ++i) {
        const double dueClock = frames[i].offsetSec + staggers[i];
        if (staggers[i] > 0)
            later(staggers[i], [this, frame = frames[i], dueClock] { fireCapture(frame, dueClock); });
        else
            fireCapture(frames[i], dueClock);
    }
}

void FireLoop::fireCapture(const script::Capture& capture, double dueClock) {
    const CompensatedCapture comp = exposure_.compensated(capture);
    const auto cameras = roster_.camerasFor(capture.camera);
    if (cameras.empty()) {
        outcomes_.noCamera(comp);
        return;
    }
    std::map<int, int> before;
    for (const auto& camera : cameras) {
        const auto lane = cameras.size() > 1 ? busLane(*camera) : std::nullopt;
        const double delay = lane ? std::min(before[*lane]++ * busLaneStepSec, maxBusStaggerSec) : 0;
        if (delay > 0)
            later(delay, [this, camera, comp, due = dueClock + delay, runLog = logbook_.runLog()] {
                fireOne(camera, comp, due, runLog);
            });
        else
            fireOne(camera, comp, dueClock, logbook_.runLog());
    }
}

void FireLoop::fireOne(const CameraRoster::Camera& camera, const CompensatedCapture& comp, double dueClock,
                       const std::shared_ptr<RunLog>& runLog) {
    const script::Capture& capture = comp.capture;
    const FireOutcomes::Shot shot{.camera = camera,
                                  .comp = comp,
                                  .firedWall = ports_.clock.now(),
                                  .runLog = runLog,
                                  .resultsEra = outcomes_.resultsEra()};
    // A body that is down is not troubled: it may be on its way back. Its silence counts all the same, so
    // that the alarm is raised for one that has not come back within three frames.
    if (!camera->connected() || roster_.isDisconnected(camera->id())) {
        outcomes_.completed(shot, {.ok = false, .note = "dropped, camera disconnected"});
        return;
    }
    if (capture.forceFullExposure)
        camera->forceFullExposureNextFrame();
    logbook_.lateness().note((transport_.clockNow() - dueClock) * 1000);
    const int number = ++lastShot_;
    underWay_.emplace(number, shot);
    camera->capture(shotOf(capture), lifeline_.guard([this, number](const cameras::CaptureOutcome& outcome) {
        if (const auto ended = underWay_.extract(number); !ended.empty())
            outcomes_.completed(ended.mapped(), outcome);
    }));
}

void FireLoop::giveUpUnderWay() {
    for (const auto& [number, shot] : std::exchange(underWay_, {}))
        outcomes_.completed(shot, {.note = "no answer before the program ended", .responded = true});
}

void FireLoop::later(double delay, std::function<void()> fire) {
    ports_.loop.after(base::Seconds{delay},
                      lifeline_.guard([this, generation = fireGeneration_, fire = std::move(fire)] {
                          if (generation == fireGeneration_ && transport_.runActive())
                              fire();
                      }));
}

void FireLoop::resetFiredTracking() {
    const auto& offsets = script_.captureOffsets();
    const double clock = transport_.clock();
    const auto past = std::ranges::upper_bound(offsets, clock) - offsets.begin();
    outcomes_.reset(static_cast<int>(past));
    cursor_ = static_cast<std::size_t>(past);
    firedCount_.set(static_cast<int>(past));
    skippedCount_.set(0);
    ++fireGeneration_;
    lastFireScanClock_ = clock;
}

bool FireLoop::dueWithin(const cameras::CameraControl& camera, double seconds) const {
    if (!transport_.runActive())
        return false;
    const auto& captures = script_.captures();
    const double until = transport_.clock() + seconds;
    for (std::size_t i = cursor_; i < captures.size() && captures[i].offsetSec <= until; ++i)
        if (roster_.cameraMatches(camera, captures[i].camera))
            return true;
    return false;
}

double FireLoop::nextOffset() const {
    const auto& offsets = script_.captureOffsets();
    return cursor_ < offsets.size() ? offsets[cursor_] : std::numeric_limits<double>::infinity();
}

} // namespace zenka::rig
