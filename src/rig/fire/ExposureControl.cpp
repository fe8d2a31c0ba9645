#include "rig/fire/ExposureControl.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace zenka::rig {

namespace ExposureComp = exposure::ExposureComp;
using exposure::CompOffsets;

namespace {

constexpr int mostStops = 6;
constexpr double roundContact = 30; // seconds around totality that count as totality
constexpr base::Seconds speechPause{0.7};
constexpr double hairSec = 1e-6; // by which two instants, shutters or apertures count as different

constexpr double usualChangeGap = 1.0;
constexpr double usualSameGap = 0.5;
constexpr double sameGapShare = 0.4; // of the gap between frames that change a setting
constexpr double leastSameGap = 0.2;

int nudged(int stops, int by) {
    return std::clamp(stops + by, -mostStops, mostStops);
}

std::string spokenStops(int stops) {
    const int count = std::abs(stops);
    return absl::StrFormat("%s %d %s", stops < 0 ? "minus" : "plus", count, count == 1 ? "stop" : "stops");
}

bool active(const CompOffsets& offsets) {
    return offsets.enabled && (offsets.partials != 0 || offsets.totality != 0);
}

} // namespace

ExposureControl::ExposureControl(const ports::Ports& ports, RigLog& log, const SiteDesk& site,
                                 const ScriptDesk& script, const CameraRoster& roster,
                                 const MeasuredFloors& floors, RunLogbook& logbook)
    : ports_(ports), log_(log), site_(site), script_(script), roster_(roster), floors_(floors),
      logbook_(logbook), rules_(ports, log, roster) {
}

// --- what is asked for

CompOffsets ExposureControl::offsetsOf(const std::string& token) const {
    const auto found = compOffsets_.get().find(token);
    return found == compOffsets_.get().end() ? CompOffsets{} : found->second;
}

void ExposureControl::setOffsets(const std::string& token, CompOffsets offsets) {
    offsets.partials = nudged(offsets.partials, 0);
    offsets.totality = nudged(offsets.totality, 0);
    Offsets all = compOffsets_.get();
    if (const auto found = all.find(token); found != all.end() && found->second == offsets)
        return;
    all[token] = offsets;
    compOffsets_.set(std::move(all));
    logCompChange(token);
}

void ExposureControl::nudge(const std::string& token, int partialsBy, int totalityBy) {
    CompOffsets offsets = offsetsOf(token);
    offsets.enabled = offsets.enabled || rules_.hasSavedCompRules(token);
    offsets.partials += partialsBy;
    offsets.totality += totalityBy;
    setOffsets(token, offsets);
}

void ExposureControl::setLeaveTotalityAlone(bool alone) {
    if (leaveTotalityAlone_.get() == alone)
        return;
    leaveTotalityAlone_.set(alone);
    tell(alone ? "totality is left as the script has it" : "totality is compensated as well");
}

void ExposureControl::nudgeAllComp(int by) {
    Offsets all = compOffsets_.get();
    std::optional<CompOffsets> moved;
    for (const std::string& token : timelineTokens()) {
        const auto found = all.find(token);
        const bool on = found != all.end() && found->second.enabled;
        if (!on && !rules_.hasSavedCompRules(token))
            continue;
        CompOffsets& offsets = all[token];
        offsets.enabled = true;
        offsets.partials = nudged(offsets.partials, by);
        if (!offsets.linked)
            offsets.totality = nudged(offsets.totality, by);
        if (!moved)
            moved = offsets;
    }
    if (!moved)
        return;
    compOffsets_.set(std::move(all));
    const std::string summary = compSummary();
    tell(summary == "0" ? "back to zero" : summary + " for every camera");
    announceComp(summary == "0" ? "exposure reset" : "all cameras " + spokenStops(moved->partials));
}

void ExposureControl::resetExposureComp(bool announce) {
    const std::string words = "reset to 0 for every camera";
    compOffsets_.set({});
    log_.pushLog("⟲ Exposure compensation " + words);
    logbook_.noteEvent("exposure compensation " + words);
    if (announce)
        announceComp("exposure reset");
}

void ExposureControl::resetForRun() {
    if (compActive())
        log_.pushLog("⟲ Exposure compensation reset to 0 for every camera");
    compOffsets_.set({});
    logbook_.noteEvent("exposure compensation reset to 0 for every camera (new run)");
}

void ExposureControl::tell(const std::string& words) {
    log_.pushLog("⟲ Exposure compensation: " + words);
    logbook_.noteEvent("exposure compensation: " + words);
}

void ExposureControl::logCompChange(const std::string& token) {
    const CompOffsets offsets = compOffsets_.get().at(token);
    if (!offsets.enabled) {
        tell(token + " compensation off");
        announceComp(token + " compensation off");
        return;
    }
    const int totality = offsets.inTotality();
    tell(token + " partials " + ExposureComp::signedStops(offsets.partials) + ", totality " +
         ExposureComp::signedStops(totality));
    announceComp(token + (totality == offsets.partials ? " " + spokenStops(offsets.partials)
                                                       : " partials " + spokenStops(offsets.partials) +
                                                             ", totality " + spokenStops(totality)));
}

void ExposureControl::announceComp(const std::string& text) {
    ports_.loop.cancel(pendingSpeech_);
    pendingSpeech_ = ports_.loop.after(speechPause, lifeline_.guard([this, text] { spoken_.emit(text); }));
}

bool ExposureControl::compActive() const {
    return std::ranges::any_of(compOffsets_.get(), [](const auto& one) { return active(one.second); });
}

std::string ExposureControl::compSummary() const {
    std::string summary;
    const Offsets& all = compOffsets_.get();
    for (const std::string& token : timelineTokens()) {
        const auto found = all.find(token);
        if (found != all.end() && active(found->second))
            summary += (summary.empty() ? "" : ", ") + ExposureComp::summary(token, found->second);
    }
    return summary.empty() ? "0" : summary;
}

std::vector<std::string> ExposureControl::timelineTokens() const {
    std::vector<std::string> tokens;
    for (const auto& [token, captures] : script_.capturesByToken())
        tokens.push_back(token);
    for (const auto& entry : roster_.cameraRoster(tokens))
        if (std::ranges::count(tokens, entry.token) == 0)
            tokens.push_back(entry.token);
    return tokens;
}

// --- what a frame gets

int ExposureControl::compStops(const std::string& token, double offsetSec) const {
    const CompOffsets offsets = offsetsOf(token);
    if (!offsets.enabled || !rules_.hasSavedCompRules(token))
        return 0;
    const auto& contacts = site_.contactTHours();
    const auto second = contacts.find("C2");
    const auto third = contacts.find("C3");
    const bool total = second != contacts.end() && third != contacts.end() &&
                       offsetSec >= second->second * 3600 - roundContact &&
                       offsetSec <= third->second * 3600 + roundContact;
    if (!total)
        return offsets.partials;
    return leaveTotalityAlone_.get() ? 0 : offsets.inTotality();
}

exposure::CompGaps ExposureControl::compGaps(const std::string& token) const {
    const auto& settings = script_.scriptCameraSettings();
    if (const auto line = settings.find(token); line != settings.end())
        if (const auto gaps = ExposureComp::gapsFromCamset(line->second))
            return *gaps;
    for (const auto& camera : roster_.camerasFor(token)) {
        if (!camera->connected())
            continue;
        const std::string& model = camera->model();
        const double change = floors_.measuredFloor(model).value_or(camera->minIntervalSec());
        const double same =
            floors_.measuredSameFloor(model).value_or(std::max(change * sameGapShare, leastSameGap));
        return {.same = same, .change = change, .source = "profile"};
    }
    return {.same = usualSameGap, .change = usualChangeGap, .source = "default"};
}

std::optional<ExposureControl::Neighbor> ExposureControl::compNeighbor(const script::Capture& capture) const {
    const auto& byToken = script_.capturesByToken();
    const auto its = byToken.find(capture.camera);
    if (its == byToken.end())
        return std::nullopt;
    const auto next =
        std::ranges::upper_bound(its->second, capture.offsetSec + hairSec, {}, &script::Capture::offsetSec);
    if (next == its->second.end())
        return std::nullopt;
    return Neighbor{
        .spacing = next->offsetSec - capture.offsetSec,
        .same = std::abs(next->shutterSec - capture.shutterSec) < hairSec && next->iso == capture.iso &&
                std::abs(next->aperture - capture.aperture) < hairSec && next->bulb == capture.bulb};
}

ExposureControl::Compensated ExposureControl::compensated(const script::Capture& capture) const {
    const int stops = compStops(capture.camera, capture.offsetSec);
    if (stops == 0)
        return {.capture = capture};
    const auto neighbor = compNeighbor(capture);
    const exposure::CompFrame frame{.shutterSec = capture.shutterSec,
                                    .iso = capture.iso,
                                    .aperture = capture.aperture,
                                    .bulb = capture.bulb};
    auto result = ExposureComp::apply(
        frame, stops, rules_.compRules(capture.camera), compGaps(capture.camera),
        neighbor ? std::optional(neighbor->spacing) : std::nullopt, neighbor && neighbor->same);
    Compensated out{.capture = capture, .ev = stops, .note = result.note};
    out.capture.id = base::Uuid::fresh();
    out.capture.shutterSec = result.frame.shutterSec;
    out.capture.iso = result.frame.iso;
    out.capture.aperture = result.frame.aperture;
    out.result = std::move(result);
    return out;
}

} // namespace zenka::rig
