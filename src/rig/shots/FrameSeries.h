#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zenka::rig {

/// Frames fired on one body at a spacing, each after the one before was answered or given up. One series at
/// a time; main thread, and it never waits.
class FrameSeries {
public:
    struct Plan {
        CameraRoster::Camera camera;
        std::array<cameras::Shot, 2> shots; ///< in turn
        double intervalSec = 0;             ///< from start to start, at the least
        int frames = 0;
        double patienceSec = 0;   ///< for an answer
        int missesThatEnd = 0;    ///< in a row; 0 for no such end
        double firstAfterSec = 0; ///< before the first frame
    };

    enum class Answer {
        ok,
        dropped,
        none, ///< not in time, or the driver says that the body was silent
    };
    struct Frame {
        Answer answer = Answer::ok;
        double startedAt = 0; ///< continuous seconds
        double latencyMs = 0;
    };
    using Frames = std::vector<Frame>;

    explicit FrameSeries(const ports::Ports& ports) : ports_(ports) {}
    FrameSeries(const FrameSeries&) = delete;
    FrameSeries& operator=(const FrameSeries&) = delete;
    ~FrameSeries() { abandon(); }

    /// `each` hears of the frames so far after each frame, `done` once at the end, with the frames that were
    /// fired.
    void start(Plan plan, std::function<void(const Frames&)> each, std::function<void(const Frames&)> done);

    bool running() const { return running_; }

    /// Ends the series after the frame that is under way, at once when none is.
    void stop();
    /// Ends it without a word; an answer that still comes is passed over.
    void abandon();

    /// Mean spacing of the first frames, or of all; nothing for fewer than two.
    static std::optional<double> meanSpacing(const Frames& frames, std::size_t first);

private:
    void fireAfter(double seconds);
    void fire();
    void answered(const cameras::CaptureOutcome& outcome);
    void take(Answer answer, double latencyMs);
    bool over() const;
    void finish();
    void cancelTimer();

    const ports::Ports& ports_;
    Plan plan_;
    std::function<void(const Frames&)> each_;
    std::function<void(const Frames&)> done_;
    Frames frames_;
    bool running_ = false;
    bool stopping_ = false;
    int number_ = 0;       // of the frame fired last, counted over all series
    bool waiting_ = false; // for its answer
    int silent_ = 0;       // frames given up whose answer is still to come
    std::weak_ptr<cameras::CameraControl> silentOn_;
    ports::MainLoop::TimerId timer_ = ports::MainLoop::TimerId::none;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
