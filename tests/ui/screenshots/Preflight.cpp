#include "support/NmeaSentences.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQuickWindow>

#include <memory>
#include <string>

namespace zenka::screenshots {

void shootPreflight(test::VirtualRig& rig, ui::Window& window, Album& album) {
    const auto body = std::make_shared<test::ScriptedCamera>("z8");
    body->status = {.isManual = false, .modeName = "A", .batteryPercent = 9};
    rig.model.roster().add(body);
    rig.model.roster().setLabel(*body, "CAM1");
    rig.model.modes().recheckModes();
    rig.serialPorts.stream("/dev/ttyACM0", [sky = test::nmea::Sky{}](base::Instant wall) {
        return test::nmea::second(wall - base::Seconds{5}, sky);
    });
    rig.sensors.now = {.thermal = ports::ThermalState::serious,
                       .lowPowerMode = true,
                       .onACPower = false,
                       .hasInternalBattery = true,
                       .batteryPercent = 19,
                       .ticks = ports::ProcessorTicks{.user = 1, .sys = 1, .idle = 1},
                       .freeDiskGB = 4.2,
                       .socTempC = 83};
    rig.speech.neverEnds = true;
    rig.run(20);
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("Preflight-" + std::string(page) + look); };
        rig.model.announcer().speak("Two minutes to totality. Filters off.");
        shoot("chips");
        for (const char* chip : {"clockChip", "gpsChip", "healthChip"}) {
            QObject* more =
                window.quickWindow()->findChild<QObject*>(QString::fromLatin1(chip) + QStringLiteral("More"));
            QMetaObject::invokeMethod(more, "open");
            shoot(chip);
            QMetaObject::invokeMethod(more, "close");
        }
        rig.model.preflight().runPreflight([] {});
        rig.run(0.1);
        shoot("list");
        if (auto* rows = window.quickWindow()->findChild<QObject*>(QStringLiteral("preflightRows")))
            rows->setProperty("contentY", 300);
        shoot("further");
        window.app().closeSheet();
        rig.run(60);
    });
}

} // namespace zenka::screenshots
