#include "rig/checks/CadenceAdvisor.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

/// A measured drop floor becomes advice with this margin.
constexpr double safetyMargin = 1.3;
constexpr double leastSpacingSec = 0.5; ///< where nothing is known

/// Seconds that bodies behind a driver hold when nothing was measured.
std::optional<double> baselineOf(const cameras::CameraControl& camera) {
    static constexpr std::array<std::pair<std::string_view, double>, 4> baselines{{
        {"gphoto2", 1.3},
        {"CrSDK", 0.4},
        {"LumixPTP", 0.5},
        {"LumixICC", 0.5},
    }};
    const auto found =
        std::ranges::find(baselines, camera.backend(), [](const auto& each) { return each.first; });
    return found == baselines.end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::string fmtSecs(double seconds) {
    return seconds < 1 ? absl::StrFormat("%.0f ms", seconds * 1000) : absl::StrFormat("%.1f s", seconds);
}

CadenceAdvisor::CadenceAdvisor(RigLog& log, const CameraRoster& roster, const ScriptDesk& script,
                               const MeasuredFloors& floors)
    : log_(log), roster_(roster), script_(script), floors_(floors) {
}

bool CadenceAdvisor::connected(const cameras::CameraControl& camera) const {
    return camera.connected() && !roster_.isDisconnected(camera.id());
}

double CadenceAdvisor::bodyFloorSec(const cameras::CameraControl& camera) const {
    const auto baseline = baselineOf(camera);
    if (!baseline)
        return 0;
    if (const auto sustained = floors_.sustainedFloor(camera.model()))
        return *sustained;
    if (const auto floor = floors_.measuredFloor(camera.model()))
        return std::max(*floor * safetyMargin, *baseline);
    return *baseline;
}

bool CadenceAdvisor::measured(const cameras::CameraControl& camera) const {
    return floors_.sustainedFloor(camera.model()) || floors_.measuredFloor(camera.model());
}

std::string CadenceAdvisor::floorLabel(const cameras::CameraControl& camera) const {
    return absl::StrFormat("%.0fms %s", bodyFloorSec(camera) * 1000, measured(camera) ? "measured" : "floor");
}

std::optional<CadenceAdvisor::Pair> CadenceAdvisor::tightestPair(const cameras::CameraControl& camera) const {
    struct Frame {
        double offsetSec;
        int lineNo;
    };
    std::vector<Frame> frames;
    for (const auto& [token, captures] : script_.capturesByToken()) {
        if (!roster_.cameraMatches(camera, token))
            continue;
        for (const script::Capture& capture : captures)
            frames.push_back({capture.offsetSec, capture.lineNo});
    }
    std::ranges::stable_sort(frames, {}, &Frame::offsetSec);
    std::optional<Pair> tightest;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const double gap = frames[i].offsetSec - frames[i - 1].offsetSec;
        if (gap > 0 && (!tightest || gap < tightest->gapSec))
            tightest = {.gapSec = gap, .lineNo = frames[i].lineNo};
    }
    return tightest;
}

std::optional<double> CadenceAdvisor::tightestGap(const cameras::CameraControl& camera) const {
    const auto pair = tightestPair(camera);
    return pair ? std::optional(pair->gapSec) : std::nullopt;
}

double CadenceAdvisor::suggestedMinSpacingSec() const {
    std::optional<double> spacing;
    for (const auto& camera : roster_.cameras()) {
        const auto baseline = baselineOf(*camera);
        if (!baseline || !connected(*camera))
            continue;
        const double floor = floors_.measuredFloor(camera->model()).value_or(0) * safetyMargin;
        spacing = std::max({spacing.value_or(0), floor, *baseline});
    }
    return spacing.value_or(leastSpacingSec);
}

double CadenceAdvisor::suggestedSameGapSec() const {
    constexpr double shareOfChanging = 0.4; // no setting has to be sent
    constexpr double least = 0.2;
    std::optional<double> gap;
    for (const auto& camera : roster_.cameras()) {
        const auto floor = floors_.measuredSameFloor(camera->model());
        if (floor && connected(*camera))
            gap = std::max(gap.value_or(0), *floor);
    }
    return gap ? *gap : std::max(suggestedMinSpacingSec() * shareOfChanging, least);
}

double CadenceAdvisor::spacingFloor(const std::vector<std::string>& tokens) const {
    double floor = leastSpacingSec;
    for (const std::string& token : tokens) {
        for (const auto& camera : roster_.camerasFor(token)) {
            if (connected(*camera))
                floor = std::max(floor, bodyFloorSec(*camera));
        }
    }
    return floor;
}

std::optional<CadenceAlert> CadenceAdvisor::alertFor(const cameras::CameraControl& camera) const {
    constexpr double roomWhenMeasured = 0.05;
    constexpr double marginWhenEstimated = 1.4;
    const double floor = bodyFloorSec(camera);
    if (floor <= 0)
        return std::nullopt;
    const auto gap = tightestGap(camera);
    if (!gap)
        return std::nullopt;
    const bool estimated = !floors_.measuredFloor(camera.model());
    if (estimated ? floor * marginWhenEstimated <= *gap : floor - roomWhenMeasured <= *gap)
        return std::nullopt;
    const int pct = static_cast<int>(std::lround((1 - *gap / floor) * 100));
    return CadenceAlert{.id = base::Uuid::fresh(),
                        .cameraName = roster_.labelFor(camera),
                        .scriptGapSec = *gap,
                        .bodyFloorSec = floor,
                        .pct = std::max(pct, 1),
                        .estimated = estimated};
}

std::optional<CadenceAlert> CadenceAdvisor::cadenceAlertForArm() const {
    std::optional<CadenceAlert> worst;
    for (const auto& camera : roster_.cameras()) {
        if (!connected(*camera) || !camera->isReal())
            continue;
        const auto alert = alertFor(*camera);
        if (alert && (!worst || alert->pct > worst->pct))
            worst = alert;
    }
    return worst;
}

bool CadenceAdvisor::holdsArming() {
    const auto alert = cadenceAlertForArm();
    if (!alert || alert->estimated)
        return false;
    log_.pushLog(
        absl::StrFormat("Timing: arm paused — script is faster than %s can shoot (~%d%% would drop).",
                        alert->cameraName, alert->pct));
    tooTightWarning_.set(alert);
    return true;
}

void CadenceAdvisor::explainDrops(const std::vector<BodyTally>& bodies) {
    const auto share = [](const BodyTally& body) {
        return body.dropped / static_cast<double>(std::max(body.ok + body.dropped, 1));
    };
    const auto worst = std::ranges::max_element(bodies, {}, share);
    if (worst == bodies.end() || worst->dropped < 1)
        return;
    for (const auto& camera : roster_.cameras()) {
        if (!camera->isReal() || roster_.labelFor(*camera) != worst->label)
            continue;
        auto alert = alertFor(*camera);
        if (!alert)
            return;
        alert->frames = worst->ok + worst->dropped;
        alert->dropped = worst->dropped;
        dropExplainer_.set(std::move(alert));
        return;
    }
}

void CadenceAdvisor::resolveTooTightWarning(CadenceChoice choice) {
    tooTightWarning_.set(std::nullopt);
    if (choice != CadenceChoice::close)
        chosen_.emit(choice);
}

void CadenceAdvisor::resolveDropExplainer(CadenceChoice choice) {
    if (!dropExplainer_.get())
        return;
    dropExplainer_.set(std::nullopt);
    if (choice != CadenceChoice::close)
        chosen_.emit(choice);
    explained_.emit();
}

} // namespace zenka::rig
