#pragma once

#include "ui/kit/Theme.h"

#include <QFont>
#include <QPointer>
#include <QQuickPaintedItem>

namespace zenka::ui {

/// What every item has that paints by hand. It is painted anew when its colours change.
class PaintedItem : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::Theme* colors READ colors WRITE setColors NOTIFY colorsChanged)

public:
    Theme* colors() const { return colors_; }
    void setColors(Theme* colors);

Q_SIGNALS:
    void viewChanged();
    /// There is another theme, or the theme has other colours and sizes.
    void colorsChanged();

protected:
    explicit PaintedItem(QQuickItem* parent = nullptr);

private:
    QPointer<Theme> colors_;
};

/// A picture of a View. The item declares the property `view` itself, for moc knows no templates.
template <typename View>
class PaintedView : public PaintedItem {
public:
    View* view() const { return view_; }
    void setView(View* view) {
        if (view_ == view)
            return;
        if (view_)
            view_->disconnect(this);
        view_ = view;
        if (view_)
            followView(*view_);
        update();
        Q_EMIT viewChanged();
    }

    void paint(QPainter* painter) final {
        if (view_ && colors())
            paintView(*painter, *view_, *colors());
    }

protected:
    using PaintedItem::PaintedItem;

    /// Connects to the signals of a view just set; those of the view before are cut.
    virtual void followView(View& view) = 0;
    virtual void paintView(QPainter& painter, View& view, const Theme& theme) = 0;

private:
    QPointer<View> view_;
};

/// The small digits of a theme, as they are to be painted by hand.
QFont smallDigits(const Theme& theme);

} // namespace zenka::ui
