#include "ui/site/WorldMapItem.h"

#include "painting/WorldMapPainter.h"

#include <QGuiApplication>
#include <QStyleHints>
#include <qqml.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double firstHeightDegrees = 16;
constexpr double keyZoom = 1.5;
constexpr double notchZoom = 1.25;
constexpr int notch = 120; // in a wheel's units

painting::MapColors mapColors(const Theme& theme) {
    return {.sea = theme.sky(),
            .land = theme.sunlight() ? theme.page() : theme.panel(),
            .coast = theme.quiet(),
            .border = theme.line(),
            .path = theme.accent(),
            .text = theme.text(),
            .page = theme.page(),
            .mark = theme.bad()};
}

} // namespace

WorldMapItem::WorldMapItem(QQuickItem* parent) : PaintedView(parent) {
    setOpaquePainting(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
}

void WorldMapItem::registerTypes() {
    qmlRegisterType<WorldMapItem>("Zenka", 1, 0, "WorldMapItem");
}

void WorldMapItem::followView(LocationView& view) {
    connect(&view, &LocationView::draftChanged, this, [this] { update(); });
    connect(&view, &LocationView::trackChanged, this, [this] { update(); });
    connect(&view, &LocationView::pointWanted, this, &WorldMapItem::showPoint);
    map_.centreOn(view.draftPoint());
    moved();
}

QPointF WorldMapItem::middle() const {
    return {width() / 2, height() / 2};
}

void WorldMapItem::zoomIn() {
    map_.zoom(1 / keyZoom, middle());
    moved();
}

void WorldMapItem::zoomOut() {
    map_.zoom(keyZoom, middle());
    moved();
}

void WorldMapItem::showWorld() {
    map_.showHeight(360); // as far as it goes
    moved();
}

void WorldMapItem::showPoint() {
    if (!view())
        return;
    if (map_.degreesPerPixel() * height() > firstHeightDegrees)
        map_.showHeight(firstHeightDegrees);
    map_.centreOn(view()->draftPoint());
    moved();
}

void WorldMapItem::moved() {
    if (pointer_ || hasActiveFocus())
        probe();
    update();
}

/// Tells of the place under the pointer or, without one, under the cross-hair.
void WorldMapItem::probe() {
    if (view())
        view()->probe(map_.place(pointer_.value_or(middle())), map_.decimals());
}

void WorldMapItem::take(QPointF pixel) {
    if (view())
        view()->takePoint(map_.place(pixel), map_.decimals());
}

void WorldMapItem::geometryChange(const QRectF& now, const QRectF& before) {
    PaintedView::geometryChange(now, before);
    if (now.isEmpty() || now.size() == before.size())
        return;
    map_.resize(now.size());
    if (!placed_) {
        placed_ = true;
        map_.showHeight(firstHeightDegrees);
        if (view())
            map_.centreOn(view()->draftPoint());
    }
    update();
}

void WorldMapItem::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    pressed_ = last_ = event->position();
    pointer_ = event->position();
    dragging_ = false;
}

void WorldMapItem::mouseMoveEvent(QMouseEvent* event) {
    pointer_ = event->position();
    if (pressed_ && !dragging_)
        dragging_ = (event->position() - *pressed_).manhattanLength() >=
                    QGuiApplication::styleHints()->startDragDistance();
    if (dragging_) {
        map_.drag(last_, event->position());
        last_ = event->position();
    }
    moved();
}

void WorldMapItem::mouseReleaseEvent(QMouseEvent* event) {
    if (pressed_ && !dragging_)
        take(event->position());
    pressed_.reset();
    dragging_ = false;
}

void WorldMapItem::mouseUngrabEvent() {
    pressed_.reset();
    dragging_ = false;
}

void WorldMapItem::hoverMoveEvent(QHoverEvent* event) {
    if (event->position() == event->oldPosF())
        return; // something else moved, so the cross-hair stays
    const bool hadCrossHair = !pointer_;
    pointer_ = event->position();
    probe();
    if (hadCrossHair)
        update();
}

void WorldMapItem::hoverLeaveEvent(QHoverEvent*) {
    pointer_.reset();
    if (hasActiveFocus())
        probe();
    else if (view())
        view()->endProbe();
    update();
}

void WorldMapItem::wheelEvent(QWheelEvent* event) {
    map_.zoom(std::pow(notchZoom, -static_cast<double>(event->angleDelta().y()) / notch), event->position());
    pointer_ = event->position();
    moved();
}

void WorldMapItem::keyPressEvent(QKeyEvent* event) {
    const bool fine = event->modifiers().testFlag(Qt::ShiftModifier);
    const double step = fine ? 1 : std::round(std::min(width(), height()) / 10);
    const auto shift = [&](double x, double y) { map_.drag(middle(), middle() + QPointF(x, y)); };
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal: map_.zoom(1 / keyZoom, pointer_.value_or(middle())); return moved();
    case Qt::Key_Minus: map_.zoom(keyZoom, pointer_.value_or(middle())); return moved();
    case Qt::Key_Left: shift(step, 0); break;
    case Qt::Key_Right: shift(-step, 0); break;
    case Qt::Key_Up: shift(0, step); break;
    case Qt::Key_Down: shift(0, -step); break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space: take(middle()); break;
    default: event->ignore(); return;
    }
    pointer_.reset(); // the cross-hair has taken over
    moved();
}

void WorldMapItem::focusInEvent(QFocusEvent* event) {
    PaintedView::focusInEvent(event);
    moved();
}

void WorldMapItem::focusOutEvent(QFocusEvent* event) {
    PaintedView::focusOutEvent(event);
    if (view() && !pointer_)
        view()->endProbe();
    update();
}

void WorldMapItem::paintView(QPainter& painter, LocationView& view, const Theme& theme) {
    const painting::MapColors colors = mapColors(theme);
    painting::paintLand(painter, map_, colors);
    painting::MapMarks marks{
        .track = view.track(), .site = view.siteInUse(), .draft = view.draftPoint(), .crossHair = {}};
    if (hasActiveFocus() && !pointer_)
        marks.crossHair = middle();
    painting::paintMarks(painter, map_, colors, marks, smallDigits(theme));
}

} // namespace zenka::ui
