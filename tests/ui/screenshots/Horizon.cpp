#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQuickItem>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace zenka::screenshots {

void shootHorizon(test::VirtualRig& rig, ui::Window& window, Album& album) {
    const rig::Site& site = rig.model.site().site();
    rig::KnownHorizon hills{.lat = site.lat, .lon = site.lon, .result = {}};
    for (std::size_t az = 0; az < hills.result.samples.size(); ++az) {
        const auto at = static_cast<double>(az);
        hills.result.samples[az] =
            std::max(0.0, 7 + 2 * std::sin(at / 17) + std::sin(at / 5) + 0.5 * std::sin(at / 1.7));
    }
    hills.result.observerHeightM = 204;
    rig.machine.settings.setText("zenka.terrainToken", "pk");
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("Location-" + std::string(page) + look); };
        const auto turnToHorizon = [&] {
            Album::settle();
            QMetaObject::invokeMethod(itemNamed(window, "showHorizon"), "clicked");
        };
        rig.files.contents.erase(rig.folders.applicationSupport() / "horizons.json");
        rig.model.horizons().restore();
        window.app().openSheet(QStringLiteral("Location"));
        rig.run(0.1);
        turnToHorizon();
        shoot("flat");
        rig.model.horizons().find({.lat = site.lat, .lon = site.lon}, false);
        rig.run(0.1);
        shoot("loading");
        rig.model.horizons().cancel();
        rig.files.contents[rig.folders.applicationSupport() / "horizons.json"] =
            rig::toJson(std::vector{hills});
        rig.model.horizons().restore();
        window.app().closeSheet();
        window.app().openSheet(QStringLiteral("Location"));
        rig.run(0.1);
        turnToHorizon();
        shoot("hidden");
        rig.machine.settings.remove("zenka.terrainToken");
        rig.model.horizons().find({.lat = site.lat, .lon = site.lon}, false);
        rig.run(0.1);
        shoot("noToken");
        rig.machine.settings.setText("zenka.terrainToken", "pk");
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
