#include "rig/shots/SustainedBurst.h"

#include "rig/shots/QuickFloor.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr int missesThatEnd = 3;
constexpr double usualFloorSec = 0.5; ///< of a body that was not measured

} // namespace

double SustainedBurst::targetCadence(const Wish& wish) {
    const double shutter = std::max(wish.shutterSec, 0.0);
    const double floor = wish.measuredFloorSec.value_or(usualFloorSec);
    double target = shutter > 0 ? shutter + std::max(floor, 0.3) : floor;
    if (wish.targetSec > 0)
        target = wish.targetSec;
    return std::max(target, shutter + 0.2);
}

void SustainedBurst::start(const CameraRoster::Camera& camera, const Wish& wish,
                           const std::function<void()>& changed,
                           std::function<void(GapProfileEnd end)> done) {
    const double shutter = std::max(wish.shutterSec, 0.0);
    burst_ = {.frames = shutter > 0 ? longFrames : shortFrames,
              .targetSec = targetCadence(wish),
              .shutterSec = shutter};
    stopping_ = false;
    auto shots = QuickFloor::changingShots();
    if (shutter > 0)
        shots[0].shutterSec = shots[1].shutterSec = shutter;
    series_.start(
        {.camera = camera,
         .shots = shots,
         .intervalSec = burst_.targetSec,
         .frames = burst_.frames,
         .patienceSec = std::max(shutter + 4, 5.0),
         .missesThatEnd = missesThatEnd},
        [this, changed](const FrameSeries::Frames& frames) {
            take(frames);
            changed();
        },
        [this, done = std::move(done)](const FrameSeries::Frames&) {
            done(stopping_ ? GapProfileEnd::stopped : GapProfileEnd::complete);
        });
    changed();
}

void SustainedBurst::take(const FrameSeries::Frames& frames) {
    const auto isOk = [](const FrameSeries::Frame& each) { return each.answer == FrameSeries::Answer::ok; };
    const auto firstMiss = std::ranges::find_if_not(frames, isOk);
    burst_.fired = static_cast<int>(frames.size());
    burst_.cleanFrames = static_cast<int>(firstMiss - frames.begin());
    burst_.missing = burst_.fired - static_cast<int>(std::ranges::count_if(frames, isOk));
    // What comes after the wall is at the pace of time-outs.
    burst_.cadenceSec =
        FrameSeries::meanSpacing(frames, static_cast<std::size_t>(burst_.cleanFrames)).value_or(0);
}

void SustainedBurst::stop() {
    stopping_ = true;
    series_.stop();
}

} // namespace zenka::rig
