#include "exposure/ExposureScales.h"
#include "support/TimedCamera.h"
#include "support/VirtualRig.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <cstddef>
#include <memory>
#include <string>

namespace zenka::screenshots {

void shootProfilers(test::VirtualRig& rig, ui::Window& window, Album& album) {
    const auto body =
        std::make_shared<test::TimedCamera>(rig.machine.loop, rig.machine.time, [](double since, int number) {
            return test::TimedCamera::Reply{
                .afterSec = 0.21, .ok = since > 0.39 && number % 24 != 0, .responded = number % 4 != 0};
        });
    for (int i = 0; i < 40; ++i)
        body->choices.shutter.emplace_back(exposure::standardShutters()[static_cast<std::size_t>(i) + 10]);
    body->choices.iso = {"Auto", "64", "100", "200", "400", "800", "1600", "3200", "6400", "12800", "25600"};
    body->choices.aperture = {"f/5.6", "f/6.3", "f/7.1", "f/8", "f/11", "f/16", "f/22", "f/32"};
    rig.model.roster().add(body);
    rig.model.roster().setLabelOfSerial(body->serial(), "CAM4");
    rig::GapProfiler& profiler = rig.model.gapProfiler();
    const auto finish = [&] {
        rig.machine.time.runUntil([&] { return !profiler.gapProfileRunning().get(); }, base::Seconds{900});
    };
    album.inEveryLook([&](const std::string& look) {
        body->shots.clear();
        window.app().openSheet(QStringLiteral("GapProfiler"));
        profiler.setGapProfileMode(rig::GapProfileMode::quickFloor);
        profiler.runGapProfile(body->id());
        rig.run(11);
        album.shoot("GapProfiler-ladder" + look);
        window.app().closeSheet();
        album.shoot("GapProfiler-away" + look);
        window.app().openSheet(QStringLiteral("GapProfiler"));
        finish();
        album.shoot("GapProfiler-verdict" + look);
        body->shots.clear();
        profiler.setGapProfileMode(rig::GapProfileMode::sustainedBurst);
        profiler.runGapProfile(body->id());
        finish();
        album.shoot("GapProfiler-burst" + look);
        window.app().closeSheet();
        window.app().openSheet(QStringLiteral("CameraProfiler"));
        rig.model.cameraProfiler().runCameraProfile(body->id());
        rig.run(1);
        album.shoot("CameraProfiler-read" + look);
        window.app().closeSheet();
        rig.model.cadence().explainDrops({{.label = "CAM4", .ok = 80, .dropped = 40}});
        album.shoot("DropExplainer-drops" + look);
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
