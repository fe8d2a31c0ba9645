#include "ui/site/HorizonPainter.h"

#include "ui/kit/QtText.h"

#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>
#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::ui {

namespace {

/// One picture: the scene and where it comes to lie.
class HorizonStage {
public:
    HorizonStage(QPainter& painter, const QSizeF& size, const HorizonScene& scene,
                 const HorizonColors& colors, const QFont& font)
        : painter_(painter), scene_(scene), colors_(colors), metrics_(font),
          field_(metrics_.horizontalAdvance(QStringLiteral("90° ")), metrics_.height() * 0.7, 0, 0) {
        field_.setRight(size.width() - metrics_.averageCharWidth());
        field_.setBottom(size.height() - metrics_.height() * 1.4);
    }

    void paint(const QSizeF& size) {
        painter_.fillRect(QRectF(QPointF(), size), colors_.page);
        painter_.fillRect(field_, colors_.sky);
        paintScale();
        painter_.save();
        painter_.setClipRect(field_);
        paintGround();
        paintPath();
        painter_.restore();
        for (const auto& contact : scene_.contacts)
            paintContact(contact);
    }

private:
    double x(double az) const {
        return field_.left() + (az - scene_.leftAz) / (scene_.rightAz - scene_.leftAz) * field_.width();
    }
    double y(double alt) const {
        return field_.bottom() -
               (alt - scene_.lowestAlt) / (scene_.highestAlt - scene_.lowestAlt) * field_.height();
    }

    /// The first of some round steps that gives the labels room.
    template <typename Steps>
    static int step(const Steps& steps, double pixelsPerDeg, double wanted) {
        for (const int candidate : steps) {
            if (candidate * pixelsPerDeg >= wanted)
                return candidate;
        }
        return *(std::end(steps) - 1);
    }

    void paintScale() {
        static constexpr int altSteps[] = {1, 2, 5, 10, 15, 30};
        static constexpr int azSteps[] = {5, 15, 45, 90};
        const double perAlt = field_.height() / (scene_.highestAlt - scene_.lowestAlt);
        const double perAz = field_.width() / (scene_.rightAz - scene_.leftAz);
        const int altStep = step(altSteps, perAlt, metrics_.height() * 2);
        const int azStep = step(azSteps, perAz, metrics_.horizontalAdvance(QStringLiteral("000° NW ")) * 1.3);
        for (int alt = 0; alt <= scene_.highestAlt; alt += altStep) {
            painter_.setPen(QPen(colors_.line, alt == 0 ? 2 : 1));
            painter_.drawLine(QPointF(field_.left(), y(alt)), QPointF(field_.right(), y(alt)));
            painter_.setPen(colors_.text);
            painter_.drawText(QRectF(0, y(alt) - metrics_.height() / 2, field_.left(), metrics_.height()),
                              Qt::AlignCenter, qt(absl::StrFormat("%d°", alt)));
        }
        const int first = static_cast<int>(std::ceil(scene_.leftAz / azStep)) * azStep;
        for (int az = first; az <= scene_.rightAz; az += azStep) {
            painter_.setPen(QPen(colors_.line, 1));
            painter_.drawLine(QPointF(x(az), field_.top()), QPointF(x(az), field_.bottom()));
            const QString label =
                qt(absl::StrFormat("%d° %s", (az % 360 + 360) % 360, compassName(az))).trimmed();
            const double half = metrics_.horizontalAdvance(label) / 2;
            const double left = std::clamp(x(az) - half, 0.0, field_.right() - 2 * half);
            painter_.setPen(colors_.text);
            painter_.drawText(QPointF(left, field_.bottom() + metrics_.ascent() + 2), label);
        }
    }

    void paintGround() {
        QPolygonF ground;
        for (double pixel = field_.left(); pixel <= field_.right() + 1; ++pixel) {
            const double az =
                scene_.leftAz + (pixel - field_.left()) / field_.width() * (scene_.rightAz - scene_.leftAz);
            ground << QPointF(pixel, y(eclipse::TerrainHorizon::elevationAt(scene_.samples, az)));
        }
        painter_.setPen(QPen(colors_.ridge, scene_.samples.empty() ? 1 : 2));
        painter_.drawPolyline(ground);
        ground << field_.bottomRight() + QPointF(1, 0) << field_.bottomLeft();
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(colors_.ground);
        painter_.drawPolygon(ground);
    }

    void paintPath() {
        QPolygonF path;
        for (const auto& point : scene_.path)
            path << QPointF(x(point.az), y(point.alt));
        painter_.setPen(QPen(colors_.sun, 2, Qt::DashLine));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawPolyline(path);
    }

    void paintContact(const rig::ContactClearance& contact) {
        const QPointF at(x(contact.sunAzDeg), y(std::max(contact.sunAltDeg, scene_.lowestAlt)));
        const double radius = metrics_.height() * 0.38;
        const bool seen = contact.sunAltDeg >= 0 && !contact.hidden();
        painter_.setPen(QPen(colors_.page, 2));
        painter_.setBrush(seen ? colors_.sun : colors_.hidden);
        if (seen)
            painter_.drawEllipse(at, radius, radius);
        else
            painter_.drawPolygon(QPolygonF{at + QPointF(0, -radius * 1.2), at + QPointF(radius * 1.1, radius),
                                           at + QPointF(-radius * 1.1, radius)});
        // C2, MAX and C3 lie close together: their names go to three sides.
        const QString name = qt(contact.key);
        const double width = metrics_.horizontalAdvance(name) + 6;
        QRectF box(0, 0, width, metrics_.height());
        const double beside = radius + 3 + width / 2;
        if (contact.key == "MAX")
            box.moveCenter(at - QPointF(0, radius + 3 + metrics_.height() / 2));
        else
            box.moveCenter(at + QPointF(contact.key == "C1" || contact.key == "C2" ? -beside : beside, 0));
        box.moveLeft(std::clamp(box.left(), field_.left(), std::max(field_.left(), field_.right() - width)));
        box.moveTop(std::clamp(box.top(), 0.0, field_.bottom() - box.height()));
        painter_.fillRect(box, colors_.page);
        painter_.setPen(seen ? colors_.text : colors_.hidden);
        painter_.drawText(box, Qt::AlignCenter, name);
    }

    QPainter& painter_;
    const HorizonScene& scene_;
    const HorizonColors& colors_;
    QFontMetricsF metrics_;
    QRectF field_;
};

} // namespace

void paintHorizon(QPainter& painter, const QSizeF& size, const HorizonScene& scene,
                  const HorizonColors& colors, const QFont& font) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    HorizonStage(painter, size, scene, colors, font).paint(size);
}

} // namespace zenka::ui
