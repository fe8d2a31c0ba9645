// Renders the window and every sheet in the three themes at full and minimum size into a folder.
// Usage: screenshots DIR [TEXT-SCALE [SHEET]]: all sheets, or one.

#include "support/ToldNames.h"
#include "support/ToldPages.h"
#include "ui/AppView.h"
#include "ui/Theme.h"
#include "ui/screenshots/Scenes.h"

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

    test::VirtualRig rig;
    test::ToldNames names;
    services::ServiceDesk services(rig.machine.all, names, rig.model, "0.1.0");
    test::ToldPages pages;
    services::GlanceDesk glance(rig.machine.all, pages, rig.model);
    ui::Window window(rig.model, rig.machine.all, services, glance, QStringLiteral("0.1.0"));
    if (!window.show())
        return 1;
    if (argc > 2)
        window.theme().setTextScale(std::atof(argv[2]));
    window.app().closeSheet();
    Album album(window, argv[1]);
    const auto body = beginRehearsal(rig);
    shootDashboard(rig, window, body, only, album);
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
