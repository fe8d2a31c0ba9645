#include "ui/timeline/TimelineView.h"

#include "base/CivilTime.h"
#include "exposure/ExposureScales.h"
#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"
#include "ui/timeline/TimelineAxis.h"

#include <QStringList>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double contactMargin = 60; // seconds around first and last contact and the cues

std::string exposureText(const script::Capture& capture) {
    const std::string time = capture.shutterSec > 0 ? exposure::shutterLabel(capture.shutterSec) : "";
    std::string text = capture.bulb ? "BULB " + time : time.empty() ? "shutter as set" : time;
    if (capture.aperture > 0)
        text += absl::StrFormat(" f/%g", capture.aperture);
    if (capture.iso > 0)
        text += absl::StrFormat(" ISO %d", capture.iso);
    if (capture.expComp != 0)
        text += absl::StrFormat(" EC%+g", capture.expComp);
    return text;
}

} // namespace

TimelineView::TimelineView(rig::RigModel& rig, const ports::Ports&, QObject* parent)
    : QObject(parent), rig_(rig) {
    observe(this, rig.renderPace().renderTick().changed(), [this](auto) { tick(); });
    observe(this, rig.script().compiled(), [this] { rebuild(); });
    observe(this, rig.roster().changed(), [this] { rebuild(); });
    observe(this, rig.transport().activityChanged(), [this] { tick(); });
    observe(this, rig.outcomes().resultNoted(), [this](const std::string& token, int seq) {
        if (!takeResult(lanes_, rig_.outcomes().results(), token, seq))
            return;
        Q_EMIT changed();
        Q_EMIT textChanged();
    });
    observe(this, rig.outcomes().resultsCleared(), [this] {
        takeResults(lanes_, rig_.outcomes().results());
        Q_EMIT changed();
    });
    rebuild();
}

void TimelineView::rebuild() {
    const bool whole = wholeShown();
    lanes_ = timelineLanes(rig_.script(), rig_.roster());
    takeResults(lanes_, rig_.outcomes().results());
    const rig::Transport::Range run = rig_.transport().timeline();
    all_ = {.from = std::min(run.first, rig_.site().tC1() - contactMargin),
            .to = std::max(run.last, rig_.site().tC4() + contactMargin)};
    if (const auto& cues = rig_.script().audioCues(); !cues.empty()) {
        all_.from = std::min(all_.from, cues.front().offsetSec - contactMargin);
        all_.to = std::max(all_.to, cues.back().offsetSec + contactMargin);
    }
    const bool apart = range_.to <= all_.from || range_.from >= all_.to;
    range_ = whole || apart ? all_ : within(all_, range_.from, range_.span());
    selection_.reset();
    hovered_.reset();
    hoveredName_.reset();
    playhead_ = rig_.transport().clockNow();
    Q_EMIT lanesChanged();
    Q_EMIT changed();
    Q_EMIT textChanged();
}

void TimelineView::tick() {
    const bool inSight = range_.contains(playhead_);
    playhead_ = rig_.transport().clockNow();
    if (inSight && !range_.contains(playhead_) && all_.contains(playhead_))
        setRange(paged(range_, all_, playhead_));
    Q_EMIT playheadMoved();
}

bool TimelineView::empty() const {
    return rig_.script().captures().empty();
}

std::vector<TimelineView::Contact> TimelineView::contacts() const {
    std::vector<Contact> contacts;
    for (const auto& [key, hours] : rig_.site().contactTHours())
        contacts.push_back({.key = QString::fromStdString(key), .clock = hours * 3600});
    std::ranges::sort(contacts, {}, &Contact::clock);
    return contacts;
}

std::vector<TimelineTick> TimelineView::ticks(double width, double labelWidth) const {
    return timelineTicks(range_, width, labelWidth, rig_.site().timeZone(), rig_.site().wallAt(0).epochSec);
}

void TimelineView::setRange(const TimelineRange& range) {
    if (range == range_)
        return;
    range_ = range;
    Q_EMIT changed();
}

void TimelineView::showAll() {
    setRange(all_);
}

void TimelineView::zoom(double factor) {
    const double middle = (range_.from + range_.to) / 2;
    setRange(zoomed(range_, all_, factor, range_.contains(playhead_) ? playhead_ : middle));
}

void TimelineView::pan(double part) {
    setRange(within(all_, range_.from + part * range_.span(), range_.span()));
}

bool TimelineView::scrubTo(double clock) {
    refused_ = rig_.transport().live();
    if (!refused_)
        rig_.transport().scrubTo(std::clamp(clock, all_.from, all_.to));
    Q_EMIT textChanged();
    return !refused_;
}

void TimelineView::select(std::optional<FrameRef> mark) {
    selection_ = mark;
    refused_ = false;
    if (mark)
        reveal(*mark);
    Q_EMIT selected();
    Q_EMIT changed();
    Q_EMIT textChanged();
}

void TimelineView::reveal(const FrameRef& mark) {
    if (!range_.contains(clockOf(mark)))
        setRange(centred(range_, all_, clockOf(mark)));
}

void TimelineView::step(int frames) {
    hovered_.reset(); // the pointer may rest on the timeline while the keys are used
    if (!selection_) {
        const auto lane = std::ranges::find_if(lanes_, [](const auto& row) { return !row.offsets.empty(); });
        if (lane != lanes_.end())
            select(FrameRef{.lane = static_cast<std::size_t>(lane - lanes_.begin()),
                            .frame = lane->nearest(playhead_)});
        return;
    }
    const auto last = static_cast<long>(lanes_[selection_->lane].offsets.size()) - 1;
    const long wanted = static_cast<long>(selection_->frame) + frames;
    select(
        FrameRef{.lane = selection_->lane, .frame = static_cast<std::size_t>(std::clamp(wanted, 0L, last))});
}

void TimelineView::stepLane(int lanes) {
    if (!selection_) {
        step(0);
        return;
    }
    hovered_.reset();
    const auto count = static_cast<long>(lanes_.size());
    for (long lane = static_cast<long>(selection_->lane) + lanes; 0 <= lane && lane < count; lane += lanes) {
        const TimelineLane& row = lanes_[static_cast<std::size_t>(lane)];
        if (row.offsets.empty())
            continue;
        select(FrameRef{.lane = static_cast<std::size_t>(lane), .frame = row.nearest(clockOf(*selection_))});
        return;
    }
}

void TimelineView::selectEnd(bool last) {
    if (!selection_)
        step(0);
    if (selection_)
        step(last ? static_cast<int>(lanes_[selection_->lane].offsets.size())
                  : -static_cast<int>(lanes_[selection_->lane].offsets.size()));
}

void TimelineView::activate() {
    if (!selection_)
        return;
    const TimelineLane& lane = lanes_[selection_->lane];
    const std::size_t row = lane.rows[selection_->frame];
    const bool cue = lane.kind == TimelineLane::Kind::cues;
    Q_EMIT captureClicked(cue ? rig_.script().audioCues()[row].lineNo : rig_.script().captures()[row].lineNo);
}

void TimelineView::scrubToSelection() {
    if (selection_)
        scrubTo(clockOf(*selection_));
}

void TimelineView::hover(std::optional<FrameRef> mark, std::optional<std::size_t> laneName) {
    if (mark == hovered_ && laneName == hoveredName_)
        return;
    hovered_ = mark;
    hoveredName_ = laneName;
    refused_ = false;
    Q_EMIT textChanged();
}

QString TimelineView::markText() const {
    if (refused_)
        return QStringLiteral(
            "Live timing follows real time: the clock cannot be moved. Leave it to rehearse.");
    if (hovered_)
        return describe(*hovered_);
    if (hoveredName_)
        return describeLane(lanes_[*hoveredName_]);
    if (selection_)
        return describe(*selection_);
    if (empty())
        return QStringLiteral("No frames yet. Write a script, open a file, or let the wizard make one.");
    return counted(std::ssize(rig_.script().captures()), "frame") +
           QStringLiteral(". Left and right choose one, Enter shows its script line.");
}

QString TimelineView::describe(const FrameRef& mark) const {
    const TimelineLane& lane = lanes_[mark.lane];
    const std::size_t row = lane.rows[mark.frame];
    std::vector<std::string> parts{
        base::formatTime("%H:%M:%E1S", rig_.site().wallAt(clockOf(mark)), rig_.site().timeZone())};
    if (lane.kind == TimelineLane::Kind::cues) {
        if (row >= rig_.script().audioCues().size()) // another script, whose lanes are not made yet
            return {};
        const script::AudioCue& cue = rig_.script().audioCues()[row];
        parts.insert(parts.end(), {cue.shell.empty() ? "♪ spoken" : "command", cue.refLabel, cue.text});
    } else {
        if (row >= rig_.script().captures().size())
            return {};
        const script::Capture& capture = rig_.script().captures()[row];
        parts.insert(parts.end(), {capture.camera, capture.refLabel, exposureText(capture), capture.comment,
                                   word(lane.stateAt(mark.frame, playhead_))});
    }
    QStringList texts;
    for (const std::string& part : parts) {
        if (!part.empty())
            texts += QString::fromStdString(part);
    }
    return texts.join(QStringLiteral(" · "));
}

QString TimelineView::describeLane(const TimelineLane& lane) const {
    const QString name = QString::fromStdString(lane.label);
    switch (lane.kind) {
    case TimelineLane::Kind::missing:
        return QStringLiteral("%1: no body answers to this name. Connect one, or give one this label.")
            .arg(name);
    case TimelineLane::Kind::unused:
        return QStringLiteral("%1: no frame of the script is for this body.").arg(name);
    case TimelineLane::Kind::cues: return counted(std::ssize(lane.rows), "spoken cue") + QLatin1Char('.');
    case TimelineLane::Kind::script: break;
    }
    return name + QStringLiteral(": ") + counted(std::ssize(lane.rows), "frame") + QLatin1Char('.');
}

QString TimelineView::keysText() const {
    return QStringLiteral(
        "Left, right: choose a frame. Up, down: lane. Enter: its script line. Shift+Enter: clock there. "
        "Plus, minus, 0: zoom. Page up, page down: move.");
}

} // namespace zenka::ui
