#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"
#include "ui/Commands.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QUrl>
#include <absl/strings/str_format.h>

#include <string>
#include <tuple>

namespace zenka::screenshots {

void shootAnalyzer(test::VirtualRig& rig, ui::Window& window, Album& album) {
    using Step = rig::AnalyzerState::Step;
    const test::TempFolder disk;
    rig::RunAnalyzer& analyzer = rig.model.analyzer();
    window.setOpenUrl([](const QUrl&) {});
    int number = 0;
    for (const auto& [volume, minute, frames] :
         {std::tuple("EOS_DIGITAL", 0, 12), {"LUMIX", 0, 2}, {"LUMIX", 30, 40}, {"LUMIX", 60, 7}}) {
        for (int i = 0; i < frames; ++i) {
            const std::string file = "DSC_" + std::to_string(++number) + ".NEF";
            test::writeFile(disk.path() / volume / "DCIM" / "100" / file, "image");
            const int at = minute * 60 + i * 5;
            rig.images.fields[file] = {
                .dateTimeOriginal =
                    absl::StrFormat("2026:08:12 %02d:%02d:%02d", 18 + at / 3600, at / 60 % 60, at % 60),
                .isoSpeedRatings = i % 3 == 0 ? 250 : 200,
                .fNumber = 8,
                .exposureTime = 0.002,
                .model = "DC-GH6"};
        }
    }
    const auto until = [&](Step step, bool files = false) {
        rig.machine.time.runUntil(
            [&] { return analyzer.state()->step == step && (!files || analyzer.state()->filesFound > 0); },
            base::Seconds{1});
    };
    const double now = rig.model.transport().clock();
    album.inEveryLook([&](const std::string& look) {
        const auto shoot = [&](const char* page) { album.shoot("Analyzer-" + std::string(page) + look); };
        std::string script;
        for (int i = 0; i < 40; ++i)
            script += rig.frameAt(now + 100 + i * 5, "CAM1") + rig.frameAt(now + 100 + i * 5, "CAM2");
        rig.load(script);
        rig.volumes.plugged.clear();
        window.commands().trigger(QStringLiteral("analyzer"));
        rig.run(0.1);
        shoot("noCard");
        window.app().closeSheet();
        rig.volumes.plug(disk.path() / "LUMIX");
        rig.run(0.1);
        shoot("chip");
        analyzer.offerPostRunAnalyze();
        shoot("offer");
        window.app().closeSheet();
        rig.volumes.plug(disk.path() / "EOS_DIGITAL");
        rig.run(0.1);
        shoot("chips");
        window.commands().trigger(QStringLiteral("analyzer"));
        rig.run(0.1);
        shoot("cards");
        analyzer.choose(0);
        rig.run(0.1);
        shoot("cameras");
        analyzer.choose(0);
        until(Step::working, true);
        shoot("working");
        rig.run(0.1);
        shoot("runs");
        analyzer.choose(1);
        rig.run(0.1);
        shoot("pass");
        window.app().closeSheet();
        analyzer.analyzeFolder(disk.path() / "EOS_DIGITAL" / "DCIM");
        rig.run(0.1);
        analyzer.choose(0);
        rig.run(0.1);
        shoot("review");
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
