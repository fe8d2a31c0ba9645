#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/sky/SkyPainter.h"
#include "ui/sky/SkyView.h"

namespace zenka::ui {

/// The picture of the sky, drawn anew when the scene moves on.
class SkyItem : public PaintedView<SkyView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::SkyView* view READ view WRITE setView NOTIFY viewChanged)

public:
    explicit SkyItem(QQuickItem* parent = nullptr);
    static void registerTypes();

private:
    void followView(SkyView& view) override;
    void paintView(QPainter& painter, SkyView& view, const Theme& theme) override;

    painting::CoronaCache corona_;
};

/// The colours of the picture in a theme.
SkyColors skyColors(const Theme& theme);

} // namespace zenka::ui
