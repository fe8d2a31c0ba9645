#include "base/CivilTime.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"
#include "ui/screenshots/Guide.h"
#include "ui/screenshots/GuideSizes.h"
#include "ui/screenshots/Stage.h"

#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QUrl>

#include <fstream>
#include <memory>
#include <string>

namespace zenka::screenshots {

namespace {

using Body = std::shared_ptr<test::ScriptedCamera>;

/// A body that answers as one does that gphoto2 drives.
Body plugIn(test::VirtualRig& rig, const char* label, const char* model, const char* serial,
            const char* lens) {
    auto body = std::make_shared<test::ScriptedCamera>(serial, model);
    body->serialNumber = serial;
    body->portName = label == std::string("CAM1") ? "usb:001,004" : "usb:003,002";
    body->status = {.isManual = true, .modeName = "M", .batteryPercent = 86};
    body->autoIso = {.isAuto = false, .detail = {}};
    rig.model.roster().add(body);
    rig.model.roster().setLabel(*body, label);
    rig.model.library().setLens(body->serial(), lens);
    return body;
}

void write(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

void shootFraming(Stage& stage) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    window.app().openSheet(QStringLiteral("Framing"));
    Album::settle();
    auto* framing = itemNamed(window, "framingPicture")->property("view").value<QObject*>();
    const auto bodies = framing->property("bodies").toStringList();
    framing->setProperty("body", bodies.indexOf(QRegularExpression(QStringLiteral("^CAM1,.*"))));
    QMetaObject::invokeMethod(framing, "type", Q_ARG(QString, QStringLiteral("focal")),
                              Q_ARG(QString, QStringLiteral("500")));
    album.shoot("framing", "Dark", wholeSize);
    window.app().closeSheet();
}

/// The rig of this stage as a new one sees it that is to take it.
bool shootImport(Stage& stage) {
    Stage field(stage.album.folder());
    if (!field.window.show())
        return false;
    field.window.app().closeSheet();
    field.window.app().declinePrompt();
    rig::RigContents carried = stage.rig.model.transfer().gather();
    carried.appVersion = "0.1.0"; // the virtual rig has a number of its own
    field.rig.files.contents["/home/desk.zenka-rig"] = rig::toJson(carried);
    field.window.commands().trigger(QStringLiteral("importRig"));
    auto* view = qvariant_cast<QObject*>(QQmlEngine::contextForObject(field.window.quickWindow())
                                             ->contextProperty(QStringLiteral("transfer")));
    QMetaObject::invokeMethod(view, "read",
                              Q_ARG(QUrl, QUrl::fromLocalFile(QStringLiteral("/home/desk.zenka-rig"))));
    field.rig.run(0.1);
    field.album.shoot("import", "Dark", sheetSize);
    return true;
}

/// Laptop and second body are not quite as they should be.
void shootChecks(Stage& stage, test::ScriptedCamera& second) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    second.status = {.isManual = false, .modeName = "A", .batteryPercent = 18};
    rig.model.modes().recheckModes();
    rig.sensors.now.onACPower = false;
    rig.sensors.now.batteryPercent = 58;
    rig.run(10);
    rig.model.preflight().runPreflight([] {});
    rig.run(0.1);
    album.shoot("preflight", "Dark", wholeSize);
    window.app().closeSheet();
    second.status = {.isManual = true, .modeName = "M", .batteryPercent = 97};
    rig.model.modes().recheckModes();
    rig.sensors.now.onACPower = true;
    rig.run(1);
}

/// The first body's frames lie on a card.
void writeCard(test::VirtualRig& rig, const std::filesystem::path& card) {
    int number = 4210;
    for (const script::Capture& capture : rig.model.script().captures()) {
        if (capture.camera != "CAM1")
            continue;
        const std::string file = "DSC_" + std::to_string(++number) + ".NEF";
        test::writeFile(card / "DCIM" / "100NCZ_8" / file, "image");
        rig.images.fields[file] = {
            .dateTimeOriginal = base::formatTime(
                "%Y:%m:%d %H:%M:%S", rig.model.site().wallAt(capture.offsetSec), absl::UTCTimeZone()),
            .isoSpeedRatings = capture.iso,
            .fNumber = capture.aperture,
            .exposureTime = capture.shutterSec,
            .model = "NIKON Z 8"};
    }
}

void shootLiveRun(Stage& stage, test::ScriptedCamera& second) {
    auto& [rig, names, services, pages, glance, window, album] = stage;
    glance.setReach(services::GlanceDesk::Reach::localNetwork);
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    rig.model.transport().armRealEclipseTiming(true);
    const auto runTo = [&](double clock) { stage.run(clock - rig.model.transport().clock()); };
    runTo(c2 - 45);
    album.shoot("dashboard-live", "Dark", wholeSize);
    second.status = {}; // its cable is pulled
    for (int i = 0; i < 60; ++i)
        second.outcomes.push_back({.ok = false, .note = "the body has left the bus", .deviceGone = true});
    runTo(c2 + 21);
    album.shoot("alarm");
    write(album.folder() / "glance.html", pages.page);
    second.outcomes.clear();
}

} // namespace

bool shootEclipseDay(const std::filesystem::path& folder) {
    Stage stage(folder);
    auto& [rig, names, services, pages, glance, window, album] = stage;
    if (!window.show())
        return false;
    window.setOpenUrl([](const QUrl&) {});
    window.app().closeSheet();
    window.app().declinePrompt();
    rig.model.site().confirmLocation(true);
    rig.model.script().load(example(), "total-two-bodies.zenka");
    rig.model.script().compile();
    const Body first = plugIn(rig, "CAM1", "Z8", "6004371", "500 mm f/5.6");
    const Body second = plugIn(rig, "CAM2", "Z6 II", "6012258", "24 mm f/1.8");
    rig.model.modes().recheckModes();
    rig.run(1);
    window.quickWindow()->resize(wholeSize);
    Album::settle();
    album.shoot("cameras", *itemNamed(window, "cameraList")->parentItem()->parentItem());
    shootFraming(stage);
    if (!shootImport(stage))
        return false;
    window.commands().trigger(QStringLiteral("printChecklist"));
    rig.run(0.1);
    write(folder / "checklist.pdf", rig.files.only(".pdf"));
    shootChecks(stage, *second);
    shootLiveRun(stage, *second);

    // All is over, and the first body's card comes into the reader.
    stage.run(2 * 3600);
    rig.model.transport().useSimulatedTiming();
    const test::TempFolder disk;
    const auto card = disk.path() / "NIKON Z 8";
    writeCard(rig, card);
    rig.volumes.plug(card);
    window.commands().trigger(QStringLiteral("analyzer"));
    rig.run(0.1);
    rig.model.analyzer().choose(0);
    rig.run(1);
    album.shoot("analyzer", "Dark", sheetSize);
    write(folder / "report.html", rig.files.only(".html"));
    return true;
}

} // namespace zenka::screenshots
