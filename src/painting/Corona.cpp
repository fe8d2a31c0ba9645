#include "painting/Corona.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace zenka::painting {

namespace {

struct Streamer {
    double angle = 0;  ///< radians
    double width = 0;  ///< radians at the limb; it narrows outwards
    double length = 0; ///< solar radii beyond the limb at which it has faded to a third
    double weight = 0;
};

// The look of a corona some years past solar maximum: broad streamers by the equator, fine plumes at the
// poles.
constexpr std::array<Streamer, 9> streamers{{
    {.angle = 0.15, .width = 0.42, .length = 1.15, .weight = 1.0},
    {.angle = 0.78, .width = 0.26, .length = 0.75, .weight = 0.7},
    {.angle = 1.62, .width = 0.30, .length = 0.45, .weight = 0.4},
    {.angle = 2.42, .width = 0.30, .length = 0.85, .weight = 0.8},
    {.angle = 3.05, .width = 0.38, .length = 1.25, .weight = 1.0},
    {.angle = 3.62, .width = 0.22, .length = 0.70, .weight = 0.7},
    {.angle = 4.45, .width = 0.24, .length = 0.40, .weight = 0.35},
    {.angle = 5.05, .width = 0.22, .length = 0.55, .weight = 0.5},
    {.angle = 5.75, .width = 0.32, .length = 0.95, .weight = 0.9},
}};

constexpr int directions = 720;

double circular(double difference) {
    return std::remainder(difference, 2 * std::numbers::pi);
}

/// Brightness 0 to 1 in a direction at a distance of the limb, solar radii.
double brightness(double angle, double height) {
    double light = 0.95 * std::exp(-height / 0.22); // the inner corona, nearly round
    for (const Streamer& streamer : streamers) {
        const double away = circular(angle - streamer.angle) / (streamer.width / (1 + 0.9 * height));
        light += 0.34 * streamer.weight * std::exp(-away * away - height / streamer.length);
    }
    const double fine = 0.5 + 0.28 * std::sin(37 * angle + 1.3) + 0.22 * std::sin(61 * angle + 0.4);
    light *= 1 - 0.22 * fine * std::min(height * 2.5, 1.0);
    const double edge = std::clamp((coronaReach - 1 - height) / 0.9, 0.0, 1.0);
    return std::clamp(light * edge, 0.0, 1.0);
}

} // namespace

QImage coronaPicture(double sunRadius, const QColor& color) {
    const int half = std::max(1, static_cast<int>(std::ceil(sunRadius * coronaReach)));
    QImage picture(2 * half, 2 * half, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    // A table by direction and distance, since the streamers cost too much to work out for each pixel.
    const int distances = half + 2;
    const auto at = [distances](int direction, int distance) {
        return static_cast<std::size_t>(direction) * static_cast<std::size_t>(distances) +
               static_cast<std::size_t>(distance);
    };
    std::vector<float> table(at(directions, 0));
    for (int d = 0; d < directions; ++d) {
        for (int r = 0; r < distances; ++r) {
            const double height = std::max(r / sunRadius - 1, 0.0);
            table[at(d, r)] = static_cast<float>(brightness(2 * std::numbers::pi * d / directions, height));
        }
    }
    for (int y = 0; y < picture.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < picture.width(); ++x) {
            const double dx = x + 0.5 - half;
            const double dy = half - y - 0.5;
            const int distance = static_cast<int>(std::hypot(dx, dy));
            if (distance >= half)
                continue;
            const double turn = std::atan2(dy, dx) / (2 * std::numbers::pi) + 1;
            const int direction = static_cast<int>(turn * directions) % directions;
            const double light = static_cast<double>(table[at(direction, distance)]);
            const auto part = [light](int channel) { return qRound(channel * light); };
            line[x] = qRgba(part(color.red()), part(color.green()), part(color.blue()), part(255));
        }
    }
    return picture;
}

const QImage& CoronaCache::picture(double sunRadius, const QColor& color) {
    if (picture_.isNull() || sunRadius_ != sunRadius || color_ != color) {
        picture_ = coronaPicture(sunRadius, color);
        sunRadius_ = sunRadius;
        color_ = color;
    }
    return picture_;
}

} // namespace zenka::painting
