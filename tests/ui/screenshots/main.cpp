// Renders the window and every sheet in the three themes at full and minimum size into a folder.
// Usage: screenshots DIR [TEXT-SCALE [SHEET]]: all sheets, or one, or with "Guide" the pictures of the guide.

#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"
#include "ui/screenshots/Guide.h"
#include "ui/screenshots/Scenes.h"
#include "ui/screenshots/Stage.h"

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

int main(int argc, char** argv) {
    using namespace zenka;
    using namespace zenka::screenshots;
    if (argc < 2) {
        std::fprintf(stderr, "usage: screenshots DIR\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    std::filesystem::create_directories(argv[1]);
    const QString only = argc > 3 ? QString::fromLocal8Bit(argv[3]) : QString();
    const auto wanted = [&only](const char* sheet) { return only.isEmpty() || only == QLatin1String(sheet); };

    if (only == QLatin1String("Guide"))
        return shootGuide(argv[1]) ? 0 : 1;

    Stage stage(argv[1]);
    auto& [rig, names, services, pages, glance, window, album] = stage;
    if (!window.show())
        return 1;
    if (argc > 2)
        window.theme().setTextScale(std::atof(argv[2]));
    window.app().closeSheet();
    const auto body = beginRehearsal(rig);
    shootDashboard(rig, window, body, only, album);
    if (wanted("Help"))
        shootHelp(window, album);
    if (wanted("Glance"))
        shootGlance(window, glance, album);

    rig.model.transport().togglePlay(); // in a run nothing is measured
    const double now = rig.model.transport().clock();
    rig.load(rig.frameAt(now + 20, "CAM4") + rig.frameAt(now + 20.3, "CAM4"));
    if (wanted("GapProfiler"))
        shootProfilers(rig, window, album);
    if (wanted("Analyzer"))
        shootAnalyzer(rig, window, album);
    if (wanted("Location"))
        shootHorizon(rig, window, album);
    if (wanted("Framing"))
        shootFraming(rig, window, album);
    if (wanted("Assistant"))
        shootAssistant(rig, window, album);
    if (wanted("Consent"))
        shootConsent(rig, window, album);
    if (wanted("RigTransfer"))
        shootRigTransfer(rig, window, album);
    if (wanted("Preflight"))
        shootPreflight(rig, window, album);
    if (wanted("Service"))
        shootServices(rig, window, services, album);
}
