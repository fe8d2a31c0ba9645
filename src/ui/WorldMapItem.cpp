#include "ui/WorldMapItem.h"

#include "ui/WorldMapPainter.h"

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

MapColors mapColors(const Theme& theme) {
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

WorldMapItem::WorldMapItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setOpaquePainting(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setActiveFocusOnTab(true);
}

void WorldMapItem::registerTypes() {
    qmlRegisterType<WorldMapItem>("Zenka", 1, 0, "WorldMapItem");
}

void WorldMapItem::setView(LocationView* view) {
    if (view_ == view)
        return;
    if (view_)
        view_->disconnect(this);
    view_ = view;
    if (view_) {
        connect(view_, &LocationView::draftChanged, this, [this] { update(); });
        connect(view_, &LocationView::trackChanged, this, [this] { update(); });
        connect(view_, &LocationView::pointWanted, this, &WorldMapItem::showPoint);
        map_.centreOn(view_->draftPoint());
    }
    moved();
    Q_EMIT viewChanged();
}

void WorldMapItem::setColors(Theme* colors) {
    if (colors_ == colors)
        return;
    if (colors_)
        colors_->disconnect(this);
    colors_ = colors;
    if (colors_)
        connect(colors_, &Theme::changed, this, [this] { update(); });
    update();
    Q_EMIT colorsChanged();
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
    if (!view_)
        return;
    if (map_.degreesPerPixel() * height() > firstHeightDegrees)
        map_.showHeight(firstHeightDegrees);
    map_.centreOn(view_->draftPoint());
    moved();
}

void WorldMapItem::moved() {
    if (pointer_ || hasActiveFocus())
        probe();
    update();
}

/// Tells of the place under the pointer or, without one, under the cross-hair.
void WorldMapItem::probe() {
    if (view_)
        view_->probe(map_.place(pointer_.value_or(middle())), map_.decimals());
}

void WorldMapItem::take(QPointF pixel) {
    if (view_)
        view_->takePoint(map_.place(pixel), map_.decimals());
}

void WorldMapItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    if (now.isEmpty() || now.size() == before.size())
        return;
    map_.resize(now.size());
    if (!placed_) {
        placed_ = true;
        map_.showHeight(firstHeightDegrees);
        if (view_)
            map_.centreOn(view_->draftPoint());
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
    else if (view_)
        view_->endProbe();
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
    QQuickPaintedItem::focusInEvent(event);
    moved();
}

void WorldMapItem::focusOutEvent(QFocusEvent* event) {
    QQuickPaintedItem::focusOutEvent(event);
    if (view_ && !pointer_)
        view_->endProbe();
    update();
}

void WorldMapItem::paint(QPainter* painter) {
    if (!view_ || !colors_)
        return;
    paintLand(*painter, map_, mapColors(*colors_));
    QFont font(colors_->digits());
    font.setPixelSize(colors_->small());
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    MapMarks marks{
        .track = view_->track(), .site = view_->siteInUse(), .draft = view_->draftPoint(), .crossHair = {}};
    if (hasActiveFocus() && !pointer_)
        marks.crossHair = middle();
    paintMarks(*painter, map_, mapColors(*colors_), marks, font);
}

} // namespace zenka::ui
