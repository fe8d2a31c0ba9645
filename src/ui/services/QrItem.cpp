#include "ui/services/QrItem.h"

#include "platform/QrCode.h"

#include <QPainter>
#include <qqml.h>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr int margin = 4; ///< modules of light around it, which readers want

} // namespace

QrItem::QrItem(QQuickItem* parent) : PaintedItem(parent) {
}

void QrItem::registerTypes() {
    qmlRegisterType<QrItem>("Zenka", 1, 0, "QrItem");
}

void QrItem::setText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    update();
    Q_EMIT textChanged();
}

void QrItem::paint(QPainter* painter) {
    const platform::QrCode code = platform::qrCode(text_.toStdString());
    if (!colors() || code.side == 0 || text_.isEmpty())
        return;
    const bool white = colors()->sunlight();
    painter->fillRect(boundingRect(), white ? colors()->page() : colors()->text());
    const double room = std::min(width(), height());
    const double module = std::max(1.0, std::floor(room / (code.side + 2 * margin)));
    const double corner = std::floor((room - module * code.side) / 2);
    const QColor dark = white ? colors()->text() : colors()->page();
    for (int row = 0; row < code.side; ++row) {
        for (int column = 0; column < code.side; ++column) {
            if (code.at(row, column))
                painter->fillRect(QRectF(corner + column * module, corner + row * module, module, module),
                                  dark);
        }
    }
}

} // namespace zenka::ui
