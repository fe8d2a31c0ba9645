#include "ui/kit/PaintedItem.h"

namespace zenka::ui {

PaintedItem::PaintedItem(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &PaintedItem::colorsChanged, this, [this] { update(); });
}

void PaintedItem::setColors(Theme* colors) {
    if (colors_ == colors)
        return;
    if (colors_)
        colors_->disconnect(this);
    colors_ = colors;
    if (colors_)
        connect(colors_, &Theme::changed, this, &PaintedItem::colorsChanged);
    Q_EMIT colorsChanged();
}

QFont smallDigits(const Theme& theme) {
    QFont font(theme.digits());
    font.setPixelSize(theme.small());
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    return font;
}

} // namespace zenka::ui
