#pragma once

#include "ui/SkyPainter.h"
#include "ui/SkyView.h"
#include "ui/Theme.h"

#include <QPointer>
#include <QQuickPaintedItem>

namespace zenka::ui {

/// The picture of the sky, drawn anew when the scene moves on.
class SkyItem : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::SkyView* view READ view WRITE setView NOTIFY viewChanged)
    Q_PROPERTY(zenka::ui::Theme* colors READ colors WRITE setColors NOTIFY colorsChanged)

public:
    explicit SkyItem(QQuickItem* parent = nullptr);
    static void registerTypes();

    SkyView* view() const { return view_; }
    void setView(SkyView* view);
    Theme* colors() const { return colors_; }
    void setColors(Theme* colors);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void viewChanged();
    void colorsChanged();

private:
    QPointer<SkyView> view_;
    QPointer<Theme> colors_;
    CoronaCache corona_;
};

/// The colours of the picture in a theme.
SkyColors skyColors(const Theme& theme);

} // namespace zenka::ui
