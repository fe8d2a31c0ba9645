#include "rig/runlog/RunLogbook.h"

#include "base/CivilTime.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds graceForLateRows{5};
constexpr int firstLagWarning = 10; // frames

} // namespace

RunLogbook::RunLogbook(const ports::Ports& ports, RigLog& log, const SiteDesk& site,
                       const CameraRoster& roster, std::string appVersion)
    : ports_(ports), log_(log), site_(site), roster_(roster), appVersion_(std::move(appVersion)),
      queue_(ports.queues.serial("zenka.runlog")) {
}

RunLogMeta RunLogbook::makeRunMeta(const std::string& kind) const {
    const Site& site = site_.site();
    return {.runKind = kind,
            .eclipseId = site_.eclipseId(),
            .eclipseName = site_.eclipse().rec.name,
            .site = site.label,
            .lat = site.lat,
            .lon = site.lon,
            .elev = site.elev,
            .tz = site.tzId,
            .contacts = site_.contactTHours(),
            .appVersion = appVersion_,
            .startedAt = ports_.clock.now()};
}

void RunLogbook::beginRunLog(const std::string& kind) {
    if (runLog_)
        runLog_->finishOrDiscard(graceForLateRows);
    runOK_.clear();
    runDropped_.clear();
    lateness_.clear();
    currentRunKind_ = kind;
    baselines_.clear();
    for (const auto& camera : roster_.cameras()) {
        if (const auto confirmed = camera->confirmedFrames())
            baselines_[camera->id()] = {.shots = camera->shotCount(), .confirmed = *confirmed};
    }
    confirmLagWarned_.clear();

    RunLogMeta meta = makeRunMeta(kind);
    const std::string baseName = freshBaseName(meta);
    runLog_ = std::make_shared<RunLog>(ports_, queue_, std::move(meta), baseName, log_.teller());
    lastCsvPath_ = runLog_->csvPath();
    log_.pushLog("📝 Run log → " + baseName + ".csv");
}

/// Two runs may begin within one second, and each has its own files.
std::string RunLogbook::freshBaseName(const RunLogMeta& meta) {
    std::string name = RunLogFormat::baseName(meta, base::machineTimeZone());
    if (std::exchange(lastBaseName_, name) != name) {
        sameNames_ = 1;
        return name;
    }
    return name + " " + std::to_string(++sameNames_);
}

void RunLogbook::endRunLog(bool completed, bool) {
    if (!runLog_)
        return;
    if (runLog_->frameCount() == 0) {
        runLog_->finishOrDiscard(graceForLateRows);
        runLog_.reset();
        return;
    }
    runLog_->finish();
    std::string saved = "📝 Run log saved (" + ports_.folders.runLogs().filename().string() + "/).";
    if (!lateness_.empty())
        saved += absl::StrFormat(" Lateness: median %.1f ms, 99 %% within %.1f ms, largest %.1f ms.",
                                 lateness_.quantile(0.5), lateness_.quantile(0.99), lateness_.largest());
    log_.pushLog(std::move(saved));

    std::set<std::string> labels;
    for (const auto& tally : {runOK_, runDropped_}) {
        for (const auto& [label, count] : tally)
            labels.insert(label);
    }
    std::vector<BodyTally> bodies;
    bodies.reserve(labels.size());
    for (const std::string& label : labels)
        bodies.push_back({.label = label, .ok = runOK_[label], .dropped = runDropped_[label]});
    const auto asymmetry = dropAsymmetryHint(bodies);
    if (asymmetry)
        log_.pushLog("⚠️ " + *asymmetry);
    tell(completed, bodies, asymmetry, reportStoredFrames());
    if (completed)
        sumUp(asymmetry);
    if (completed && !bodies.empty())
        completed_.emit(bodies);
    runLog_.reset();
}

void RunLogbook::closeForExit() {
    if (!runLog_)
        return;
    if (runLog_->frameCount() == 0)
        runLog_->discardSync();
    else
        runLog_->finishSync();
    runLog_.reset();
}

void RunLogbook::noteEvent(const std::string& text) {
    if (runLog_)
        runLog_->event(text, site_.timeZone());
}

void RunLogbook::countFrame(const cameras::CameraControl& camera, const std::string& label, bool ok) {
    if (camera.isReal())
        ++(ok ? runOK_ : runDropped_)[label];
}

std::optional<RunLogbook::StoredTally> RunLogbook::storedTally(const cameras::CameraControl& camera) const {
    const auto baseline = baselines_.find(camera.id());
    const auto confirmed = camera.confirmedFrames();
    if (baseline == baselines_.end() || !confirmed)
        return std::nullopt;
    return StoredTally{.fired = camera.shotCount() - baseline->second.shots,
                       .stored = *confirmed - baseline->second.confirmed};
}

void RunLogbook::watchCardWriting(const cameras::CameraControl& camera, const std::string& label) {
    const auto tally = storedTally(camera);
    if (!tally)
        return;
    const int lag = tally->fired - tally->stored;
    int& warned = confirmLagWarned_[camera.id()];
    if (lag < firstLagWarning || lag < 2 * std::max(warned, 1))
        return;
    warned = lag;
    log_.pushLog(
        absl::StrFormat("⚠️ %s: card writing is %d frames behind the shutter (fired %d, stored %d). If "
                        "this keeps growing, "
                        "frames will be lost — this cadence is over the body's sustained write rate.",
                        label, lag, tally->fired, tally->stored));
}

void RunLogbook::tell(bool completed, const std::vector<BodyTally>& bodies,
                      const std::optional<std::string>& asymmetry,
                      const std::vector<std::string>& lumixLines) {
    int ok = 0;
    int dropped = 0;
    for (const BodyTally& body : bodies) {
        ok += body.ok;
        dropped += body.dropped;
    }
    std::set<std::string> backends;
    std::multiset<std::string> models;
    for (const auto& camera : roster_.cameras()) {
        if (!camera->isReal())
            continue;
        backends.insert(camera->backend());
        models.insert(camera->model());
    }
    nlohmann::json told{{"kind", currentRunKind_},
                        {"complete", completed},
                        {"bodies", bodies.size()},
                        {"frames", ok + dropped},
                        {"ok", ok},
                        {"dropped", dropped},
                        {"drop_rate", static_cast<double>(dropped) / std::max(ok + dropped, 1)},
                        {"backends", backends},
                        {"models", models},
                        {"asymmetry", asymmetry.value_or("")}};
    if (!lumixLines.empty())
        told["confirm_lumix"] = lumixLines;
    if (moreFacts_) {
        for (const auto& [key, fact] : moreFacts_())
            told[key] = fact;
    }
    runTold_.emit(told.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::vector<std::string> RunLogbook::reportStoredFrames() {
    std::vector<std::string> lumixLines;
    for (const auto& camera : roster_.cameras()) {
        const auto tally = storedTally(*camera);
        if (!tally || tally->fired <= 0)
            continue;
        const int missing = tally->fired - tally->stored;
        std::string line =
            absl::StrFormat("%s: %d of %d fired frames confirmed stored", roster_.labelFor(*camera),
                            std::min(tally->stored, tally->fired), tally->fired);
        if (missing > 0)
            line += absl::StrFormat(" · %d UNCONFIRMED (still writing, or silently lost — check the card)",
                                    missing);
        log_.pushLog((missing > 0 ? "⚠️ " : "✓ ") + line);
        if (camera->backend() == "LumixPTP")
            lumixLines.push_back(std::move(line));
    }
    return lumixLines;
}

void RunLogbook::sumUp(const std::optional<std::string>& asymmetry) {
    int dropped = 0;
    int frames = 0;
    for (const auto& [label, count] : runOK_)
        frames += count;
    for (const auto& [label, count] : runDropped_)
        dropped += count;
    frames += dropped;
    if (frames == 0)
        return;
    pendingSurvey_.set(RunSummary{.id = base::Uuid::fresh(),
                                  .kind = currentRunKind_,
                                  .frames = frames,
                                  .dropped = dropped,
                                  .asymmetry = asymmetry});
    log_.pushLog(
        "✅ Run complete. Verify it: pop a card into a reader, then Tools ▸ Simulation Analyzer reads "
        "each RAW's real EXIF and checks ISO · aperture · shutter · timing against the plan.");
}

} // namespace zenka::rig
