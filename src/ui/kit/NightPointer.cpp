#include "ui/kit/NightPointer.h"

#include "ui/kit/Theme.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace zenka::ui {

NightPointer::NightPointer(const Theme& theme, QObject* parent) : QObject(parent), theme_(theme) {
    connect(&theme, &Theme::changed, this, &NightPointer::follow);
    follow();
}

NightPointer::~NightPointer() {
    if (shown_)
        QGuiApplication::restoreOverrideCursor();
}

void NightPointer::follow() {
    if (theme_.night() == shown_)
        return;
    shown_ = theme_.night();
    if (shown_)
        QGuiApplication::setOverrideCursor(arrow());
    else
        QGuiApplication::restoreOverrideCursor();
}

QCursor NightPointer::arrow() {
    const double scale = qGuiApp->devicePixelRatio();
    QPixmap picture((QSizeF(18, 26) * scale).toSize());
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x700000), 1));
    painter.setBrush(QColor(0xd00000));
    painter.drawPolygon(QPolygonF({{1, 1}, {1, 21}, {6, 17}, {9, 25}, {13, 23}, {10, 16}, {16, 16}}));
    painter.end();
    return QCursor(picture, 1, 1);
}

} // namespace zenka::ui
