#include "services/ServiceDesk.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QUrl>

#include <memory>
#include <string>

namespace zenka::screenshots {

void shootServices(test::VirtualRig& rig, ui::Window& window, services::ServiceDesk& services, Album& album) {
    services.allow(false);
    services.setAddress("https://reports.zenka.example");
    const auto body = std::make_shared<test::ScriptedCamera>("profiled");
    body->choices = {.shutter = {"1/500", "1/250"}, .iso = {"100", "200"}, .aperture = {"8"}};
    rig.model.roster().add(body);
    rig.model.cameraProfiler().runCameraProfile(body->id());
    rig.run(1);
    const test::TempFolder card;
    test::writeFile(card.path() / "DCIM" / "100" / "1.NEF", "image");
    rig.images.fields["1.NEF"] = {.dateTimeOriginal = "2026:08:12 20:00:00", .model = "NIKON Z 8"};
    window.setOpenUrl([](const QUrl&) {});
    album.inEveryLook([&](const std::string& look) {
        album.shoot("Service-trust" + look);
        rig.model.analyzer().analyzeFolder(card.path());
        rig.run(1);
        rig.model.analyzer().sendReport("new cable");
        rig.http.fail("the time ran out");
        album.shoot("Service-verdict" + look);
        window.app().closeSheet();
        for (const char* sheet : {"UsageReports", "Feedback", "Settings", "CameraProfiler"}) {
            window.app().openSheet(QString::fromLatin1(sheet));
            album.shoot("Service-" + std::string(sheet) + look);
            window.app().closeSheet();
        }
    });
}

} // namespace zenka::screenshots
