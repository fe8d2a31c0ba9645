#include "painting/AppIcon.h"

#include "painting/Corona.h"

#include <QBuffer>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zenka::painting {

namespace {

/// Measures in parts of the icon's size.
struct Look {
    double margin = 0;
    double corner = 0;
    double moon = 0;    ///< radius
    double diamond = 0; ///< radius of the glare
    bool rays = false;
    bool stars = false;
};

Look lookAt(int size) {
    if (size < 24)
        return {.margin = 0, .corner = 0.2, .moon = 0.27, .diamond = 0.17};
    if (size < 48)
        return {.margin = 0.01, .corner = 0.21, .moon = 0.25, .diamond = 0.17};
    if (size < 96)
        return {.margin = 0.02, .corner = 0.21, .moon = 0.23, .diamond = 0.18, .rays = true};
    return {.margin = 0.035, .corner = 0.22, .moon = 0.205, .diamond = 0.19, .rays = true, .stars = true};
}

/// Where the last of the Sun shows, from the Moon's centre.
constexpr double diamondAngle = 0.23 * std::numbers::pi;

/// Below this much icons are drawn too large and made smaller, so that thin parts keep their
/// light; but no more than so many times, for the window's icons are drawn at each start.
constexpr int leastDrawn = 256;
constexpr int mostFactor = 4;

void paintSky(QPainter& painter, const QRectF& square, double corner) {
    QRadialGradient sky(square.center(), square.width() * 0.74);
    sky.setColorAt(0, QColor(38, 62, 128));
    sky.setColorAt(0.45, QColor(20, 34, 82));
    sky.setColorAt(1, QColor(6, 10, 30));
    painter.setPen(Qt::NoPen);
    painter.setBrush(sky);
    painter.drawRoundedRect(square, corner, corner);
}

/// On a desktop as dark as the sky the rim shows where the icon ends.
void paintRim(QPainter& painter, const QRectF& square, double corner, double width) {
    QLinearGradient rim(square.topLeft(), square.bottomLeft());
    rim.setColorAt(0, QColor(150, 178, 255, 150));
    rim.setColorAt(1, QColor(96, 122, 210, 90));
    painter.setPen(QPen(QBrush(rim), width));
    painter.setBrush(Qt::NoBrush);
    const double half = width / 2;
    painter.drawRoundedRect(square.adjusted(half, half, -half, -half), corner - half, corner - half);
}

void paintStars(QPainter& painter, double size) {
    struct Star {
        double x, y, radius;
    };
    constexpr std::array<Star, 9> stars{{{0.13, 0.20, 0.0036},
                                         {0.24, 0.11, 0.0024},
                                         {0.43, 0.085, 0.0028},
                                         {0.90, 0.42, 0.0026},
                                         {0.885, 0.78, 0.0036},
                                         {0.70, 0.905, 0.0026},
                                         {0.335, 0.895, 0.0034},
                                         {0.12, 0.83, 0.0024},
                                         {0.095, 0.56, 0.0026}}};
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(214, 226, 255, 210));
    for (const Star& star : stars)
        painter.drawEllipse(QPointF(star.x, star.y) * size, star.radius * size, star.radius * size);
}

void paintCorona(QPainter& painter, QPointF centre, double moon) {
    QRadialGradient glow(centre, 2.2 * moon);
    glow.setColorAt(0.43, QColor(190, 212, 255, 150));
    glow.setColorAt(0.62, QColor(150, 184, 255, 60));
    glow.setColorAt(1, QColor(120, 160, 255, 0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(glow);
    painter.drawEllipse(centre, 2.2 * moon, 2.2 * moon);
    const QImage corona = coronaPicture(moon, QColor(246, 249, 255));
    const QPointF corner = centre - QPointF(corona.width(), corona.height()) / 2;
    painter.drawImage(corner, corona);
    painter.setOpacity(0.55); // once more, for a likeness that is seen from afar
    painter.drawImage(corner, corona);
    painter.setOpacity(1);
}

void paintMoon(QPainter& painter, QPointF centre, double moon) {
    QRadialGradient disc(centre, moon);
    disc.setColorAt(0, QColor(12, 17, 38));
    disc.setColorAt(0.8, QColor(7, 10, 24));
    disc.setColorAt(1, QColor(3, 4, 12));
    painter.setPen(Qt::NoPen);
    painter.setBrush(disc);
    painter.drawEllipse(centre, moon, moon);
    // The chromosphere, a crescent that is broadest beside the diamond.
    QConicalGradient ring(centre, diamondAngle * 180 / std::numbers::pi);
    for (const auto& [at, alpha] : {std::pair{0.0, 255}, {0.10, 170}, {0.24, 40}, {0.5, 0}}) {
        const QColor color(255, 214, 196, alpha);
        ring.setColorAt(at, color);
        ring.setColorAt(1 - at, color);
    }
    painter.setPen(QPen(QBrush(ring), 0.055 * moon));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(centre, 0.985 * moon, 0.985 * moon);
}

void paintDiamond(QPainter& painter, QPointF at, double radius, bool rays) {
    painter.setPen(Qt::NoPen);
    QRadialGradient glare(at, radius);
    glare.setColorAt(0, QColor(255, 255, 255, 255));
    glare.setColorAt(0.2, QColor(255, 250, 232, 240));
    glare.setColorAt(0.42, QColor(255, 226, 168, 120));
    glare.setColorAt(1, QColor(255, 196, 120, 0));
    painter.setBrush(glare);
    painter.drawEllipse(at, radius, radius);
    if (!rays)
        return;
    for (int i = 0; i < 8; ++i) {
        const double angle = diamondAngle + i * std::numbers::pi / 4;
        const double length = radius * (i % 2 == 0 ? 1.45 : 0.85);
        const QPointF way(std::cos(angle), -std::sin(angle));
        const QPointF side = QPointF(-way.y(), way.x()) * (radius * 0.06);
        QLinearGradient fade(at, at + way * length);
        fade.setColorAt(0, QColor(255, 252, 240, 235));
        fade.setColorAt(1, QColor(255, 236, 196, 0));
        painter.setBrush(fade);
        painter.drawPolygon(QPolygonF{at + side, at + way * length, at - side});
    }
}

} // namespace

QImage appIcon(int size) {
    size = std::max(size, 1);
    const int factor = std::clamp((leastDrawn + size - 1) / size, 1, mostFactor);
    const double drawn = size * factor;
    QImage picture(size * factor, size * factor, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    const Look look = lookAt(size);
    {
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const double margin = look.margin * drawn;
        const QRectF square = QRectF(picture.rect()).adjusted(margin, margin, -margin, -margin);
        const double corner = look.corner * drawn;
        const QPointF centre = square.center();
        const double moon = look.moon * drawn;
        paintSky(painter, square, corner);
        if (look.stars)
            paintStars(painter, drawn);
        // What is painted on goes no further than the sky, whose edge stays smooth.
        painter.setCompositionMode(QPainter::CompositionMode_SourceAtop);
        paintCorona(painter, centre, moon);
        paintMoon(painter, centre, moon);
        const QPointF diamond =
            centre + 0.98 * moon * QPointF(std::cos(diamondAngle), -std::sin(diamondAngle));
        paintDiamond(painter, diamond, look.diamond * drawn, look.rays);
        paintRim(painter, square, corner, std::max(0.008 * drawn, 0.6 * factor));
    }
    if (factor == 1)
        return picture;
    return picture.scaled(size, size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QList<QImage> windowIcons() {
    QList<QImage> icons;
    for (const int size : {16, 32, 48, 128})
        icons.append(appIcon(size));
    return icons;
}

std::string pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

} // namespace zenka::painting
