#include "support/VirtualRig.h"
#include "ui/Commands.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QUrl>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <string>

namespace zenka::screenshots {

void shootRigTransfer(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig::RigContents carried = rig.model.transfer().gather();
    carried.site->eclipseId = "2027-08-02";
    carried.site->record.site = {
        .lat = 25.7, .lon = 32.6, .elev = 80, .label = "Luxor, EG", .tzId = "Africa/Cairo"};
    carried.script->name = "luxor-two-bodies.zenka";
    carried.script->text = example();
    carried.floors["Z9"] = {.floorSec = 0.35};
    carried.rules["token:CAM1"] = {};
    const std::string whole = rig::toJson(carried);
    auto damaged = nlohmann::json::parse(whole);
    damaged["savedSites"][0]["lat"] = 100;
    damaged["horizons"] = "flat";
    rig.files.contents["/home/field.zenka-rig"] = whole;
    rig.files.contents["/home/damaged.zenka-rig"] = damaged.dump();
    rig.files.contents["/home/picture.zenka-rig"] = "JFIF";
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("RigTransfer-" + std::string(page) + look); };
        window.commands().trigger(QStringLiteral("exportRig"));
        shoot("export");
        window.app().closeSheet();
        window.commands().trigger(QStringLiteral("importRig"));
        shoot("choose");
        auto* view = qvariant_cast<QObject*>(
            QQmlEngine::contextForObject(window.quickWindow())->contextProperty(QStringLiteral("transfer")));
        for (const char* file : {"field", "damaged", "picture"}) {
            QMetaObject::invokeMethod(
                view, "read",
                Q_ARG(QUrl,
                      QUrl::fromLocalFile(QStringLiteral("/home/%1.zenka-rig").arg(QLatin1String(file)))));
            rig.run(0.1);
            shoot(file);
        }
        window.app().closeSheet();
    });
    window.setOpenUrl([](const QUrl&) {});
    rig.load(example());
    const rig::Site& site = rig.model.site().site();
    rig.model.horizons().merge({{.lat = site.lat, .lon = site.lon, .result = {}}});
    window.commands().trigger(QStringLiteral("printChecklist"));
    rig.run(0.1);
    std::ofstream(album.folder() / "checklist.pdf", std::ios::binary) << rig.files.only(".pdf");
}

} // namespace zenka::screenshots
