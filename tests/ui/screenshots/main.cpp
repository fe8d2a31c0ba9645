// Renders the window and every sheet in the three themes at full and minimum size into a folder.
// Usage: screenshots DIR [TEXT-SCALE [SHEET]]: all sheets, or one.

#include "exposure/ExposureScales.h"
#include "services/GlanceDesk.h"
#include "services/ServiceAddress.h"
#include "services/ServiceDesk.h"
#include "support/ImageFiles.h"
#include "support/NmeaSentences.h"
#include "support/TempFolder.h"
#include "support/TimedCamera.h"
#include "support/ToldNames.h"
#include "support/ToldPages.h"
#include "support/VirtualRig.h"
#include "ui/AppView.h"
#include "ui/Commands.h"
#include "ui/Theme.h"
#include "ui/Window.h"

#include <QGuiApplication>
#include <QImage>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QUrl>
#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <tuple>

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

/// The profilers at their work and when they are done, and what is said of drops, in every theme and size.
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
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const std::string suffix = "-" + std::string(theme) + "-" + std::to_string(size.width());
            body->shots.clear();
            window.app().openSheet(QStringLiteral("GapProfiler"));
            profiler.setGapProfileMode(rig::GapProfileMode::quickFloor);
            profiler.runGapProfile(body->id());
            rig.run(11);
            album.shoot("GapProfiler-ladder" + suffix);
            window.app().closeSheet();
            album.shoot("GapProfiler-away" + suffix);
            window.app().openSheet(QStringLiteral("GapProfiler"));
            finish();
            album.shoot("GapProfiler-verdict" + suffix);
            body->shots.clear();
            profiler.setGapProfileMode(rig::GapProfileMode::sustainedBurst);
            profiler.runGapProfile(body->id());
            finish();
            album.shoot("GapProfiler-burst" + suffix);
            window.app().closeSheet();
            window.app().openSheet(QStringLiteral("CameraProfiler"));
            rig.model.cameraProfiler().runCameraProfile(body->id());
            rig.run(1);
            album.shoot("CameraProfiler-read" + suffix);
            window.app().closeSheet();
            rig.model.cadence().explainDrops({{.label = "CAM4", .ok = 80, .dropped = 40}});
            album.shoot("DropExplainer-drops" + suffix);
            window.app().closeSheet();
        }
    }
}

/// What the analyzer asks, does and finds, in every theme and size.
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
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("Analyzer-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
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
        }
    }
}

/// The list before arming with much to mend, chips and their details, the bar of warnings and what is spoken,
/// in every theme and size.
/// The question about commands that came with a file.
void shootConsent(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.files.contents["/home/got.zenka"] =
        "COMMAND,C2,-,00:30, , , , , , , , ,Dim;brightnessctl set 5%\n"
        "COMMAND,C3,+,00:30, , , , , , , , ,Bright;brightnessctl set 100% && paplay "
        "/usr/share/sounds/freedesktop/stereo/complete.oga\n";
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const std::string suffix = std::string("-") + theme + "-" + std::to_string(size.width());
            window.app().openSheet(QStringLiteral("Script"));
            rig.model.script().openFile("/home/got.zenka", [](const std::string&) {});
            rig.run(0.1);
            album.shoot("Consent-question" + suffix);
            window.app().closeSheet();
            album.shoot("Consent-script" + suffix);
            window.app().closeSheet();
        }
    }
}

void shootPreflight(test::VirtualRig& rig, ui::Window& window, Album& album) {
    const auto body = std::make_shared<test::ScriptedCamera>("z8");
    body->status = {.isManual = false, .modeName = "A", .batteryPercent = 9};
    rig.model.roster().add(body);
    rig.model.roster().setLabel(*body, "CAM1");
    rig.model.modes().recheckModes();
    test::nmea::Sky sky;
    rig.serialPorts.stream("/dev/ttyACM0", [&sky](base::Instant wall) {
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
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("Preflight-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
            rig.model.announcer().speak("Two minutes to totality. Filters off.");
            shoot("chips");
            for (const char* chip : {"clockChip", "gpsChip", "healthChip"}) {
                QObject* more = window.quickWindow()->findChild<QObject*>(QString::fromLatin1(chip) +
                                                                          QStringLiteral("More"));
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
        }
    }
}

/// What is exported, and a rig that was read: whole, with damage, and no rig at all, in every theme and size.
/// Beside the pictures lies the checklist of the rig.
void shootRigTransfer(test::VirtualRig& rig, ui::Window& window, Album& album,
                      const std::filesystem::path& folder) {
    rig::RigContents carried = rig.model.transfer().gather();
    carried.site->eclipseId = "2027-08-02";
    carried.site->record.site = {
        .lat = 25.7, .lon = 32.6, .elev = 80, .label = "Luxor, EG", .tzId = "Africa/Cairo"};
    carried.script->name = "luxor-two-bodies.zenka";
    carried.script->text = example();
    carried.floors["Z9"] = {.floorSec = 0.35};
    carried.rules["token:CAM1"] = {};
    const std::string whole = rig::toJson(carried);
    auto damaged = nlohmann::json::parse(whole);
    damaged["savedSites"][0]["lat"] = 100;
    damaged["horizons"] = "flat";
    rig.files.contents["/home/field.zenka-rig"] = whole;
    rig.files.contents["/home/damaged.zenka-rig"] = damaged.dump();
    rig.files.contents["/home/picture.zenka-rig"] = "JFIF";
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("RigTransfer-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
            window.commands().trigger(QStringLiteral("exportRig"));
            shoot("export");
            window.app().closeSheet();
            window.commands().trigger(QStringLiteral("importRig"));
            shoot("choose");
            auto* view = qvariant_cast<QObject*>(QQmlEngine::contextForObject(window.quickWindow())
                                                     ->contextProperty(QStringLiteral("transfer")));
            for (const char* file : {"field", "damaged", "picture"}) {
                QMetaObject::invokeMethod(
                    view, "read",
                    Q_ARG(QUrl, QUrl::fromLocalFile(
                                    QStringLiteral("/home/%1.zenka-rig").arg(QLatin1String(file)))));
                rig.run(0.1);
                shoot(file);
            }
            window.app().closeSheet();
        }
    }
    window.setOpenUrl([](const QUrl&) {});
    rig.load(example());
    const rig::Site& site = rig.model.site().site();
    rig.model.horizons().merge({{.lat = site.lat, .lon = site.lon, .result = {}}});
    window.commands().trigger(QStringLiteral("printChecklist"));
    rig.run(0.1);
    std::ofstream(folder / "checklist.pdf", std::ios::binary) << rig.files.only(".pdf");
}

QQuickItem* itemNamed(QQuickItem* item, const char* name) {
    if (item->objectName() == QLatin1String(name))
        return item;
    for (QQuickItem* child : item->childItems()) {
        if (QQuickItem* found = itemNamed(child, name))
            return found;
    }
    return nullptr;
}

/// The terrain in the location sheet: not looked up, on its way, and in front of the Sun.
void shootHorizon(test::VirtualRig& rig, ui::Window& window, Album& album) {
    const rig::Site& site = rig.model.site().site();
    rig::KnownHorizon hills{.lat = site.lat, .lon = site.lon, .result = {}};
    for (std::size_t az = 0; az < hills.result.samples.size(); ++az) {
        const auto at = static_cast<double>(az);
        hills.result.samples[az] =
            std::max(0.0, 7 + 2 * std::sin(at / 17) + std::sin(at / 5) + 0.5 * std::sin(at / 1.7));
    }
    hills.result.observerHeightM = 204;
    rig.machine.settings.setText("zenka.terrainToken", "pk");
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("Location-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
            const auto turnToHorizon = [&] {
                for (int i = 0; i < 20; ++i)
                    QCoreApplication::processEvents();
                QMetaObject::invokeMethod(itemNamed(window.quickWindow()->contentItem(), "showHorizon"),
                                          "clicked");
            };
            rig.files.contents.erase(rig.folders.applicationSupport() / "horizons.json");
            rig.model.horizons().restore();
            window.app().openSheet(QStringLiteral("Location"));
            rig.run(0.1);
            turnToHorizon();
            shoot("flat");
            rig.model.horizons().find({.lat = site.lat, .lon = site.lon}, false);
            rig.run(0.1);
            shoot("loading");
            rig.model.horizons().cancel();
            rig.files.contents[rig.folders.applicationSupport() / "horizons.json"] = rig::toJson({hills});
            rig.model.horizons().restore();
            window.app().closeSheet();
            window.app().openSheet(QStringLiteral("Location"));
            rig.run(0.1);
            turnToHorizon();
            shoot("hidden");
            rig.machine.settings.remove("zenka.terrainToken");
            rig.model.horizons().find({.lat = site.lat, .lon = site.lon}, false);
            rig.run(0.1);
            shoot("noToken");
            rig.machine.settings.setText("zenka.terrainToken", "pk");
            window.app().closeSheet();
        }
    }
}

/// The framing simulator with a body of the script, one with figures of its own that the Sun leaves, and a
/// plan, in every theme and size.
void shootFraming(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.load(example());
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("Framing-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
            window.app().openSheet(QStringLiteral("Framing"));
            for (int i = 0; i < 20; ++i)
                QCoreApplication::processEvents();
            const QQuickItem* picture = itemNamed(window.quickWindow()->contentItem(), "framingPicture");
            auto* framing = picture->property("view").value<QObject*>();
            const auto type = [framing](const char* field, const char* text) {
                QMetaObject::invokeMethod(framing, "type", Q_ARG(QString, QString::fromLatin1(field)),
                                          Q_ARG(QString, QString::fromLatin1(text)));
            };
            const auto names = framing->property("bodies").toStringList();
            framing->setProperty("body", names.indexOf(QRegularExpression(QStringLiteral("^CAM1,.*"))));
            type("focal", "800");
            shoot("bursts");
            framing->setProperty("sensor", 1);
            type("focal", "2000");
            type("rotation", "60");
            type("ownWidth", "abc");
            QMetaObject::invokeMethod(framing, "check");
            shoot("leaving");
            type("ownWidth", "36");
            type("focal", "800");
            type("rotation", "0");
            framing->setProperty("sensor", 0);
            framing->setProperty("body", static_cast<int>(names.size()) - 1);
            framing->setProperty("moment", 0);
            shoot("plan");
            framing->setProperty("moment", 2);
            window.app().closeSheet();
        }
    }
}

/// A chat with the assistant: an answer with a script, one with faults and a failure, and the question about
/// commands, in every theme and size.
void shootAssistant(test::VirtualRig& rig, ui::Window& window, Album& album) {
    rig.machine.settings.setText(services::serviceHostKey, "https://zenka.example");
    const auto find = [&](const char* name) {
        QObject* found = nullptr; // not in one of the sheets of before, which are still about
        for (auto* item : window.quickWindow()->findChildren<QQuickItem*>(QString::fromLatin1(name)))
            found = item->window() ? item : found;
        return found;
    };
    const auto press = [&](const char* name) {
        if (auto* button = find(name))
            QMetaObject::invokeMethod(button, "clicked");
        rig.run(0.01);
    };
    const auto tick = [&](const char* name, bool on) {
        if (auto* box = find(name)) {
            box->setProperty("checked", on);
            QMetaObject::invokeMethod(box, "toggled");
        }
    };
    const auto say = [&](const char* words) {
        if (auto* field = find("assistantInput"))
            field->setProperty("text", QString::fromUtf8(words));
        press("assistantSend");
    };
    const auto reply = [&](const std::string& text) {
        rig.http.answer(200, nlohmann::json{{"reply", text}}.dump());
        rig.run(0.01);
    };
    rig.load(example());
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    const std::string script = "# A tight bracket\n" + rig.frameAt(c2 + 10) + rig.frameAt(c2 + 10.2);
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const auto shoot = [&](const char* page) {
                album.shoot("Assistant-" + std::string(page) + "-" + theme + "-" +
                            std::to_string(size.width()));
            };
            window.app().openSheet(QStringLiteral("Assistant"));
            rig.run(0.01);
            shoot("beginning");
            say("Two frames at the second contact, please.");
            shoot("waiting");
            reply("Which body is it for, and with which lens? I would leave a second between the frames: the "
                  "bodies of your rig hold that.");
            say("CAM1, 500 mm. As tight as you can.");
            reply("Here it is.\n\n```zenka\n" + script +
                  "COMMAND,C2,-,30,,,,,,,,,Dim;brightnessctl set 5%\n```\n"
                  "Rehearse it first.");
            shoot("script");
            press("assistantLoad");
            shoot("commands");
            press("assistantDecline");
            tick("assistantReadable", true);
            say("Mend it.");
            rig.http.answer(503, "");
            rig.run(0.01);
            shoot("failure");
            tick("assistantReadable", false);
            press("assistantNew");
            window.app().closeSheet();
        }
    }
}

/// What goes to a service, with one set, in every theme and size.
void shootServices(test::VirtualRig& rig, ui::Window& window, services::ServiceDesk& services, Album& album) {
    services.allow(false);
    services.setAddress("https://reports.zenka.example");
    const auto body = std::make_shared<test::ScriptedCamera>("profiled");
    body->choices = {.shutter = {"1/500", "1/250"}, .iso = {"100", "200"}, .aperture = {"8"}};
    rig.model.roster().add(body);
    rig.model.cameraProfiler().runCameraProfile(body->id());
    rig.run(1);
    const test::TempFolder card;
    test::writeFile(card.path() / "DCIM" / "100" / "1.NEF", "image");
    rig.images.fields["1.NEF"] = {.dateTimeOriginal = "2026:08:12 20:00:00", .model = "NIKON Z 8"};
    window.setOpenUrl([](const QUrl&) {});
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            const std::string suffix = "-" + std::string(theme) + "-" + std::to_string(size.width());
            album.shoot("Service-trust" + suffix);
            rig.model.analyzer().analyzeFolder(card.path());
            rig.run(1);
            rig.model.analyzer().sendReport("new cable");
            rig.http.fail("the time ran out");
            album.shoot("Service-verdict" + suffix);
            window.app().closeSheet();
            for (const char* sheet : {"UsageReports", "Feedback", "Settings", "CameraProfiler"}) {
                window.app().openSheet(QString::fromLatin1(sheet));
                album.shoot("Service-" + std::string(sheet) + suffix);
                window.app().closeSheet();
            }
        }
    }
}

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
                if (argc > 3 && sheet != QLatin1String(argv[3]))
                    continue;
                window.app().openSheet(sheet);
                rig.run(0.001); // what is computed aside arrives
                album.shoot(sheet.toStdString() + suffix);
                window.app().closeSheet();
            }
            rig.model.roster().setRealCameras({});
        }
    }
    glance.setReach(services::GlanceDesk::Reach::localNetwork);
    for (const auto& size : {QSize(1380, 860), QSize(960, 440)}) {
        if (argc > 3 && std::string(argv[3]) != "Glance")
            break;
        window.quickWindow()->resize(size);
        for (const char* theme : {"Sunlight", "Dark", "Night"}) {
            window.theme().choose(QString::fromLatin1(theme));
            window.app().openSheet(QStringLiteral("Glance"));
            album.shoot("Glance-on-" + std::string(theme) + "-" + std::to_string(size.width()));
            window.app().closeSheet();
        }
    }
    rig.model.transport().togglePlay(); // in a run nothing is measured
    const double now = rig.model.transport().clock();
    rig.load(rig.frameAt(now + 20, "CAM4") + rig.frameAt(now + 20.3, "CAM4"));
    const bool all = argc <= 3;
    const auto wanted = [&](const char* sheet) { return all || sheet == std::string(argv[3]); };
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
        shootRigTransfer(rig, window, album, argv[1]);
    if (wanted("Preflight"))
        shootPreflight(rig, window, album);
    if (wanted("Service"))
        shootServices(rig, window, services, album);
}
