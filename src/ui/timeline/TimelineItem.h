#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/timeline/TimelineView.h"

namespace zenka::ui {

/// The timeline's picture, and what pointer and keys do on it.
class TimelineItem : public PaintedView<TimelineView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::TimelineView* view READ view WRITE setView NOTIFY viewChanged)
    Q_PROPERTY(bool compact READ compact WRITE setCompact NOTIFY compactChanged)
    Q_PROPERTY(double roomyHeight READ roomyHeight NOTIFY roomyHeightChanged)

public:
    explicit TimelineItem(QQuickItem* parent = nullptr);
    static void registerTypes();

    bool compact() const { return compact_; }
    void setCompact(bool compact);
    /// The height at which every lane has room for its name.
    double roomyHeight() const;

Q_SIGNALS:
    void compactChanged();
    void roomyHeightChanged();
    /// The chosen mark's lane, top and bottom in pixels.
    void selectionChanged(double top, double bottom);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void followView(TimelineView& view) override;
    void paintView(QPainter& painter, TimelineView& view, const Theme& theme) override;

    TimelineLayout layout() const;
    void playheadMoved();
    void showSelection();
    std::optional<FrameRef> markAt(const QPointF& point) const;
    bool handleKey(int key, bool shift);

    enum class Drag { none, pressed, scrubbing, panning };

    bool compact_ = false;
    int playheadPixel_ = 0; // as painted
    Drag drag_ = Drag::none;
    QPointF dragFrom_;
};

} // namespace zenka::ui
