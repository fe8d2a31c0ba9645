#pragma once

#include <QColor>
#include <QImage>

namespace zenka::painting {

/// How far out the picture of the corona goes, solar radii.
inline constexpr double coronaReach = 3.6;

/// The corona around a Sun of sunRadius pixels, in one colour, transparent outside: a square picture whose
/// centre is the Sun's. A likeness and no forecast, the same on every day.
QImage coronaPicture(double sunRadius, const QColor& color);

/// Keeps the last picture made, since one takes some milliseconds.
class CoronaCache {
public:
    const QImage& picture(double sunRadius, const QColor& color);

private:
    QImage picture_;
    double sunRadius_ = 0;
    QColor color_;
};

} // namespace zenka::painting
