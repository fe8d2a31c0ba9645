// Renders the window and every sheet in the three themes at full and minimum size into a folder.
// Usage: screenshots DIR [TEXT-SCALE]

#include "support/VirtualRig.h"
#include "ui/AppView.h"
#include "ui/Theme.h"
#include "ui/Window.h"

#include <QGuiApplication>
#include <QImage>
#include <QQuickWindow>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace {

using namespace zenka;

std::string example() {
    std::ifstream file(std::filesystem::path(ZENKA_SOURCE_DIR) / "examples" / "total-two-bodies.zenka");
    return {std::istreambuf_iterator<char>(file), {}};
}

class Album {
public:
    Album(ui::Window& window, std::filesystem::path folder) : window_(window), folder_(std::move(folder)) {}

    void shoot(const std::string& name) {
        for (int i = 0; i < 20; ++i)
            QCoreApplication::processEvents();
        const QImage image = window_.quickWindow()->grabWindow();
        const auto path = folder_ / (name + ".png");
        if (!image.save(QString::fromStdString(path.string())))
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
        else
            std::printf("%s\n", path.c_str());
    }

private:
    ui::Window& window_;
    std::filesystem::path folder_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: screenshots DIR\n");
        return 2;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    std::filesystem::create_directories(argv[1]);

    test::VirtualRig rig;
    ui::Window window(rig.model, rig.machine.all, QStringLiteral("0.1.0"));
    if (!window.show())
        return 1;
    if (argc > 2)
        window.theme().setTextScale(std::atof(argv[2]));
    window.app().closeSheet();
    rig.model.script().load(example(), "total-two-bodies.zenka");
    rig.model.script().compile();
    for (const char* label : {"CAM1", "CAM2"})
        rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"), label);
    const auto body = std::make_shared<test::ScriptedCamera>("nikon");
    body->portName = "usb:001,004";
    const auto known = [&rig](const rig::CameraRoster::Camera& camera, const char* label, const char* lens) {
        rig.model.roster().add(camera);
        rig.model.roster().setLabel(*camera, label);
        rig.model.library().setLens(camera->serial(), lens);
    };
    known(std::make_shared<test::ScriptedCamera>("4004371", "Z9"), "Wide", "20 mm f/1.8");
    known(body, "CAM3", "500 mm f/5.6 PF");
    rig.model.roster().setRealCameras({});

    // A test shot that the body refuses for as long as it is tried.
    const cameras::CaptureOutcome notYet{
        .ok = false, .note = "ERROR: Could not trigger capture", .responded = true};
    body->outcomes.assign(30, notYet);
    rig.model.roster().setRealCameras({body});
    rig.model.testShots().fire(body, {.iso = 100, .aperture = 8, .shutterSec = 0.002});
    rig.run(30);
    rig.model.roster().setRealCameras({});
    rig.playFrom(rig.model.site().contactTHours().at("C2") * 3600 - 600);
    rig.run(590); // ten seconds before totality

    const auto showTab = [&window](int tab) { // of a small window
        if (auto* pane = window.quickWindow()->findChild<QObject*>(QStringLiteral("tabPane")))
            pane->setProperty("current", tab);
    };
    Album album(window, argv[1]);
    album.shoot("prompt");
    window.app().declinePrompt(); // it is eclipse day
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const std::string suffix = "-" + std::string(theme) + "-" + std::to_string(size.width());
            album.shoot("dashboard" + suffix);
            rig.model.roster().add(body);
            rig.model.reconnect().flagDisconnect(body);
            album.shoot("alarm" + suffix);
            rig.model.reconnect().clearDisconnectState();
            rig.model.roster().setRealCameras({body}); // first of all
            showTab(1);
            album.shoot("cards" + suffix);
            showTab(0);
            for (const QString& sheet : window.sheets()) {
                window.app().openSheet(sheet);
                rig.run(0.001); // what is computed aside arrives
                album.shoot(sheet.toStdString() + suffix);
                window.app().closeSheet();
            }
            rig.model.roster().setRealCameras({});
        }
    }
}
