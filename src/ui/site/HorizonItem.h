#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/site/HorizonView.h"

namespace zenka::ui {

/// The picture of the horizon at the site that is being chosen.
class HorizonItem : public PaintedView<HorizonView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::HorizonView* view READ view WRITE setView NOTIFY viewChanged)

public:
    using PaintedView::PaintedView;
    static void registerTypes();

private:
    void followView(HorizonView& view) override;
    void paintView(QPainter& painter, HorizonView& view, const Theme& theme) override;
};

} // namespace zenka::ui
