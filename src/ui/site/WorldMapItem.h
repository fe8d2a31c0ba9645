#pragma once

#include "painting/MapProjection.h"
#include "ui/kit/PaintedItem.h"
#include "ui/site/LocationView.h"

#include <optional>

namespace zenka::ui {

/// The map of the Location sheet. The pointer drags, clicks and turns the wheel; by keyboard the cross-hair
/// in the middle stands for it, and the map moves below. It is drawn anew for every step, which takes a few
/// milliseconds.
class WorldMapItem : public PaintedView<LocationView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::LocationView* view READ view WRITE setView NOTIFY viewChanged)

public:
    explicit WorldMapItem(QQuickItem* parent = nullptr);
    static void registerTypes();

    Q_INVOKABLE void zoomIn();
    Q_INVOKABLE void zoomOut();
    Q_INVOKABLE void showWorld();
    /// Centres on the point being chosen; from far above the map comes nearer.
    Q_INVOKABLE void showPoint();

    const painting::MapProjection& projection() const { return map_; }

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void followView(LocationView& view) override;
    void paintView(QPainter& painter, LocationView& view, const Theme& theme) override;

    QPointF middle() const;
    void moved();
    void probe();
    void take(QPointF pixel);

    painting::MapProjection map_;
    bool placed_ = false; ///< the first size has been given
    std::optional<QPointF> pressed_;
    std::optional<QPointF> pointer_;
    QPointF last_;
    bool dragging_ = false;
};

} // namespace zenka::ui
