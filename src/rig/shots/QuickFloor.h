#pragma once

#include "rig/shots/FrameSeries.h"
#include "rig/shots/GapProfile.h"

#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace zenka::rig {

/// What a check of a body's link found.
struct LinkState {
    bool alive = false;                  ///< the body answers, maybe after its port was reset
    std::optional<double> meanLatencyMs; ///< of what it was asked; absent where that was not measured
};

/// Walks a ladder of intervals on one body to the first that it does not hold. A body that holds not even
/// the slowest is tried slower and slower until it does. Main thread.
class QuickFloor {
public:
    using Rows = std::vector<GapProfileRow>;
    using Done = std::function<void(GapProfileEnd end)>;
    /// Asks whether a body's link still works, and answers once on the main thread. The body's driver has
    /// let go of it meanwhile.
    using CheckLink =
        std::function<void(const CameraRoster::Camera&, std::function<void(const LinkState&)> done)>;

    explicit QuickFloor(const ports::Ports& ports) : ports_(ports), series_(ports) {}

    /// `changed` hears of each change of rows() and underWay().
    void start(const CameraRoster::Camera& camera, GapSettingsMode settings, const CheckLink& checkLink,
               std::function<void()> changed, Done done);
    /// Ends it after the frame that is under way.
    void stop();
    /// Ends it at once and without a word.
    void abandon();

    const Rows& rows() const { return rows_; }
    /// The rung so far.
    const std::optional<GapProfileRow>& underWay() const { return underWay_; }

    static constexpr int framesPerRung = 6;

    /// The intervals in seconds, in the order in which they are tried.
    static std::span<const double> fastLadder();
    static std::span<const double> slowLadder();
    /// Settings of two frames that differ in everything.
    static std::array<cameras::Shot, 2> changingShots();

private:
    double interval() const { return (slow_ ? slowLadder() : fastLadder())[rung_]; }
    void runStep(double restSec);
    void tell();
    void stepDone(const FrameSeries::Frames& frames);
    GapProfileRow rowOf(const FrameSeries::Frames& frames) const;
    bool wantsLinkCheck(const GapProfileRow& row) const;
    void checkLink();
    void linkChecked(const LinkState& link);
    void goOn(double restSec);
    void finish(GapProfileEnd end);

    const ports::Ports& ports_;
    FrameSeries series_;
    CameraRoster::Camera camera_;
    GapSettingsMode settings_ = GapSettingsMode::changing;
    CheckLink checkLink_;
    std::function<void()> changed_;
    Done done_;
    Rows rows_;
    std::optional<GapProfileRow> underWay_;
    bool slow_ = false;
    std::size_t rung_ = 0;
    bool stopping_ = false;
    bool checking_ = false;
    int check_ = 0; // the answer to an earlier one is passed over
    base::Lifeline lifeline_;
};

} // namespace zenka::rig
