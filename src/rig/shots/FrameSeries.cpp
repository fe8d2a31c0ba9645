#include "rig/shots/FrameSeries.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

void FrameSeries::start(Plan plan, std::function<void(const Frames&)> each,
                        std::function<void(const Frames&)> done) {
    abandon();
    if (silentOn_.lock() != plan.camera) {
        silentOn_ = plan.camera;
        silent_ = 0;
    }
    plan_ = std::move(plan);
    each_ = std::move(each);
    done_ = std::move(done);
    frames_.clear();
    running_ = true;
    stopping_ = false;
    fireAfter(plan_.firstAfterSec);
}

void FrameSeries::fireAfter(double seconds) {
    timer_ = ports_.loop.after(base::Seconds{seconds}, lifeline_.guard([this] {
        timer_ = ports::MainLoop::TimerId::none;
        fire();
    }));
}

void FrameSeries::fire() {
    const int number = ++number_;
    const cameras::Shot shot = plan_.shots[frames_.size() % plan_.shots.size()];
    frames_.push_back({.answer = Answer::none, .startedAt = ports_.clock.continuousSeconds()});
    waiting_ = true;
    timer_ = ports_.loop.after(base::Seconds{plan_.patienceSec}, lifeline_.guard([this] {
        timer_ = ports::MainLoop::TimerId::none;
        ++silent_;
        take(Answer::none, 0);
    }));
    const CameraRoster::Camera camera = plan_.camera; // the answer may come at once and end the series
    camera->capture(shot, lifeline_.guard([this, number, body = std::weak_ptr(camera)](
                                              const cameras::CaptureOutcome& outcome) {
        if (number == number_ && waiting_)
            answered(outcome);
        else if (silent_ > 0 && body.lock() == silentOn_.lock())
            --silent_;
    }));
}

void FrameSeries::answered(const cameras::CaptureOutcome& outcome) {
    cancelTimer();
    if (outcome.ok) {
        silent_ = 0;
        take(Answer::ok, outcome.latencyMs);
        return;
    }
    // A driver refuses a frame as long as it still has the one before, and that is no answer of the body.
    take(!outcome.responded || silent_ > 0 ? Answer::none : Answer::dropped, 0);
}

void FrameSeries::take(Answer answer, double latencyMs) {
    waiting_ = false;
    frames_.back().answer = answer;
    frames_.back().latencyMs = latencyMs;
    if (const auto each = each_)
        each(frames_);
    if (!running_)
        return;
    if (over()) {
        finish();
        return;
    }
    const double next = frames_.back().startedAt + plan_.intervalSec;
    fireAfter(std::max(next - ports_.clock.continuousSeconds(), 0.0));
}

bool FrameSeries::over() const {
    if (stopping_ || frames_.size() >= static_cast<std::size_t>(plan_.frames))
        return true;
    const auto misses = std::find_if(frames_.rbegin(), frames_.rend(),
                                     [](const Frame& each) { return each.answer == Answer::ok; }) -
                        frames_.rbegin();
    return plan_.missesThatEnd > 0 && misses >= plan_.missesThatEnd;
}

void FrameSeries::stop() {
    if (!running_)
        return;
    stopping_ = true;
    if (!waiting_)
        finish();
}

void FrameSeries::finish() {
    cancelTimer();
    running_ = false;
    const auto done = std::exchange(done_, nullptr);
    each_ = nullptr;
    plan_.camera.reset();
    done(Frames(frames_)); // it may start the next series
}

void FrameSeries::abandon() {
    if (waiting_)
        ++silent_;
    cancelTimer();
    running_ = waiting_ = false;
    each_ = done_ = nullptr;
    plan_.camera.reset();
}

void FrameSeries::cancelTimer() {
    ports_.loop.cancel(std::exchange(timer_, ports::MainLoop::TimerId::none));
}

std::optional<double> FrameSeries::meanSpacing(const Frames& frames, std::size_t first) {
    const std::size_t count = std::min(first, frames.size());
    if (count < 2)
        return std::nullopt;
    return (frames[count - 1].startedAt - frames[0].startedAt) / static_cast<double>(count - 1);
}

} // namespace zenka::rig
