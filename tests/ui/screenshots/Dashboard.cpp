#include "support/VirtualRig.h"
#include "ui/Commands.h"
#include "ui/Window.h"
#include "ui/kit/AppView.h"
#include "ui/screenshots/Scenes.h"

#include <QQuickItem>
#include <QQuickWindow>

#include <memory>
#include <string>

namespace zenka::screenshots {

std::shared_ptr<test::ScriptedCamera> beginRehearsal(test::VirtualRig& rig) {
    rig.model.script().load(example(), "total-two-bodies.zenka");
    rig.model.script().compile();
    for (const char* label : {"CAM1", "CAM2"})
        rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"), label);
    auto body = std::make_shared<test::ScriptedCamera>("nikon");
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
    rig.run(590);
    return body;
}

void shootDashboard(test::VirtualRig& rig, ui::Window& window,
                    const std::shared_ptr<test::ScriptedCamera>& body, const QString& only, Album& album) {
    const auto showTab = [&window](int tab) { // of a small window
        if (auto* pane = window.quickWindow()->findChild<QObject*>(QStringLiteral("tabPane")))
            pane->setProperty("current", tab);
    };
    album.shoot("prompt");
    window.app().declinePrompt(); // it is eclipse day
    album.inEveryLook([&](const std::string& look) {
        album.shoot("dashboard" + look);
        rig.model.roster().add(body);
        rig.model.reconnect().flagDisconnect(body);
        album.shoot("alarm" + look);
        rig.model.reconnect().clearDisconnectState();
        rig.model.roster().setRealCameras({body}); // first of all
        showTab(1);
        album.shoot("cards" + look);
        showTab(0);
        for (const QString& sheet : window.sheets()) {
            if (!only.isEmpty() && sheet != only)
                continue;
            window.app().openSheet(sheet);
            rig.run(0.001); // what is computed aside arrives
            album.shoot(sheet.toStdString() + look);
            window.app().closeSheet();
        }
        rig.model.roster().setRealCameras({});
    });
}

void shootHelp(ui::Window& window, Album& album) {
    album.inEveryLook([&](const std::string& look) {
        window.commands().trigger(QStringLiteral("openGuide"));
        album.shoot("Help-top" + look);
        QQuickItem* page = itemNamed(window, "guideText");
        QMetaObject::invokeMethod(page, "linkActivated",
                                  Q_ARG(QString, QStringLiteral("#the-window-at-a-glance")));
        album.shoot("Help-picture" + look);
        QMetaObject::invokeMethod(page, "linkActivated",
                                  Q_ARG(QString, QStringLiteral("cameras.md#what-grabs-a-camera-on-linux")));
        album.shoot("Help-followed" + look);
        window.app().closeSheet();
    });
}

void shootGlance(ui::Window& window, services::GlanceDesk& glance, Album& album) {
    glance.setReach(services::GlanceDesk::Reach::localNetwork);
    album.inEveryLook([&](const std::string& look) {
        window.app().openSheet(QStringLiteral("Glance"));
        album.shoot("Glance-on" + look);
        window.app().closeSheet();
    });
}

} // namespace zenka::screenshots
