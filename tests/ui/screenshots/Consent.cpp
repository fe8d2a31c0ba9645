#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <string>

namespace zenka::screenshots {

void shootConsent(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.files.contents["/home/got.zenka"] =
        "COMMAND,C2,-,00:30, , , , , , , , ,Dim;brightnessctl set 5%\n"
        "COMMAND,C3,+,00:30, , , , , , , , ,Bright;brightnessctl set 100% && paplay "
        "/usr/share/sounds/freedesktop/stereo/complete.oga\n";
    album.inEveryLook([&](const std::string& look) {
        window.app().openSheet(QStringLiteral("Script"));
        rig.model.script().openFile("/home/got.zenka", [](const std::string&) {});
        rig.run(0.1);
        album.shoot("Consent-question" + look);
        window.app().closeSheet();
        album.shoot("Consent-script" + look);
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
