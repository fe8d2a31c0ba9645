#include "ui/site/HorizonScene.h"

#include "eclipse/Besselian.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double aroundHours = 0.5; ///< of the path before C1 and behind C4
constexpr double stepHours = 1.0 / 30;
constexpr double besideDeg = 15;
constexpr double narrowestDeg = 60;
constexpr double lowestTopDeg = 10;

/// The azimuth that is nearest to another, on whatever turn.
double unwrapped(double az, double near) {
    return az + 360 * std::round((near - az) / 360);
}

void findPath(HorizonScene& scene, const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
              const eclipse::LocalCircumstances& circ) {
    if (scene.contacts.empty())
        return;
    const double from = circ.events.front().tHours - aroundHours;
    const double to = circ.events.back().tHours + aroundHours;
    for (double hours = from; hours <= to; hours += stepHours) {
        const auto sun = eclipse.geometry(hours, observer);
        const double az = scene.path.empty() ? sun.azDeg : unwrapped(sun.azDeg, scene.path.back().az);
        scene.path.push_back({.az = az, .alt = sun.altDeg});
    }
    for (auto& contact : scene.contacts) {
        const auto nearest = std::ranges::min_element(scene.path, {}, [&](const HorizonScene::Point& point) {
            return std::abs(unwrapped(contact.sunAzDeg, point.az) - point.az) +
                   std::abs(contact.sunAltDeg - point.alt);
        });
        contact.sunAzDeg = unwrapped(contact.sunAzDeg, nearest->az);
    }
}

void frame(HorizonScene& scene) {
    if (scene.path.empty())
        return;
    const auto [left, right] = std::ranges::minmax_element(scene.path, {}, &HorizonScene::Point::az);
    const double middle = (left->az + right->az) / 2;
    const double half = std::clamp((right->az - left->az) / 2 + besideDeg, narrowestDeg / 2, 180.0);
    scene.leftAz = middle - half;
    scene.rightAz = middle + half;
    double top = std::ranges::max_element(scene.path, {}, &HorizonScene::Point::alt)->alt;
    for (double az = scene.leftAz; az <= scene.rightAz && !scene.samples.empty(); ++az)
        top = std::max(top, eclipse::TerrainHorizon::elevationAt(scene.samples, az));
    scene.highestAlt = std::clamp(top * 1.15, lowestTopDeg, 90.0);
}

} // namespace

HorizonScene horizonScene(const eclipse::Eclipse& eclipse, const eclipse::Observer& observer,
                          std::vector<double> samples) {
    HorizonScene scene;
    scene.samples = std::move(samples);
    const auto circ = eclipse.localCircumstances(observer);
    scene.contacts = rig::contactClearances(circ, scene.samples);
    findPath(scene, eclipse, observer, circ);
    if (scene.path.empty() && !scene.samples.empty())
        scene.highestAlt = std::max(lowestTopDeg, *std::ranges::max_element(scene.samples) * 1.15);
    frame(scene);
    return scene;
}

std::string compassName(int azDeg) {
    static constexpr std::array<const char*, 8> names{"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    const int turn = ((azDeg % 360) + 360) % 360;
    return turn % 45 == 0 ? names[static_cast<std::size_t>(turn / 45)] : "";
}

} // namespace zenka::ui
