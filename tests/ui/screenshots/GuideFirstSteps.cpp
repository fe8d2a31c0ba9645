#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"
#include "ui/screenshots/Guide.h"
#include "ui/screenshots/GuideSizes.h"
#include "ui/screenshots/Stage.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zenka::screenshots {

namespace {

/// Hills all around a place, higher in the west, where the Sun of that eclipse stands. They are made up.
rig::KnownHorizon hillsAround(const rig::Site& site) {
    rig::KnownHorizon hills{.lat = site.lat, .lon = site.lon, .result = {}};
    for (std::size_t az = 0; az < hills.result.samples.size(); ++az) {
        const auto at = static_cast<double>(az);
        hills.result.samples[az] =
            std::max(0.0, 6.4 + 2 * std::sin((at - 230) / 17) + std::sin(at / 5) + 0.5 * std::sin(at / 1.7));
    }
    hills.result.observerHeightM = 204;
    return hills;
}

void shootSite(Stage& stage) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    window.app().openSheet(QStringLiteral("Location"));
    rig.run(0.1);
    album.shoot("location", "Dark", wholeSize);
    window.app().closeSheet();

    const rig::Site before = rig.model.site().site();
    rig::Site valley = before;
    valley.label = "A valley (made-up hills)";
    rig.model.site().setSite(valley);
    rig.model.horizons().merge({hillsAround(valley)});
    window.app().openSheet(QStringLiteral("Location"));
    rig.run(0.1);
    Album::settle();
    QMetaObject::invokeMethod(itemNamed(window, "showHorizon"), "clicked");
    album.shoot("horizon");
    window.app().closeSheet();
    rig.model.site().setSite(before);
}

void shootScript(Stage& stage) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    window.app().openSheet(QStringLiteral("Wizard"));
    rig.run(0.1);
    album.shoot("wizard");
    window.app().closeSheet();
    rig.model.script().load(example(), "total-two-bodies.zenka");
    rig.model.script().compile();
    window.commands().trigger(QStringLiteral("validate"));
    rig.run(1);
    album.shoot("script");
    window.app().closeSheet();
}

void shootRehearsal(Stage& stage) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    for (const char* label : {"CAM1", "CAM2"})
        rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"), label);
    rig.playFrom(rig.model.site().contactTHours().at("C2") * 3600 - 600);
    stage.run(590);
    album.shoot("dashboard-dark", "Dark", wholeSize);
    album.shoot("dashboard-sunlight-small", "Sunlight", QSize(960, 440));
    album.shoot("dashboard-night", "Night", wholeSize);
}

} // namespace

bool shootFirstSteps(const std::filesystem::path& folder) {
    Stage stage(folder);
    stage.rig.machine.settings.remove("eclipse.scriptText"); // that the rig has written already
    if (!stage.window.show())
        return false;
    stage.window.app().declinePrompt(); // it is eclipse day
    stage.album.shoot("welcome", "Dark", sheetSize);
    stage.window.app().closeSheet();
    shootSite(stage);
    shootScript(stage);
    shootRehearsal(stage);
    return true;
}

} // namespace zenka::screenshots
