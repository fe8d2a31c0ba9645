#include "ui/sky/SkyItem.h"

#include <qqml.h>

namespace zenka::ui {

SkyColors skyColors(const Theme& theme) {
    return {.sky = theme.sky(),
            .sun = theme.sunDisc(),
            .moon = theme.moonDisc(),
            // what glows in totality is light on dark in Sunlight as well
            .corona = theme.sunlight() ? theme.panel() : theme.text(),
            .chromosphere = theme.bad(),
            .ground = theme.sunlight() ? theme.line() : theme.panel(),
            .line = theme.line(),
            .text = theme.quiet()};
}

SkyItem::SkyItem(QQuickItem* parent) : PaintedView(parent) {
    setOpaquePainting(true);
}

void SkyItem::registerTypes() {
    qmlRegisterType<SkyItem>("Zenka", 1, 0, "SkyItem");
}

void SkyItem::followView(SkyView& view) {
    connect(&view, &SkyView::changed, this, [this] { update(); });
}

void SkyItem::paintView(QPainter& painter, SkyView& view, const Theme& theme) {
    paintSky(painter, size(), view.scene(), skyColors(theme), smallDigits(theme), corona_);
}

} // namespace zenka::ui
