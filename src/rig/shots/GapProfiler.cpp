#include "rig/shots/GapProfiler.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

bool isSony(const cameras::CameraControl& camera) {
    return camera.backend() == "CrSDK" ||
           (camera.backend() == "gphoto2" && (base::containsIgnoringCase(camera.model(), "sony") ||
                                              base::containsIgnoringCase(camera.model(), "ilce")));
}

double sane(double seconds) {
    constexpr double longest = 3600;
    return std::isfinite(seconds) ? std::clamp(seconds, 0.0, longest) : 0;
}

} // namespace

GapProfiler::GapProfiler(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                         const Transport& transport, const ManualFire& manualFire, MeasuredFloors& floors,
                         BodiesInUse& inUse)
    : ports_(ports), log_(log), roster_(roster), transport_(transport), manualFire_(manualFire),
      floors_(floors), inUse_(inUse), quickFloor_(ports), sustainedBurst_(ports) {
}

void GapProfiler::setGapBurstShutter(double seconds) {
    gapBurstShutter_.set(sane(seconds));
}

void GapProfiler::setGapBurstTargetCadence(double seconds) {
    gapBurstTargetCadence_.set(sane(seconds));
}

std::string GapProfiler::refusal(const CameraRoster::Camera& camera) const {
    if (gapProfileRunning_.get())
        return "A profile is running. Wait for its verdict, or stop it.";
    if (transport_.runActive())
        return "A run is on, and a profile would cost it frames. Measure when it is over.";
    if (!camera || !camera->connected() || roster_.isDisconnected(camera->id()))
        return "This camera is not connected.";
    if (inUse_.has(camera->id()))
        return "This camera is being read or fired. Measure it when that is over.";
    return {};
}

std::string GapProfiler::runGapProfile(const std::string& camID) {
    const auto& cameras = roster_.cameras();
    const auto found = std::ranges::find(cameras, camID, [](const auto& each) { return each->id(); });
    const CameraRoster::Camera camera = found == cameras.end() ? nullptr : *found;
    if (std::string reason = refusal(camera); !reason.empty())
        return reason;
    camera_ = camera;
    use_ = inUse_.take(camera->id(), BodiesInUse::Task::measuring);
    cameraName_ = roster_.labelFor(*camera);
    mode_ = gapProfileMode_.get();
    settings_ = gapSettingsMode_.get();
    servicesOff_ = camera->isReal() ? manualFire_.keepServicesOff(*camera) : nullptr;
    gapProfileTargetID_.set(camera->id());
    gapProfileBodyIsSony_.set(isSony(*camera));
    gapProfileVerdict_.set("");
    gapProfileRows_.set({});
    gapBurst_.set(std::nullopt);
    gapProfileRunning_.set(true);
    if (mode_ == GapProfileMode::quickFloor)
        runQuickFloorProfile();
    else
        runSustainedBurstProfile();
    return {};
}

void GapProfiler::runQuickFloorProfile() {
    quickFloor_.start(
        camera_, settings_, checkLink_,
        [this] {
            gapProfileRung_.set(quickFloor_.underWay());
            gapProfileRows_.set(quickFloor_.rows());
        },
        [this](GapProfileEnd end) { finish(end); });
}

void GapProfiler::runSustainedBurstProfile() {
    sustainedBurst_.start(
        camera_,
        {.shutterSec = gapBurstShutter_.get(),
         .targetSec = gapBurstTargetCadence_.get(),
         .measuredFloorSec = floors_.measuredFloor(camera_->model())},
        [this] { gapBurst_.set(sustainedBurst_.burst()); }, [this](GapProfileEnd end) { finish(end); });
}

void GapProfiler::stop() {
    if (!gapProfileRunning_.get())
        return;
    if (mode_ == GapProfileMode::quickFloor)
        quickFloor_.stop();
    else
        sustainedBurst_.stop();
}

void GapProfiler::cutShort(GapProfileEnd end) {
    quickFloor_.abandon();
    sustainedBurst_.abandon();
    finish(end);
}

void GapProfiler::followRoster() {
    if (!gapProfileRunning_.get())
        return;
    const bool here = std::ranges::count(roster_.cameras(), camera_) > 0 && camera_->connected() &&
                      !roster_.isDisconnected(camera_->id());
    if (!here)
        cutShort(GapProfileEnd::gone);
}

void GapProfiler::followRun() {
    if (gapProfileRunning_.get() && transport_.runActive())
        cutShort(GapProfileEnd::run);
}

GapVerdicts::Body GapProfiler::body() const {
    return {.simulated = !camera_->isReal(), .sony = gapProfileBodyIsSony_.get()};
}

void GapProfiler::keepBurst(const GapBurst& burst) {
    const std::string& model = camera_->model();
    if (burst.cleanFrames < 1)
        return; // a body that never answered has shown no buffer
    const double cadence = burst.cadenceSec > 0 ? burst.cadenceSec : burst.targetSec;
    if (!burst.clean())
        floors_.saveBurstDepth(model, burst.cleanFrames, cadence);
    else if (burst.shutterSec <= 0) // the cadence of long frames has their exposure in it
        floors_.saveSustainedFloor(model, cadence);
    if (burst.shutterSec > 0)
        floors_.saveLongFrameFloor(model, burst.shutterSec, cadence, burst.clean());
}

/// Keeps what a profile has found, and gives the verdict.
std::string GapProfiler::settle(GapProfileEnd end) {
    if (mode_ == GapProfileMode::quickFloor) {
        const auto finding = GapVerdicts::quickFloor(quickFloor_.rows(), end, body());
        if (finding.floorSec)
            floors_.saveMeasuredFloor(camera_->model(), *finding.floorSec,
                                      settings_ == GapSettingsMode::same);
        return finding.verdict;
    }
    const GapBurst& burst = sustainedBurst_.burst();
    if (end == GapProfileEnd::complete && camera_->isReal())
        keepBurst(burst);
    return GapVerdicts::sustainedBurst(burst, end, body());
}

void GapProfiler::finish(GapProfileEnd end) {
    const std::string verdict = settle(end);
    servicesOff_.reset();
    camera_.reset();
    use_ = {};
    gapProfileRung_.set(std::nullopt);
    log_.pushLog((mode_ == GapProfileMode::quickFloor ? "⏱ Gap profile " : "⏱ Sustained burst ") +
                 cameraName_ + ": " + verdict);
    history_.edit([&](std::vector<Past>& past) {
        past.insert(past.begin(), {.at = ports_.clock.now(),
                                   .cameraName = cameraName_,
                                   .mode = mode_,
                                   .settings = settings_,
                                   .verdict = verdict});
    });
    gapProfileVerdict_.set(verdict);
    gapProfileRunning_.set(false); // last, as who hears of it may start the next
}

} // namespace zenka::rig
