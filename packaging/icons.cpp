// Writes the icons of the program and of its scripts as a desktop's icon theme has them: icons FOLDER

#include "painting/AppIcon.h"

#include <QDir>
#include <QPainter>
#include <QPainterPath>

#include <cstdio>

namespace {

/// A sheet of paper with the program's icon on it.
QImage scriptIcon(int size) {
    const double s = size;
    QImage picture(size, size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF sheet(0.14 * s, 0.04 * s, 0.72 * s, 0.92 * s);
    const double fold = 0.2 * s;
    QPainterPath page(sheet.topLeft());
    page.lineTo(sheet.right() - fold, sheet.top());
    page.lineTo(sheet.right(), sheet.top() + fold);
    page.lineTo(sheet.bottomRight());
    page.lineTo(sheet.bottomLeft());
    page.closeSubpath();
    painter.setPen(QPen(QColor(120, 128, 148), qMax(1.0, 0.012 * s)));
    painter.setBrush(QColor(248, 249, 252));
    painter.drawPath(page);
    painter.setBrush(QColor(206, 212, 226));
    painter.drawPolygon(QPolygonF{QPointF(sheet.right() - fold, sheet.top()),
                                  QPointF(sheet.right() - fold, sheet.top() + fold),
                                  QPointF(sheet.right(), sheet.top() + fold)});
    const int inside = static_cast<int>(0.5 * s);
    painter.drawImage(QRectF(0.25 * s, 0.36 * s, inside, inside), zenka::painting::appIcon(inside));
    return picture;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: icons FOLDER\n", stderr);
        return 2;
    }
    const QDir root(QString::fromLocal8Bit(argv[1]));
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const QString folder = QStringLiteral("%1x%1").arg(size);
        const QString apps = folder + QStringLiteral("/apps");
        const QString types = folder + QStringLiteral("/mimetypes");
        if (!root.mkpath(apps) || !root.mkpath(types) ||
            !zenka::painting::appIcon(size).save(root.filePath(apps + QStringLiteral("/zenka.png"))) ||
            !scriptIcon(size).save(root.filePath(types + QStringLiteral("/text-x-zenka-script.png")))) {
            std::fprintf(stderr, "cannot write the icons below %s\n", argv[1]);
            return 1;
        }
    }
    return 0;
}
