#include "rig/fire/FireOutcomes.h"

#include "exposure/ExposureScales.h"
#include "rig/fire/FireWording.h"

#include <absl/strings/str_format.h>

#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

constexpr int silentFramesAllowed = 2;
constexpr double noGoodFrameSec = 20.0;
constexpr double deliveredStops = 0.34; // a third of a stop, the rounding of standard values

RunLogEntry entryOf(const CompensatedCapture& comp, base::Instant scheduled, base::Instant fired) {
    const script::Capture& capture = comp.capture;
    return {.scheduledWall = scheduled,
            .firedWall = fired,
            .offsetSec = capture.offsetSec,
            .refLabel = capture.refLabel,
            .cameraToken = capture.camera,
            .cameraLabel = capture.camera,
            .backend = "none",
            .iso = capture.iso,
            .aperture = capture.aperture,
            .shutterSec = capture.shutterSec,
            .bulb = capture.bulb,
            .note = capture.comment,
            .compEV = comp.ev,
            .compNote = comp.note};
}

} // namespace

FireOutcomes::FireOutcomes(const ports::Ports& ports, RigLog& log, const SiteDesk& site,
                           const CameraRoster& roster, RunLogbook& logbook, const Transport& transport)
    : ports_(ports), log_(log), site_(site), roster_(roster), logbook_(logbook), transport_(transport) {
}

void FireOutcomes::completed(const Shot& shot, const cameras::CaptureOutcome& outcome) {
    const std::string label = roster_.labelFor(*shot.camera);
    if (outcome.ok)
        delivered(shot, outcome, label);
    else
        dropped(shot, outcome, label);
    writeRow(shot, outcome, label);
    if (shot.resultsEra == resultsEra_)
        note(shot.comp.capture, outcome.ok ? FrameResult::fired : FrameResult::dropped);
    checkSentShutterMatches(shot.comp.capture.shutterSec, outcome.sentShutter, shot.comp.capture.bulb, label);
    changed_.emit();
}

void FireOutcomes::dropped(const Shot& shot, const cameras::CaptureOutcome& outcome,
                           const std::string& label) {
    const cameras::CameraControl& camera = *shot.camera;
    const std::string& id = camera.id();
    ++drops_[id];
    droppedSeqs_[id].insert(shot.comp.capture.seq);
    lastFire_[id] = friendlyFireNote(outcome.note);
    logbook_.countFrame(camera, label, false);
    log_.pushLog("⚠️ DROPPED  " + label + "  " + shot.comp.capture.refLabel + "  " + outcome.note);

    const bool policed = camera.isReal() && transport_.runActive() && !roster_.isDisconnected(id);
    if (outcome.deviceGone && policed)
        requestReconnect_.emit(shot.camera);
    if (outcome.responded)
        consecutiveFails_[id] = 0;
    else if (++consecutiveFails_[id] == silentFramesAllowed + 1)
        flagDisconnect_.emit(shot.camera);
    // A body that answers but has not delivered a frame for a while is wedged.
    const auto success = lastFireSuccess_.find(id);
    if (policed && success != lastFireSuccess_.end() &&
        ports_.clock.continuousSeconds() - success->second > noGoodFrameSec)
        requestReconnect_.emit(shot.camera);
}

void FireOutcomes::delivered(const Shot& shot, const cameras::CaptureOutcome& outcome,
                             const std::string& label) {
    const cameras::CameraControl& camera = *shot.camera;
    const script::Capture& capture = shot.comp.capture;
    const std::string& id = camera.id();
    ++shotCounts_[id];
    droppedSeqs_[id].erase(capture.seq);
    logbook_.countFrame(camera, label, true);
    consecutiveFails_[id] = 0;
    if (camera.isReal())
        lastFireSuccess_[id] = ports_.clock.continuousSeconds();

    const std::string result = camera.isReal() ? absl::StrFormat("✓ %.0fms", outcome.latencyMs) : "(sim)";
    lastFire_[id] = result;
    log_.pushLog("● " + label + "  " + capture.refLabel + "  " + settingsText(shotOf(capture)) + "  " +
                 result + (shot.comp.ev != 0 ? "  ⟲ " + shot.comp.note : ""));
    logbook_.watchCardWriting(camera, label);
}

void FireOutcomes::writeRow(const Shot& shot, const cameras::CaptureOutcome& outcome,
                            const std::string& label) {
    if (!shot.runLog)
        return;
    RunLogEntry entry = entryOf(shot.comp, site_.wallAt(shot.comp.capture.offsetSec), shot.firedWall);
    entry.cameraLabel = label;
    entry.serial = shot.camera->serial();
    entry.backend = shot.camera->backend();
    entry.result = outcome.ok ? "ok" : "dropped";
    entry.latencyMs = outcome.latencyMs;
    entry.sentShutter = outcome.sentShutter;
    if (!outcome.ok)
        entry.note = outcome.note;
    else if (!outcome.note.empty())
        entry.note += " · " + outcome.note;
    shot.runLog->log(std::move(entry), site_.timeZone());
}

void FireOutcomes::noCamera(const CompensatedCapture& comp) {
    const script::Capture& capture = comp.capture;
    ++shotCounts_[capture.camera];
    log_.pushLog("● " + capture.camera + "  " + capture.refLabel + "  " + settingsText(shotOf(capture)) +
                 "  (no camera, simulated)");
    if (const auto& runLog = logbook_.runLog()) {
        RunLogEntry entry = entryOf(comp, site_.wallAt(capture.offsetSec), ports_.clock.now());
        entry.result = "no-camera";
        runLog->log(std::move(entry), site_.timeZone());
    }
    note(capture, FrameResult::noCamera);
    changed_.emit();
}

void FireOutcomes::logSkipped(const script::Capture& capture, const std::string& reason) {
    if (const auto& runLog = logbook_.runLog()) {
        RunLogEntry entry =
            entryOf({.capture = capture}, site_.wallAt(capture.offsetSec), ports_.clock.now());
        entry.result = "skipped";
        entry.note = "NOT FIRED: " + reason + ". " + capture.comment;
        const auto cameras = roster_.camerasFor(capture.camera);
        for (const auto& camera : cameras) {
            entry.cameraLabel = roster_.labelFor(*camera);
            entry.serial = camera->serial();
            runLog->log(entry, site_.timeZone());
        }
        if (cameras.empty())
            runLog->log(std::move(entry), site_.timeZone());
    }
    log_.pushLog("⏭ SKIPPED (not fired): " + capture.camera + "  " + capture.refLabel + "  — " + reason);
    note(capture, FrameResult::skipped);
}

void FireOutcomes::note(const script::Capture& capture, FrameResult result) {
    if (results_.note(capture.camera, capture.seq, result))
        resultNoted_.emit(capture.camera, capture.seq);
}

void FireOutcomes::checkSentShutterMatches(double asked, const std::string& sent, bool bulb,
                                           const std::string& camera) {
    if (bulb || asked <= 0 || sent.empty() || shutterDivergenceWarned_.contains(camera))
        return;
    // Some drivers tell the setting's key as well, "shutterspeed2=1/500".
    const std::string value = sent.substr(sent.rfind('=') + 1);
    const auto seconds = exposure::readShutterChoice(value);
    if (!seconds || *seconds <= 0)
        return;
    const double stops = std::abs(std::log2(*seconds / asked));
    if (stops <= deliveredStops)
        return;
    shutterDivergenceWarned_.insert(camera);
    const std::string message = absl::StrFormat("%s: asked for %s but sent \"%s\" to the camera, which is "
                                                "%.1f stops away. That is not a rounding. It "
                                                "usually means Zenka's list of shutter speeds for this body "
                                                "is wrong or nearly empty, which happens when "
                                                "the body was read while its dial was not on Manual. Set the "
                                                "dial to M and press Detect to re-read it.",
                                                camera, exposure::shutterLabel(asked), sent, stops);
    log_.pushLog("⚠️ SHUTTER MISMATCH. " + message);
    shutterMismatchWarning_.set(message);
    shutterDiverged_.emit({.camera = camera, .asked = asked, .sent = sent, .stops = stops});
}

void FireOutcomes::reset(int pastCaptures) {
    shutterDivergenceWarned_.clear();
    shutterMismatchWarning_.set(std::nullopt);
    results_.forgetFrom(pastCaptures + 1);
    resultsCleared_.emit();
}

void FireOutcomes::clearResults() {
    results_.clear();
    ++resultsEra_;
    resultsCleared_.emit();
}

void FireOutcomes::carry(const std::string& fromId, const std::string& toId) {
    for (const std::string& id : {fromId, toId}) {
        consecutiveFails_.erase(id);
        lastFireSuccess_.erase(id);
    }
    const auto move = [&](auto& byId) {
        if (auto node = byId.extract(fromId); !node.empty()) {
            node.key() = toId;
            byId.insert(std::move(node));
        }
    };
    if (fromId != toId) {
        move(shotCounts_);
        move(drops_);
        move(droppedSeqs_);
        move(lastFire_);
    }
    changed_.emit();
}

void FireOutcomes::setLastFire(const std::string& cameraId, std::string text) {
    lastFire_[cameraId] = std::move(text);
    changed_.emit();
}

} // namespace zenka::rig
