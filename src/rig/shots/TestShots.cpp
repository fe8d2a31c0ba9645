#include "rig/shots/TestShots.h"

#include "rig/fire/FireWording.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

/// A frame of a live run that is due within this after the exposure is not put at risk: a body that is slow
/// to hand over control is tried for 25 s.
constexpr double clearanceSec = 30;

} // namespace

TestShots::TestShots(RigLog& log, const ScriptDesk& script, const CameraRoster& roster,
                     const Transport& transport, FireOutcomes& outcomes, ManualFire& manualFire,
                     BodiesInUse& inUse)
    : log_(log), script_(script), roster_(roster), transport_(transport), outcomes_(outcomes),
      manualFire_(manualFire), inUse_(inUse) {
}

std::optional<script::Capture> TestShots::nextCapture(const cameras::CameraControl& camera) const {
    const double clock = transport_.clockNow();
    const script::Capture* next = nullptr;
    for (const auto& [token, captures] : script_.capturesByToken()) {
        if (!roster_.cameraMatches(camera, token))
            continue;
        const script::Capture* its = script_.nextCapture(token, clock);
        if (its && (!next || its->offsetSec < next->offsetSec))
            next = its;
    }
    return next ? std::optional(*next) : std::nullopt;
}

std::string TestShots::refusal(const cameras::CameraControl& camera, const cameras::Shot& shot) const {
    const std::string label = roster_.labelFor(camera);
    if (firing(camera.id()))
        return "A test shot of " + label + " is under way. Wait for its result.";
    if (inUse_.has(camera.id()))
        return label + " is being measured or read. Wait for its end.";
    if (!transport_.live())
        return {};
    const auto next = nextCapture(camera);
    const double ahead = next ? next->offsetSec - transport_.clockNow() : 0;
    if (!next || ahead > clearanceSec + std::max(shot.shutterSec, 0.0))
        return {};
    return absl::StrFormat("The live run fires %s in %.0f s, and a test shot could cost that frame. Wait for "
                           "a gap in its frames.",
                           label, std::ceil(ahead));
}

std::string TestShots::fire(const CameraRoster::Camera& camera, const cameras::Shot& shot) {
    if (std::string reason = refusal(*camera, shot); !reason.empty())
        return reason;
    firing_[camera->id()] = inUse_.take(camera->id(), BodiesInUse::Task::testShot);
    outcomes_.setLastFire(camera->id(), "Firing…");
    changed_.emit();
    manualFire_.fireManual(camera, shot,
                           lifeline_.guard([this, camera, shot](const cameras::CaptureOutcome& outcome) {
                               completed(camera, shot, outcome);
                           }));
    return {};
}

void TestShots::completed(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                          const cameras::CaptureOutcome& outcome) {
    const std::string& id = camera->id();
    const std::string label = roster_.labelFor(*camera);
    const std::string settings = settingsText(shot);
    Result result{.ok = outcome.ok,
                  .settings = settings,
                  .latencyMs = outcome.latencyMs,
                  // Some drivers tell the setting's key as well, "shutterspeed2=1/500".
                  .sentShutter = outcome.sentShutter.substr(outcome.sentShutter.rfind('=') + 1),
                  .phrase = {},
                  .advice = {},
                  .note = outcome.note};
    if (outcome.ok) {
        const std::string done = camera->isReal() ? absl::StrFormat("✓ %.0fms", outcome.latencyMs) : "(sim)";
        outcomes_.setLastFire(id, done);
        log_.pushLog("● " + label + "  test  " + settings + "  " + done);
    } else {
        result.phrase = friendlyFireNote(outcome.note);
        result.advice = fireFailureHint(*camera, label, outcome.note);
        outcomes_.setLastFire(id, "Test: " + result.phrase);
        log_.pushLog("⚠️ TEST FAILED  " + label + "  " + settings + "  " + outcome.note);
    }
    firing_.erase(id);
    results_[id] = std::move(result);
    changed_.emit();
}

std::optional<TestShots::Result> TestShots::result(const std::string& id) const {
    const auto found = results_.find(id);
    return found == results_.end() ? std::nullopt : std::optional(found->second);
}

void TestShots::carry(const std::string& fromId, const std::string& toId) {
    if (fromId == toId)
        return;
    if (auto node = results_.extract(fromId); !node.empty()) {
        results_.erase(toId);
        node.key() = toId;
        results_.insert(std::move(node));
    }
    changed_.emit();
}

} // namespace zenka::rig
