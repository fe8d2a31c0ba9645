#include "ui/timeline/TimelineItem.h"

#include "ui/timeline/TimelinePainter.h"

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

TimelineItem::TimelineItem(QQuickItem* parent) : PaintedView(parent) {
    setOpaquePainting(true);
    setAcceptedMouseButtons(Qt::LeftButton | Qt::MiddleButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
    connect(this, &TimelineItem::viewChanged, this, &TimelineItem::roomyHeightChanged);
    connect(this, &TimelineItem::colorsChanged, this, &TimelineItem::roomyHeightChanged);
}

void TimelineItem::registerTypes() {
    qmlRegisterType<TimelineItem>("Zenka", 1, 0, "TimelineItem");
}

void TimelineItem::followView(TimelineView& view) {
    connect(&view, &TimelineView::changed, this, [this] { update(); });
    connect(&view, &TimelineView::selected, this, &TimelineItem::showSelection);
    connect(&view, &TimelineView::playheadMoved, this, &TimelineItem::playheadMoved);
    connect(&view, &TimelineView::lanesChanged, this, &TimelineItem::roomyHeightChanged);
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
    return view() && colors() ? timelineHeight(*view(), *colors(), compact_) : 0;
}

TimelineLayout TimelineItem::layout() const {
    return timelineLayout(*view(), *colors(), size(), compact_);
}

void TimelineItem::paintView(QPainter& painter, TimelineView& view, const Theme& theme) {
    const TimelineLayout at = layout();
    playheadPixel_ = static_cast<int>(std::round(at.xOf(view.playhead())));
    paintTimeline(painter, view, at, theme);
}

void TimelineItem::playheadMoved() {
    // Over a whole eclipse the playhead needs seconds for a pixel.
    if (colors() && static_cast<int>(std::round(layout().xOf(view()->playhead()))) != playheadPixel_)
        update();
}

void TimelineItem::showSelection() {
    const std::optional<FrameRef>& chosen = view()->selection();
    if (!colors() || !chosen)
        return;
    const TimelineLayout at = layout();
    Q_EMIT selectionChanged(at.laneTop(chosen->lane), at.laneTop(chosen->lane + 1));
}

std::optional<FrameRef> TimelineItem::markAt(const QPointF& point) const {
    return frameAt(layout(), view()->lanes(), point.x(), point.y(), hitTolerance);
}

void TimelineItem::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    dragFrom_ = event->position();
    const bool panning = event->button() == Qt::MiddleButton || event->modifiers() & Qt::ShiftModifier;
    drag_ = panning ? Drag::panning : Drag::pressed;
}

void TimelineItem::mouseMoveEvent(QMouseEvent* event) {
    if (!view() || !colors())
        return;
    const QPointF point = event->position();
    if (drag_ == Drag::panning) {
        view()->pan((dragFrom_.x() - point.x()) / layout().plotWidth());
        dragFrom_ = point;
    } else if (drag_ == Drag::pressed && std::abs(point.x() - dragFrom_.x()) > dragDistance) {
        drag_ = Drag::scrubbing;
    }
    if (drag_ == Drag::scrubbing && !view()->scrubTo(layout().clockAt(point.x())))
        drag_ = Drag::none; // refused in words; the rest of this drag says it no more
}

void TimelineItem::mouseReleaseEvent(QMouseEvent* event) {
    if (drag_ == Drag::pressed && view() && colors()) {
        const QPointF point = event->position();
        if (const auto mark = markAt(point)) {
            view()->select(mark);
            view()->activate();
        } else if (point.x() >= layout().labelWidth) {
            view()->scrubTo(layout().clockAt(point.x()));
        }
    }
    drag_ = Drag::none;
}

void TimelineItem::hoverMoveEvent(QHoverEvent* event) {
    if (!view() || !colors())
        return;
    const QPointF point = event->position();
    const TimelineLayout at = layout();
    view()->hover(markAt(point), point.x() < at.labelWidth ? at.laneAt(point.y()) : std::nullopt);
}

void TimelineItem::hoverLeaveEvent(QHoverEvent*) {
    if (view())
        view()->hover(std::nullopt, std::nullopt);
}

void TimelineItem::wheelEvent(QWheelEvent* event) {
    if (!view())
        return;
    const QPoint turn = event->angleDelta();
    const bool sideways = event->modifiers() & Qt::ShiftModifier || std::abs(turn.x()) > std::abs(turn.y());
    const double notches = (turn.x() != 0 && sideways ? turn.x() : turn.y()) / wheelNotch;
    if (sideways)
        view()->pan(-0.1 * notches);
    else
        view()->zoom(std::pow(zoomPerNotch, notches));
    event->accept();
}

void TimelineItem::keyPressEvent(QKeyEvent* event) {
    const auto others = event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier);
    if (!view() || others != Qt::NoModifier ||
        !handleKey(event->key(), event->modifiers() & Qt::ShiftModifier))
        event->ignore();
}

bool TimelineItem::handleKey(int key, bool shift) {
    switch (key) {
    case Qt::Key_Left: shift ? view()->pan(-0.1) : view()->step(-1); return true;
    case Qt::Key_Right: shift ? view()->pan(0.1) : view()->step(1); return true;
    case Qt::Key_Up: view()->stepLane(-1); return true;
    case Qt::Key_Down: view()->stepLane(1); return true;
    case Qt::Key_Home: view()->selectEnd(false); return true;
    case Qt::Key_End: view()->selectEnd(true); return true;
    case Qt::Key_PageUp: view()->pan(-0.9); return true;
    case Qt::Key_PageDown: view()->pan(0.9); return true;
    case Qt::Key_Plus:
    case Qt::Key_Equal: view()->zoomIn(); return true;
    case Qt::Key_Minus: view()->zoomOut(); return true;
    case Qt::Key_0: view()->showAll(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: shift ? view()->scrubToSelection() : view()->activate(); return true;
    default: return false;
    }
}

} // namespace zenka::ui
