#pragma once

#include "ui/timeline/TimelineLayout.h"

#include <QObject>
#include <QString>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

struct TimelineTick;

/// The run on a line of time: the lanes and their frames, the stretch that is shown, the mark that is
/// chosen, and what can be done with them.
class TimelineView : public QObject {
    Q_OBJECT
    Q_PROPERTY(int laneCount READ laneCount NOTIFY lanesChanged)
    Q_PROPERTY(bool empty READ empty NOTIFY lanesChanged)
    Q_PROPERTY(QString markText READ markText NOTIFY textChanged)
    Q_PROPERTY(QString keysText READ keysText CONSTANT)
    Q_PROPERTY(bool wholeShown READ wholeShown NOTIFY changed)

public:
    TimelineView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);

    const std::vector<TimelineLane>& lanes() const { return lanes_; }
    int laneCount() const { return static_cast<int>(lanes_.size()); }
    /// The script has no frame.
    bool empty() const;
    const TimelineRange& range() const { return range_; }
    const TimelineRange& all() const { return all_; }
    bool wholeShown() const { return range_ == all_; }
    double playhead() const { return playhead_; }

    struct Contact {
        QString key;
        double clock = 0;
    };
    std::vector<Contact> contacts() const;
    std::vector<TimelineTick> ticks(double width, double labelWidth) const;

    Q_INVOKABLE void zoomIn() { zoom(0.5); }
    Q_INVOKABLE void zoomOut() { zoom(2); }
    Q_INVOKABLE void showAll();
    /// Zooms around the playhead, or around the middle while the playhead is out of sight.
    void zoom(double factor);
    /// Moves the range by a part of its span; positive is later.
    void pan(double part);

    /// Moves the clock. Refused with a word, and false, in live timing.
    bool scrubTo(double clock);

    const std::optional<FrameRef>& selection() const { return selection_; }
    void select(std::optional<FrameRef> mark);
    /// The next or an earlier frame of the lane, by steps. The first call takes the one nearest to the clock.
    void step(int frames);
    /// The neighbouring lane that has marks, at about the same time.
    void stepLane(int lanes);
    void selectEnd(bool last);
    /// Tells the script line of the chosen mark.
    void activate();
    /// Puts the clock on the chosen mark.
    void scrubToSelection();

    /// What is under the pointer: a mark, or the name of a lane.
    void hover(std::optional<FrameRef> mark, std::optional<std::size_t> laneName);

    /// The mark under the pointer or else the chosen one in words: time at the site, label, exposure, note.
    QString markText() const;
    QString keysText() const;

Q_SIGNALS:
    void changed();
    /// The clock went on; nothing else changed.
    void playheadMoved();
    void lanesChanged();
    void textChanged();
    void selected();
    void captureClicked(int lineNo);

private:
    void rebuild();
    void tick();
    void setRange(const TimelineRange& range);
    void reveal(const FrameRef& mark);
    double clockOf(const FrameRef& mark) const { return lanes_[mark.lane].offsets[mark.frame]; }
    QString describe(const FrameRef& mark) const;
    QString describeLane(const TimelineLane& lane) const;

    rig::RigModel& rig_;
    std::vector<TimelineLane> lanes_;
    TimelineRange all_;
    TimelineRange range_;
    double playhead_ = 0;
    std::optional<FrameRef> selection_;
    std::optional<FrameRef> hovered_;
    std::optional<std::size_t> hoveredName_;
    bool refused_ = false;
};

} // namespace zenka::ui
