#include "ui/framing/FramingScene.h"

#include "rig/site/SiteDesk.h"

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

namespace Framing = eclipse::Framing;

constexpr int pathSteps = 48;
/// At C2 and C3 themselves a rounding error is left of the Sun.
constexpr double edgeOfTotality = 0.001;

SkyOffset onSky(const Framing::FramePoint& point, const Framing::Optics& optics, double sunMm) {
    const auto upright = Framing::zenithUp(optics, point);
    return {.right = upright.right / sunMm, .up = upright.up / sunMm};
}

} // namespace

SkyOffset FramingScene::reach() const {
    SkyOffset most;
    for (const SkyOffset& corner : corners) {
        most.right = std::max(most.right, std::abs(corner.right));
        most.up = std::max(most.up, std::abs(corner.up));
    }
    return most;
}

FramingScene framingScene(const rig::SiteDesk& site, const FramingPlan& plan) {
    const eclipse::Eclipse& eclipse = site.eclipse();
    const eclipse::Observer observer = site.observer();
    const Framing::Optics& optics = plan.optics;
    const double sunMm =
        Framing::facts(optics, Framing::sunRadiusDeg(eclipse, plan.moment / 3600, observer)).sunMm / 2;
    FramingScene scene{.sky = skyScene(site, plan.moment), .wantedRadii = plan.wantedRadii};
    scene.corona = scene.sky.crescentThickness() < edgeOfTotality && scene.sky.moonRadius >= 1;
    const double right = optics.widthMm / 2;
    const double up = optics.heightMm / 2;
    const std::array<Framing::FramePoint, 4> corners{
        {{right, up}, {right, -up}, {-right, -up}, {-right, up}}};
    std::ranges::transform(corners, scene.corners.begin(),
                           [&](const auto& corner) { return onSky(corner, optics, sunMm); });
    if (!plan.burst)
        return scene;
    const Framing::SkyPlace aimed = Framing::sunAt(eclipse, plan.aimed / 3600, observer);
    const auto at = [&](double clock) {
        return Framing::onSensor(optics, aimed, Framing::sunAt(eclipse, clock / 3600, observer));
    };
    for (int i = 0; i <= pathSteps; ++i) {
        const double clock =
            plan.burst->beginSec + (plan.burst->endSec - plan.burst->beginSec) * i / pathSteps;
        if (const auto point = at(clock))
            scene.path.push_back(onSky(*point, optics, sunMm));
    }
    const auto held = [&](double clock) {
        const auto point = at(clock);
        return point && Framing::holds(optics, *point, sunMm);
    };
    scene.firstHeld = held(plan.burst->beginSec);
    scene.lastHeld = held(plan.burst->endSec);
    return scene;
}

} // namespace zenka::ui
