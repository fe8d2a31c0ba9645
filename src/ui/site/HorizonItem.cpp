#include "ui/site/HorizonItem.h"

#include "ui/site/HorizonPainter.h"

#include <qqml.h>

namespace zenka::ui {

void HorizonItem::registerTypes() {
    qmlRegisterType<HorizonItem>("Zenka", 1, 0, "HorizonItem");
}

void HorizonItem::followView(HorizonView& view) {
    connect(&view, &HorizonView::sceneChanged, this, [this] { update(); });
}

void HorizonItem::paintView(QPainter& painter, HorizonView& view, const Theme& theme) {
    paintHorizon(painter, size(), view.scene(),
                 {.sky = theme.sky(),
                  .ground = theme.line(),
                  .ridge = theme.text(),
                  .sun = theme.accent(),
                  .hidden = theme.bad(),
                  .line = theme.line(),
                  .text = theme.text(),
                  .page = theme.page()},
                 smallDigits(theme));
}

} // namespace zenka::ui
