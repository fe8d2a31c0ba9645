#include "rig/shots/QuickFloor.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr double floorPatienceSec = 8;
/// Between two rungs, so that what one has left behind is not held against the next.
constexpr double restSec = 1;
/// A driver that has let go of its body needs this before another program gets at it.
constexpr base::Seconds lettingGo{0.5};
/// And this to take it up again.
constexpr double restAfterCheckSec = 5;
constexpr double liveLatencyMs = 1500;

} // namespace

std::span<const double> QuickFloor::fastLadder() {
    static constexpr std::array ladder{1.0, 0.8, 0.6, 0.5, 0.4, 0.33, 0.25, 0.2, 0.16, 0.12, 0.1};
    return ladder;
}

std::span<const double> QuickFloor::slowLadder() {
    static constexpr std::array ladder{1.5, 2.0, 2.5, 3.0, 4.0, 5.0};
    return ladder;
}

std::array<cameras::Shot, 2> QuickFloor::changingShots() {
    return {cameras::Shot{.iso = 400, .aperture = 8, .shutterSec = 0.001},
            cameras::Shot{.iso = 200, .aperture = 11, .shutterSec = 0.0005}};
}

void QuickFloor::start(const CameraRoster::Camera& camera, GapSettingsMode settings,
                       const CheckLink& checkLink, std::function<void()> changed, Done done) {
    abandon();
    camera_ = camera;
    settings_ = settings;
    checkLink_ = checkLink;
    changed_ = std::move(changed);
    done_ = std::move(done);
    rows_.clear();
    slow_ = stopping_ = false;
    rung_ = 0;
    runStep(0);
}

void QuickFloor::runStep(double rest) {
    auto shots = changingShots();
    if (settings_ == GapSettingsMode::same)
        shots[1] = shots[0];
    const base::Uuid id = base::Uuid::fresh();
    underWay_ = GapProfileRow{.id = id, .intervalSec = interval()};
    series_.start(
        {.camera = camera_,
         .shots = shots,
         .intervalSec = interval(),
         .frames = framesPerRung,
         .patienceSec = floorPatienceSec,
         // no closer to the last frame of the rung before than this one allows
         .firstAfterSec = rest > 0 ? std::max(rest, interval()) : 0},
        [this](const FrameSeries::Frames& frames) {
            underWay_ = rowOf(frames);
            tell();
        },
        [this](const FrameSeries::Frames& frames) { stepDone(frames); });
    tell();
}

/// Who hears of it may stop or abandon.
void QuickFloor::tell() {
    if (const auto changed = changed_)
        changed();
}

GapProfileRow QuickFloor::rowOf(const FrameSeries::Frames& frames) const {
    const auto count = [&](FrameSeries::Answer answer) {
        return static_cast<int>(std::ranges::count(frames, answer, &FrameSeries::Frame::answer));
    };
    GapProfileRow row{.id = underWay_ ? underWay_->id : base::Uuid::fresh(),
                      .intervalSec = interval(),
                      .frames = static_cast<int>(frames.size()),
                      .ok = count(FrameSeries::Answer::ok),
                      .dropped = count(FrameSeries::Answer::dropped),
                      .noResp = count(FrameSeries::Answer::none),
                      .achievedSec = FrameSeries::meanSpacing(frames, frames.size())};
    for (const FrameSeries::Frame& frame : frames) {
        if (frame.answer == FrameSeries::Answer::ok)
            row.avgLatencyMs += frame.latencyMs / row.ok;
    }
    return row;
}

void QuickFloor::stepDone(const FrameSeries::Frames& frames) {
    const GapProfileRow row = rowOf(frames);
    underWay_.reset();
    if (row.frames > 0)
        rows_.push_back(row);
    tell();
    if (!camera_)
        return; // abandoned
    if (stopping_)
        finish(GapProfileEnd::stopped);
    else if (wantsLinkCheck(row))
        checkLink();
    else
        goOn(restSec);
}

bool QuickFloor::wantsLinkCheck(const GapProfileRow& row) const {
    return row.noResp == row.frames && camera_->backend() == "gphoto2" && checkLink_;
}

void QuickFloor::checkLink() {
    checking_ = true;
    camera_->suspend();
    ports_.loop.after(lettingGo, lifeline_.guard([this, check = ++check_] {
        if (!checking_ || check != check_)
            return;
        checkLink_(camera_, lifeline_.guard([this, check](const LinkState& link) {
            if (checking_ && check == check_)
                linkChecked(link);
        }));
    }));
}

void QuickFloor::linkChecked(const LinkState& link) {
    checking_ = false;
    camera_->resume();
    if (link.alive && link.meanLatencyMs.value_or(0) < liveLatencyMs)
        goOn(restAfterCheckSec);
    else
        finish(GapProfileEnd::wedged);
}

void QuickFloor::goOn(double rest) {
    const bool clean = rows_.back().clean();
    if (!clean && !slow_ && rung_ == 0) {
        slow_ = true;
        runStep(rest);
        return;
    }
    const bool more = rung_ + 1 < (slow_ ? slowLadder() : fastLadder()).size();
    if (clean == slow_ || !more) {
        finish(GapProfileEnd::complete);
        return;
    }
    ++rung_;
    runStep(rest);
}

void QuickFloor::stop() {
    stopping_ = true;
    if (checking_) {
        checking_ = false;
        camera_->resume();
        finish(GapProfileEnd::stopped);
        return;
    }
    series_.stop();
}

void QuickFloor::abandon() {
    series_.abandon();
    if (std::exchange(checking_, false))
        camera_->resume();
    camera_.reset();
    underWay_.reset();
    done_ = nullptr;
    changed_ = nullptr;
}

void QuickFloor::finish(GapProfileEnd end) {
    camera_.reset();
    changed_ = nullptr;
    const auto done = std::exchange(done_, nullptr);
    done(end);
}

} // namespace zenka::rig
