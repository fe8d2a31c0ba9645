#include "ui/sky/SkyPainter.h"

#include <QFontMetricsF>
#include <QRadialGradient>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zenka::ui {

namespace {

constexpr double radian = std::numbers::pi / 180;
/// The Sun's mean radius; the true one is within 1.7 % of it all the year.
constexpr double sunRadiusDeg = 959.63 / 3600;
/// Crescents thinner than this, in solar radii, let the corona show: some 20 s before C2.
constexpr double coronaThickness = 0.012;
constexpr double beadThickness = 0.004;
constexpr double chromosphereHeight = 0.014; // solar radii, spicules and all

QColor mixed(const QColor& from, const QColor& to, double part) {
    const double p = std::clamp(part, 0.0, 1.0);
    const auto channel = [p](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * p)); };
    return {channel(from.red(), to.red()), channel(from.green(), to.green()),
            channel(from.blue(), to.blue())};
}

QColor faded(QColor color, double alpha) {
    color.setAlpha(static_cast<int>(std::lround(255 * std::clamp(alpha, 0.0, 1.0))));
    return color;
}

void paintDisc(QPainter& painter, const QPointF& center, double radius, const QBrush& brush) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawEllipse(center, radius, radius);
}

/// A light that fades with the cube of the distance from its rim.
void paintGlow(QPainter& painter, const QPointF& center, double radius, const QColor& color, double alpha) {
    QRadialGradient glow(center, radius);
    for (const double stop : {0.0, 0.1, 0.2, 0.35, 0.5, 0.75, 1.0})
        glow.setColorAt(stop, faded(color, alpha * std::pow(1 - stop, 3)));
    paintDisc(painter, center, radius, glow);
}

/// 0 in daylight to 1 in totality. The eye does not see the sky darken before the last tenth.
double darkness(const SkyScene& scene) {
    const double part = std::clamp((scene.obscuration() - 0.88) / 0.12, 0.0, 1.0);
    return scene.total() ? 1 : 0.85 * part * part * part;
}

/// One picture: the scene and where it comes to lie.
struct Stage {
    const SkyScene& scene;
    const SkyColors& colors;
    QSizeF size;
    double radius; ///< the Sun's, pixels
    QPointF sun;
    QPointF moon;
    double dark;

    Stage(const SkyScene& of, const SkyColors& with, const QSizeF& in)
        : scene(of), colors(with), size(in), radius(sunRadiusIn(in)), sun(in.width() / 2, in.height() / 2),
          dark(darkness(of)) {
        const SkyOffset offset = of.moon();
        moon = sun + QPointF(offset.right, -offset.up) * radius;
    }

    double moonRadius() const { return scene.moonRadius * radius; }
    QColor sky() const { return mixed(colors.sky, mixed(colors.moon, Qt::black, 0.75), dark); }
    /// How far the corona shows, 0 to 1.
    double corona() const { return std::clamp(1 - scene.crescentThickness() / coronaThickness, 0.0, 1.0); }
    /// The direction away from the Moon, where the last of the Sun is; radians.
    double lastLight() const { return (scene.directionDeg + 180) * radian; }
    QPointF around(double angle, double distance) const {
        return sun + QPointF(std::cos(angle), -std::sin(angle)) * distance * radius;
    }
    /// What the Moon leaves of the Sun's disc in a direction from the Sun's centre, solar radii; negative
    /// where the Moon's limb stands over.
    double thickness(double angle) const {
        const double turn = angle - scene.directionDeg * radian;
        const double across = scene.separation * std::sin(turn);
        const double along = scene.moonRadius * scene.moonRadius - across * across;
        return 1 - (scene.separation * std::cos(turn) + std::sqrt(std::max(along, 0.0)));
    }
};

void paintPhotosphere(QPainter& painter, const Stage& stage) {
    // limb darkening, a little stronger than the eye sees it
    QRadialGradient disc(stage.sun, stage.radius);
    disc.setColorAt(0, mixed(stage.colors.sun, stage.colors.corona, 0.18));
    disc.setColorAt(0.75, stage.colors.sun);
    disc.setColorAt(1, mixed(stage.colors.sun, Qt::black, 0.18));
    paintDisc(painter, stage.sun, stage.radius, disc);
}

/// The red rim of gas at the Sun's edge, which the Moon uncovers for some seconds beside C2 and C3.
void paintChromosphere(QPainter& painter, const Stage& stage) {
    struct Prominence {
        double angle = 0;  ///< radians
        double height = 0; ///< solar radii
        double width = 0;  ///< solar radii
    };
    constexpr std::array<Prominence, 5> prominences{{{.angle = 0.45, .height = 0.05, .width = 0.035},
                                                     {.angle = 1.35, .height = 0.035, .width = 0.05},
                                                     {.angle = 2.75, .height = 0.06, .width = 0.03},
                                                     {.angle = 4.0, .height = 0.04, .width = 0.045},
                                                     {.angle = 5.3, .height = 0.055, .width = 0.04}}};
    paintDisc(painter, stage.sun, stage.radius * (1 + chromosphereHeight), stage.colors.chromosphere);
    for (const Prominence& prominence : prominences)
        paintDisc(painter, stage.around(prominence.angle, 1 + prominence.height - prominence.width),
                  prominence.width * stage.radius, stage.colors.chromosphere);
}

void paintMoon(QPainter& painter, const Stage& stage) {
    // Seen against the Sun the Moon is as dark as the sky, which a picture has to tell from the disc.
    paintDisc(painter, stage.moon, stage.moonRadius(), mixed(stage.colors.moon, stage.sky(), stage.dark));
    if (stage.corona() > 0)
        return;
    painter.setPen(QPen(stage.colors.line, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(stage.moon, stage.moonRadius(), stage.moonRadius());
}

/// The Sun through the valleys of the Moon's limb. The valleys are made up: they look right, and come and
/// go about when real ones would.
void paintBeads(QPainter& painter, const Stage& stage) {
    if (stage.scene.crescentThickness() > beadThickness || stage.scene.crescentThickness() <= 0)
        return;
    for (int i = -24; i <= 24; ++i) {
        const double angle = stage.lastLight() + i * 1.6 * radian;
        const double valley = 0.0011 * std::sin(i * 2.399 + 0.7) * std::sin(i * 1.13);
        const double light = stage.thickness(angle) + valley;
        if (light > 0)
            paintGlow(painter, stage.around(angle, 1), stage.radius * std::min(0.05, 0.6 * std::sqrt(light)),
                      stage.colors.corona, 1);
    }
}

/// The last or first light of the Sun beside totality.
void paintDiamond(QPainter& painter, const Stage& stage) {
    const double part = stage.corona();
    if (part <= 0 || stage.scene.total())
        return;
    const double strength = std::sqrt(1 - part);
    const QPointF place = stage.around(stage.lastLight(), 1);
    const QColor core = mixed(stage.colors.sun, stage.colors.corona, 0.85);
    paintGlow(painter, place, stage.radius * (0.55 + 1.1 * strength), core, 0.9);
    paintGlow(painter, place, stage.radius * (0.16 + 0.3 * strength), core, 1);
    paintDisc(painter, place, stage.radius * (0.04 + 0.05 * strength), core);
}

void paintSunAndMoon(QPainter& painter, const Stage& stage, painting::CoronaCache& cache) {
    if (stage.dark < 1)
        paintGlow(painter, stage.sun, stage.radius * 3.2, stage.colors.sun,
                  0.5 * (1 - stage.scene.obscuration()));
    if (stage.corona() > 0) {
        const QImage& corona = cache.picture(stage.radius, stage.colors.corona);
        painter.setOpacity(stage.corona());
        painter.drawImage(stage.sun - QPointF(corona.width(), corona.height()) / 2, corona);
        paintChromosphere(painter, stage);
        painter.setOpacity(1);
    }
    if (!stage.scene.total())
        paintPhotosphere(painter, stage);
    paintMoon(painter, stage);
    paintBeads(painter, stage);
    paintDiamond(painter, stage);
}

void paintGround(QPainter& painter, const Stage& stage) {
    const double top = horizonIn(stage.size, stage.scene.altitudeDeg);
    if (top >= stage.size.height())
        return;
    const QRectF ground(0, std::max(top, 0.0), stage.size.width(), stage.size.height());
    painter.fillRect(ground, faded(stage.colors.ground, 0.85));
    if (top < 0)
        return;
    painter.setPen(QPen(stage.colors.text, 2));
    painter.drawLine(QPointF(52, top), QPointF(stage.size.width(), top)); // leaves the scale's 0 to be read
}

/// Degrees of altitude along the left edge, and a pointer at the Sun's.
void paintScale(QPainter& painter, const Stage& stage, const QFont& font) {
    const double perDegree = stage.radius / sunRadiusDeg;
    const QFontMetricsF metrics(font);
    double step = 5;
    for (const double finer : {2.0, 1.0, 0.5, 0.2, 0.1})
        step = finer * perDegree >= 2.2 * metrics.height() ? finer : step;
    const double middle = stage.size.height() / 2;
    const double highest = stage.scene.altitudeDeg + middle / perDegree;
    const double lowest = stage.scene.altitudeDeg - middle / perDegree;
    const QColor ink = stage.dark > 0.5 ? mixed(stage.colors.corona, stage.sky(), 0.45) : stage.colors.text;
    painter.setFont(font);
    painter.setPen(QPen(ink, 1));
    const int last = static_cast<int>(std::floor(highest / step));
    for (int i = static_cast<int>(std::ceil(lowest / step)); i <= last; ++i) {
        const double degrees = i * step;
        const double y = middle - (degrees - stage.scene.altitudeDeg) * perDegree;
        if (y < metrics.height() || y > stage.size.height() - metrics.height())
            continue;
        painter.drawLine(QPointF(0, y), QPointF(8, y));
        const std::string label =
            absl::StrFormat("%s%.*f°", i < 0 ? "−" : "", step >= 1 ? 0 : 1, std::abs(degrees));
        painter.drawText(QPointF(12, y + metrics.ascent() / 2 - 1), QString::fromStdString(label));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPolygon(QPolygonF({{0, middle - 5}, {9, middle}, {0, middle + 5}}));
}

} // namespace

double sunRadiusIn(const QSizeF& size) {
    return std::max(6.0, std::min(size.height() * 0.25, size.width() * 0.17));
}

double horizonIn(const QSizeF& size, double altitudeDeg) {
    return size.height() / 2 + altitudeDeg * sunRadiusIn(size) / sunRadiusDeg;
}

void paintSky(QPainter& painter, const QSizeF& size, const SkyScene& scene, const SkyColors& colors,
              const QFont& font, painting::CoronaCache& corona) {
    const Stage stage(scene, colors, size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRectF(QPointF(), size), stage.sky());
    paintSunAndMoon(painter, stage, corona);
    paintGround(painter, stage);
    paintScale(painter, stage, font);
    painter.restore();
}

} // namespace zenka::ui
