#include "ui/sky/SkyScene.h"

#include "eclipse/Besselian.h"
#include "eclipse/SkyCurve.h"
#include "rig/site/SiteDesk.h"

#include <cmath>
#include <numbers>

namespace zenka::ui {

SkyOffset SkyScene::moon() const {
    // ViewSample::ang is atan2(up, right): with the Moon u east and v north of the Sun on the fundamental
    // plane and the zenith at the parallactic angle q from north through east, up is u sin q + v cos q
    // and right is v sin q − u cos q. Facing the Sun, right is where the azimuth grows.
    const double direction = directionDeg * std::numbers::pi / 180;
    return {.right = separation * std::cos(direction), .up = separation * std::sin(direction)};
}

double SkyScene::obscuration() const {
    // The signed inner radius, so that a Moon smaller than the Sun leaves its ring.
    return eclipse::Eclipse::obscuration(separation, 1 + moonRadius, moonRadius - 1);
}

SkyScene skyScene(const rig::SiteDesk& site, double clock) {
    const double hours = clock / 3600;
    const eclipse::ViewSample sample =
        eclipse::sampleCurve(site.eclipse(), site.observer(), hours, hours).front();
    return {.separation = sample.sep,
            .moonRadius = sample.moonR,
            .directionDeg = sample.ang,
            .altitudeDeg = sample.alt,
            .azimuthDeg = sample.az,
            .magnitude = sample.mag};
}

} // namespace zenka::ui
