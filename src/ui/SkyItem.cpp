#include "ui/SkyItem.h"

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

SkyItem::SkyItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setOpaquePainting(true);
}

void SkyItem::registerTypes() {
    qmlRegisterType<SkyItem>("Zenka", 1, 0, "SkyItem");
}

void SkyItem::setView(SkyView* view) {
    if (view_ == view)
        return;
    if (view_)
        view_->disconnect(this);
    view_ = view;
    if (view_)
        connect(view_, &SkyView::changed, this, [this] { update(); });
    update();
    Q_EMIT viewChanged();
}

void SkyItem::setColors(Theme* colors) {
    if (colors_ == colors)
        return;
    if (colors_)
        colors_->disconnect(this);
    colors_ = colors;
    if (colors_)
        connect(colors_, &Theme::changed, this, [this] { update(); });
    update();
    Q_EMIT colorsChanged();
}

void SkyItem::paint(QPainter* painter) {
    if (!view_ || !colors_)
        return;
    QFont font(colors_->digits());
    font.setPixelSize(colors_->small());
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    paintSky(*painter, size(), view_->scene(), skyColors(*colors_), font, corona_);
}

} // namespace zenka::ui
