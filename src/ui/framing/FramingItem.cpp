#include "ui/framing/FramingItem.h"

#include <qqml.h>

namespace zenka::ui {

FramingColors framingColors(const Theme& theme) {
    return {.sky = theme.moonDisc().darker(400),
            .light = theme.sunlight() ? theme.panel() : theme.text(),
            .sun = theme.sunDisc(),
            .moon = theme.moonDisc().darker(250),
            .frame = theme.sunDisc(),
            .path = theme.sunlight() ? theme.page()
                    : theme.night()  ? theme.accent()
                                     : theme.good()};
}

void FramingItem::registerTypes() {
    qmlRegisterType<FramingItem>("Zenka", 1, 0, "FramingItem");
}

void FramingItem::followView(FramingView& view) {
    connect(&view, &FramingView::changed, this, [this] { update(); });
}

void FramingItem::paintView(QPainter& painter, FramingView& view, const Theme& theme) {
    paintFraming(painter, size(), view.scene(), framingColors(theme), smallDigits(theme), corona_);
}

} // namespace zenka::ui
