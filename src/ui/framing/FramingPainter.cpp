#include "ui/framing/FramingPainter.h"

#include "ui/kit/QtText.h"

#include <QFontMetricsF>
#include <QPolygonF>
#include <QRadialGradient>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace zenka::ui {

namespace {

constexpr double outermostRing = 8;
/// The corona is made once at this size, pixels of the Sun's radius, and scaled: it has no sharp edges.
constexpr double coronaSunRadius = 20;

/// One picture: the scene and where it comes to lie.
class FramingStage {
public:
    FramingStage(QPainter& painter, const QSizeF& size, const FramingScene& scene,
                 const FramingColors& colors, const QFont& font)
        : painter_(painter), scene_(scene), colors_(colors), size_(size), metrics_(font) {
        // All of the frame, and the rings as far as they do not make it tiny.
        const SkyOffset reach = scene.reach();
        const auto wanted = [](double half) {
            return std::max(1.12 * half, std::min(outermostRing + 0.7, 2.2 * half));
        };
        scale_ = std::min(size.width() / 2 / wanted(reach.right), size.height() / 2 / wanted(reach.up));
    }

    void paint(painting::CoronaCache& corona) {
        painter_.fillRect(QRectF(QPointF(), size_), colors_.sky);
        paintFrameGround();
        if (scene_.corona)
            paintCorona(corona);
        paintRings();
        paintDiscs();
        paintFrame();
        paintPath();
        painter_.setPen(colors_.light);
        painter_.drawText(QPointF(6, metrics_.ascent() + 4), QStringLiteral("↑ zenith"));
    }

private:
    QPointF at(const SkyOffset& offset) const {
        return {size_.width() / 2 + offset.right * scale_, size_.height() / 2 - offset.up * scale_};
    }
    QPolygonF frame() const {
        QPolygonF polygon;
        for (const SkyOffset& corner : scene_.corners)
            polygon << at(corner);
        return polygon;
    }
    static QColor faded(QColor color, double alpha) {
        color.setAlphaF(static_cast<float>(alpha));
        return color;
    }

    void paintFrameGround() {
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(faded(colors_.light, 0.09));
        painter_.drawPolygon(frame());
    }

    void paintCorona(painting::CoronaCache& cache) {
        // The outer part, which long exposures show: it fades with some power of the distance.
        QRadialGradient outer(at({}), outermostRing * scale_);
        for (const double radii : {1.0, 1.5, 2.0, 3.0, 4.0, 6.0, 8.0})
            outer.setColorAt(radii / outermostRing,
                             faded(colors_.light, 0.34 * (std::pow(radii, -1.3) - std::pow(8.0, -1.3))));
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(outer);
        painter_.drawEllipse(at({}), outermostRing * scale_, outermostRing * scale_);
        const double half = painting::coronaReach * scale_;
        painter_.setRenderHint(QPainter::SmoothPixmapTransform);
        painter_.drawImage(QRectF(at({}) - QPointF(half, half), QSizeF(2 * half, 2 * half)),
                           cache.picture(coronaSunRadius, colors_.light));
    }

    void paintRings() {
        painter_.setBrush(Qt::NoBrush);
        double labelled = 0;
        std::vector<double> rings{2, 4, 6, outermostRing};
        if (!std::ranges::binary_search(rings, scene_.wantedRadii))
            rings.insert(std::ranges::upper_bound(rings, scene_.wantedRadii), scene_.wantedRadii);
        for (const double radii : rings) {
            const bool wanted = radii == scene_.wantedRadii;
            painter_.setPen(QPen(faded(colors_.light, wanted ? 1 : 0.55), wanted ? 2 : 1,
                                 wanted ? Qt::SolidLine : Qt::DotLine));
            painter_.drawEllipse(at({}), radii * scale_, radii * scale_);
            // The numbers stand to the left, each where it has room.
            const QPointF place = at({.right = -radii, .up = 0});
            if ((radii - labelled) * scale_ < metrics_.horizontalAdvance(QStringLiteral("8 R ")) ||
                place.x() < metrics_.height())
                continue;
            labelled = radii;
            label(place, qt(absl::StrFormat("%.0f R", radii)), colors_.light, wanted);
        }
    }

    void paintDiscs() {
        painter_.setPen(Qt::NoPen);
        if (!scene_.corona) {
            painter_.setBrush(colors_.sun);
            painter_.drawEllipse(at({}), scale_, scale_);
        }
        const double moon = scene_.sky.moonRadius * scale_;
        painter_.setPen(QPen(faded(colors_.light, 0.6), 1));
        painter_.setBrush(colors_.moon);
        painter_.drawEllipse(at(scene_.sky.moon()), moon, moon);
    }

    void paintFrame() {
        painter_.setPen(QPen(colors_.frame, 2));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawPolygon(frame());
    }

    void paintPath() {
        if (scene_.path.empty())
            return;
        QPolygonF path;
        for (const SkyOffset& offset : scene_.path)
            path << at(offset);
        painter_.setPen(QPen(colors_.path, 2));
        painter_.drawPolyline(path);
        paintEnd(path.last(), scene_.lastHeld, QStringLiteral("last"), Qt::DashLine);
        if (std::hypot(path.first().x() - path.last().x(), path.first().y() - path.last().y()) >
            metrics_.height())
            paintEnd(path.first(), scene_.firstHeld, QStringLiteral("first"), Qt::SolidLine);
    }

    /// Where the Sun is at one end of a burst.
    void paintEnd(const QPointF& place, bool held, const QString& name, Qt::PenStyle style) {
        painter_.setPen(QPen(colors_.path, 2, style));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawEllipse(place, scale_, scale_);
        const QString words = (held ? QString() : QStringLiteral("✖ ")) + name;
        QPointF below = place + QPointF(0, scale_ + metrics_.height() * 0.8);
        const double half = metrics_.horizontalAdvance(words) / 2 + 4;
        below.setX(std::clamp(below.x(), half, std::max(half, size_.width() - half)));
        below.setY(std::clamp(below.y(), metrics_.height(), size_.height() - metrics_.height()));
        label(below, words, colors_.path, true);
    }

    void label(const QPointF& middle, const QString& words, const QColor& color, bool strong) {
        QRectF box(0, 0, metrics_.horizontalAdvance(words) + 6, metrics_.height());
        box.moveCenter(middle);
        painter_.fillRect(box, faded(colors_.sky, 0.8));
        painter_.setPen(strong ? color : faded(color, 0.85));
        painter_.drawText(box, Qt::AlignCenter, words);
    }

    QPainter& painter_;
    const FramingScene& scene_;
    const FramingColors& colors_;
    QSizeF size_;
    QFontMetricsF metrics_;
    double scale_ = 1; ///< pixels to a solar radius
};

} // namespace

void paintFraming(QPainter& painter, const QSizeF& size, const FramingScene& scene,
                  const FramingColors& colors, const QFont& font, painting::CoronaCache& corona) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    painter.setClipRect(QRectF(QPointF(), size));
    FramingStage(painter, size, scene, colors, font).paint(corona);
    painter.restore();
}

} // namespace zenka::ui
