#include "rig/shots/ExposureCheck.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>

namespace zenka::rig {

namespace {

/// From short to long: one in each region where bodies name their shutters differently.
constexpr std::array<double, 9> testShutters{1.0 / 4000, 1.0 / 1000, 1.0 / 250, 1.0 / 60, 1.0 / 15,
                                             1.0 / 4,    0.5,        1.0,       2.0};

std::string listOr(const std::vector<std::string>& values, const char* none) {
    return values.empty() ? none : base::joined(values);
}

} // namespace

struct ExposureCheck::Check {
    CameraRoster::Camera camera;
    std::string label;
    cameras::ExposureChoices choices;
    std::string text;
    std::filesystem::path file;
    std::size_t next = 0;
    BodiesInUse::Use use;
};

ExposureCheck::ExposureCheck(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                             const Transport& transport, const BodyModes& modes, ManualFire& manualFire,
                             BodiesInUse& inUse)
    : ports_(ports), log_(log), roster_(roster), transport_(transport), modes_(modes),
      manualFire_(manualFire), inUse_(inUse), queue_(ports.queues.serial("exposure check")) {
}

void ExposureCheck::runExposureCheck() {
    if (running_.get())
        return;
    if (transport_.runActive()) {
        log_.pushLog("Exposure check: not in a run. Pause it or leave the live clock first.");
        return;
    }
    const auto& cameras = roster_.cameras();
    const auto found = std::ranges::find_if(
        cameras, [](const auto& camera) { return camera->backend() == "gphoto2" && camera->connected(); });
    if (found == cameras.end()) {
        log_.pushLog("Exposure check: no universal-driver camera connected.");
        return;
    }
    const std::string label = roster_.labelFor(**found);
    if (roster_.isDisconnected((*found)->id()) || inUse_.has((*found)->id())) {
        log_.pushLog("Exposure check: " + label + " is gone or busy. Try again when it is free.");
        return;
    }
    for (const auto& [name, problem] : modes_.exposureProblems({*found}))
        log_.pushLog(absl::StrFormat("⚠️ Exposure check: %s is %s, so what is sent may not apply.", name,
                                     problem));
    running_.set(true);
    const auto check = std::make_shared<Check>();
    check->camera = *found;
    check->label = label;
    check->use = inUse_.take((*found)->id(), BodiesInUse::Task::measuring);
    (*found)->readExposureChoices(
        lifeline_.guard([this, check](const cameras::ExposureChoices& choices) { begin(check, choices); }));
}

void ExposureCheck::begin(const std::shared_ptr<Check>& check, const cameras::ExposureChoices& choices) {
    check->choices = choices;
    check->file = ports_.folders.runLogs() /
                  ("Zenka exposure check " +
                   base::formatTime("%Y-%m-%d %H%M%S", ports_.clock.now(), base::machineTimeZone()) + ".txt");
    check->text =
        "Zenka exposure check\ncamera: " + check->label +
        "\nshutterspeed:  " + listOr(choices.shutter, "none reported by the body (snapping inactive)") +
        "\nshutterspeed2: " + listOr(choices.shutterFraction, "not offered by this body") +
        "\n\nCompare each \"sending\" value below against the frame's EXIF ExposureTime on the card.\n";
    const std::size_t known = choices.shutter.size() + choices.shutterFraction.size();
    log_.pushLog("Exposure check on " + check->label + " with " +
                 (known > 0 ? absl::StrFormat("%d shutter values known", known)
                            : "NO value list (snapping inactive)"));
    fireNext(check);
}

void ExposureCheck::fireNext(const std::shared_ptr<Check>& check) {
    if (check->next == testShutters.size() || transport_.runActive())
        return finish(check);
    manualFire_.fireManual(check->camera, {.shutterSec = testShutters.at(check->next)},
                           lifeline_.guard([this, check](const auto& outcome) { fired(check, outcome); }));
}

void ExposureCheck::fired(const std::shared_ptr<Check>& check, const cameras::CaptureOutcome& outcome) {
    const std::string asked = exposure::shutterLabel(testShutters.at(check->next++));
    check->text +=
        "\nasked " + asked + "  sending " + (outcome.sentShutter.empty() ? "nothing" : outcome.sentShutter);
    const auto in = [&](const std::vector<std::string>& list) {
        return std::ranges::count(list, outcome.sentShutter) > 0;
    };
    const auto& choices = check->choices;
    const bool listed = choices.shutter.empty() && choices.shutterFraction.empty();
    if (!outcome.sentShutter.empty() && !listed && !in(choices.shutter) && !in(choices.shutterFraction))
        check->text += "  ** NOT one of the body's values, it will likely be REJECTED **";
    if (!outcome.ok)
        check->text += "  (no frame: " + outcome.note + ")";
    check->text += "\n";
    // A body that is gone fails each of them at length.
    if (outcome.deviceGone || !check->camera->connected())
        return finish(check);
    fireNext(check);
}

void ExposureCheck::finish(const std::shared_ptr<Check>& check) {
    const bool all = check->next == testShutters.size();
    check->text +=
        all ? "\nDone. Pull the card and compare EXIF ExposureTime against the values above.\n"
            : "\nBroken off. Pull the card and compare EXIF ExposureTime against the values above.\n";
    check->use = {};
    queue_->post([&files = ports_.files, &loop = ports_.loop, check,
                  arrive = lifeline_.guard([this, check, all](bool written) {
                      const std::string file = check->file.filename().string();
                      log_.pushLog(!written
                                       ? "⚠️ Exposure check: " + file + " could not be written."
                                       : std::string("Exposure check: ") + (all ? "done" : "broken off") +
                                             ". Wrote " + file + " to your Zenka Logs folder.");
                      running_.set(false);
                  })] {
        const bool written = files.writeAtomically(check->file, check->text);
        loop.post([arrive, written] { arrive(written); });
    });
}

} // namespace zenka::rig
