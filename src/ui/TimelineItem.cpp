#include "ui/TimelineItem.h"

#include "ui/TimelinePainter.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <qqml.h>

#include <cmath>

namespace zenka::ui {

namespace {

constexpr double hitTolerance = 6; // pixels
constexpr double dragDistance = 4; // pixels; less is a click with a shaking hand
constexpr double wheelNotch = 120; // Qt's eighths of a degree
constexpr double zoomPerNotch = 0.8;

} // namespace

TimelineItem::TimelineItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setOpaquePainting(true);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
}

void TimelineItem::registerTypes() {
    qmlRegisterType<TimelineItem>("Zenka", 1, 0, "TimelineItem");
}

void TimelineItem::setView(TimelineView* view) {
    if (view_ == view)
        return;
    if (view_)
        view_->disconnect(this);
    view_ = view;
    if (view_) {
        connect(view_, &TimelineView::changed, this, [this] { update(); });
        connect(view_, &TimelineView::selected, this, &TimelineItem::showSelection);
        connect(view_, &TimelineView::playheadMoved, this, &TimelineItem::playheadMoved);
        connect(view_, &TimelineView::lanesChanged, this, &TimelineItem::roomyHeightChanged);
    }
    update();
    Q_EMIT viewChanged();
    Q_EMIT roomyHeightChanged();
}

void TimelineItem::setColors(Theme* colors) {
    if (colors_ == colors)
        return;
    if (colors_)
        colors_->disconnect(this);
    colors_ = colors;
    if (colors_) {
        connect(colors_, &Theme::changed, this, [this] { update(); });
        connect(colors_, &Theme::changed, this, &TimelineItem::roomyHeightChanged);
    }
    update();
    Q_EMIT colorsChanged();
    Q_EMIT roomyHeightChanged();
}

void TimelineItem::setCompact(bool compact) {
    if (compact_ == compact)
        return;
    compact_ = compact;
    update();
    Q_EMIT compactChanged();
    Q_EMIT roomyHeightChanged();
}

double TimelineItem::roomyHeight() const {
    return view_ && colors_ ? timelineHeight(*view_, *colors_, compact_) : 0;
}

TimelineLayout TimelineItem::layout() const {
    return timelineLayout(*view_, *colors_, size(), compact_);
}

void TimelineItem::paint(QPainter* painter) {
    if (!view_ || !colors_)
        return;
    const TimelineLayout at = layout();
    playheadPixel_ = static_cast<int>(std::round(at.xOf(view_->playhead())));
    paintTimeline(*painter, *view_, at, *colors_);
}

void TimelineItem::playheadMoved() {
    // Over a whole eclipse the playhead needs seconds for a pixel.
    if (colors_ && static_cast<int>(std::round(layout().xOf(view_->playhead()))) != playheadPixel_)
        update();
}

void TimelineItem::showSelection() {
    if (!colors_ || !view_->selection())
        return;
    const TimelineLayout at = layout();
    const std::size_t lane = view_->selection()->lane;
    Q_EMIT selectionChanged(at.laneTop(lane), at.laneTop(lane + 1));
}

std::optional<FrameRef> TimelineItem::markAt(const QPointF& point) const {
    return frameAt(layout(), view_->lanes(), point.x(), point.y(), hitTolerance);
}

void TimelineItem::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    dragFrom_ = event->position();
    const bool panning = event->button() == Qt::MiddleButton || event->modifiers() & Qt::ShiftModifier;
    drag_ = panning ? Drag::panning : Drag::pressed;
}

void TimelineItem::mouseMoveEvent(QMouseEvent* event) {
    if (!view_ || !colors_)
        return;
    const QPointF point = event->position();
    if (drag_ == Drag::panning) {
        view_->pan((dragFrom_.x() - point.x()) / layout().plotWidth());
        dragFrom_ = point;
    } else if (drag_ == Drag::pressed && std::abs(point.x() - dragFrom_.x()) > dragDistance) {
        drag_ = Drag::scrubbing;
    }
    if (drag_ == Drag::scrubbing && !view_->scrubTo(layout().clockAt(point.x())))
        drag_ = Drag::none; // refused in words; the rest of this drag says it no more
}

void TimelineItem::mouseReleaseEvent(QMouseEvent* event) {
    if (drag_ == Drag::pressed && view_ && colors_) {
        const QPointF point = event->position();
        if (const auto mark = markAt(point)) {
            view_->select(mark);
            view_->activate();
        } else if (point.x() >= layout().labelWidth) {
            view_->scrubTo(layout().clockAt(point.x()));
        }
    }
    drag_ = Drag::none;
}

void TimelineItem::hoverMoveEvent(QHoverEvent* event) {
    if (!view_ || !colors_)
        return;
    const QPointF point = event->position();
    const TimelineLayout at = layout();
    view_->hover(markAt(point), point.x() < at.labelWidth ? at.laneAt(point.y()) : std::nullopt);
}

void TimelineItem::hoverLeaveEvent(QHoverEvent*) {
    if (view_)
        view_->hover(std::nullopt, std::nullopt);
}

void TimelineItem::wheelEvent(QWheelEvent* event) {
    if (!view_)
        return;
    const QPoint turn = event->angleDelta();
    const bool sideways = event->modifiers() & Qt::ShiftModifier || std::abs(turn.x()) > std::abs(turn.y());
    const double notches = (turn.x() != 0 && sideways ? turn.x() : turn.y()) / wheelNotch;
    if (sideways)
        view_->pan(-0.1 * notches);
    else
        view_->zoom(std::pow(zoomPerNotch, notches));
    event->accept();
}

void TimelineItem::keyPressEvent(QKeyEvent* event) {
    const auto others = event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (!view_ || others != Qt::NoModifier ||
        !handleKey(event->key(), event->modifiers() & Qt::ShiftModifier))
        event->ignore();
}

bool TimelineItem::handleKey(int key, bool shift) {
    switch (key) {
    case Qt::Key_Left: shift ? view_->pan(-0.1) : view_->step(-1); return true;
    case Qt::Key_Right: shift ? view_->pan(0.1) : view_->step(1); return true;
    case Qt::Key_Up: view_->stepLane(-1); return true;
    case Qt::Key_Down: view_->stepLane(1); return true;
    case Qt::Key_Home: view_->selectEnd(false); return true;
    case Qt::Key_End: view_->selectEnd(true); return true;
    case Qt::Key_PageUp: view_->pan(-0.9); return true;
    case Qt::Key_PageDown: view_->pan(0.9); return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal: view_->zoomIn(); return true;
    case Qt::Key_Minus: view_->zoomOut(); return true;
    case Qt::Key_0: view_->showAll(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: shift ? view_->scrubToSelection() : view_->activate(); return true;
    default: return false;
    }
}

} // namespace zenka::ui
