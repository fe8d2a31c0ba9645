#include "support/TimedCamera.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Guide.h"
#include "ui/screenshots/GuideSizes.h"
#include "ui/screenshots/Stage.h"

#include <memory>

namespace zenka::screenshots {

bool shootMeasuring(const std::filesystem::path& folder) {
    Stage stage(folder);
    auto& [rig, names, services, pages, glance, window, album] = stage;
    if (!window.show())
        return false;
    window.app().closeSheet();
    window.app().declinePrompt();
    rig.load(example());
    const auto body =
        std::make_shared<test::TimedCamera>(rig.machine.loop, rig.machine.time, [](double since, int) {
            return test::TimedCamera::Reply{.afterSec = 0.31, .ok = since > 0.55};
        });
    rig.model.roster().add(body);
    rig.model.roster().setLabelOfSerial(body->serial(), "CAM1");
    window.app().openSheet(QStringLiteral("GapProfiler"));
    rig::GapProfiler& profiler = rig.model.gapProfiler();
    profiler.setGapProfileMode(rig::GapProfileMode::quickFloor);
    profiler.runGapProfile(body->id());
    rig.machine.time.runUntil([&] { return !profiler.gapProfileRunning().get(); }, base::Seconds{900});
    album.shoot("gap-profiler", "Dark", sheetSize);
    return true;
}

bool shootGuide(const std::filesystem::path& folder) {
    return shootFirstSteps(folder) && shootMeasuring(folder) && shootEclipseDay(folder);
}

} // namespace zenka::screenshots
