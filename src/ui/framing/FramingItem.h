#pragma once

#include "painting/Corona.h"
#include "ui/framing/FramingPainter.h"
#include "ui/framing/FramingView.h"
#include "ui/kit/PaintedItem.h"

namespace zenka::ui {

/// The colours that the picture of a framing has in a theme.
FramingColors framingColors(const Theme& theme);

/// The picture of the framing that is being tried.
class FramingItem : public PaintedView<FramingView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::FramingView* view READ view WRITE setView NOTIFY viewChanged)

public:
    using PaintedView::PaintedView;
    static void registerTypes();

private:
    void followView(FramingView& view) override;
    void paintView(QPainter& painter, FramingView& view, const Theme& theme) override;

    painting::CoronaCache corona_;
};

} // namespace zenka::ui
