#include "DrivenWindow.h"
#include "rig/shared/SettingsKeys.h"
#include "ui/kit/AppView.h"

#include <gtest/gtest.h>

using namespace zenka;
namespace keys = rig::settingsKeys;

TEST(WindowFaults, aDamagedHomeCostsASentenceEachAndTheWindowWorks) {
    test::VirtualRig rig;
    const auto home = rig.folders.applicationSupport();
    rig.files.contents[home / "sites.json"] = "[{\"id\": \"1\", \"name\": \"My hill\"";
    rig.files.contents[home / "run-state.json"] = std::string("\0\0\0\0", 4);
    auto& settings = rig.machine.settings;
    settings.setText(std::string(keys::sitePrefix) + "2026-08-12", "{\"lat\": \"north\"}");
    settings.setText(keys::selectedEclipse, "1999-99-99");
    settings.setText(keys::recentScripts, "[1, {");
    settings.setText(keys::simClock, "2026-08-12|soon");
    settings.setText(keys::defaultScriptPath, "/gone/default.zenka");
    settings.setText(keys::scriptText, "# mine, still here\n");
    settings.setText("zenka.theme", "Pink");
    settings.setNumber("zenka.textScale", 1e9);
    test::DrivenWindow window(rig);
    window.open();
    window.dismissGreetings();
    rig.run(1);
    for (const char* part :
         {"The saved sites could not be read", "The record of the last run could not be read",
          "The site remembered for this eclipse could not be read", "an eclipse that is not in the catalogue",
          "The script for each start could not be read: /gone/default.zenka"}) {
        EXPECT_EQ(rig.countLines(part), 1) << part;
        window.click(window.named("logFilter"));
        window.key(Qt::Key_A, Qt::ControlModifier);
        window.type(QString::fromLatin1(part));
        EXPECT_TRUE(window.says(QString::fromLatin1(part))) << part;
    }
    EXPECT_EQ(rig.model.script().scriptText().get(), "# mine, still here\n");
    EXPECT_TRUE(rig.files.contents.contains((home / "sites.json.damaged")));
    window.click(window.named("play"));
    EXPECT_TRUE(rig.model.transport().playing().get());
    EXPECT_LT(window.named("play")->height(), 100) << "text of a sane size";
}

TEST(WindowFaults, aTypedFaultIsToldBesideItsFieldAndWhatWasTypedStays) {
    test::VirtualRig rig;
    test::DrivenWindow window(rig);
    window.open();
    window.dismissGreetings();
    const rig::Site before = rig.model.site().site();
    window.key(Qt::Key_L, Qt::ControlModifier);
    const auto field = [&](const char* name) {
        return window.find([&](const QQuickItem& item) {
            return item.inherits("QQuickTextField") && test::nameOf(&item) == QLatin1String(name);
        });
    };
    const struct {
        const char *name, *typed, *told;
    } cases[] = {
        {"Latitude", "91", "A latitude lies between -90 and 90 degrees."},
        {"Longitude", "-180.5", "A longitude lies between -180 and 180 degrees."},
        {"Elevation, m", "99999", "An elevation lies between -500 and 20000 m."},
        {"Time zone", "Europe/Nowhere", "There is no time zone of this name."},
    };
    for (const auto& [name, typed, told] : cases) {
        window.click(field(name));
        window.key(Qt::Key_A, Qt::ControlModifier);
        window.type(QString::fromLatin1(typed));
        EXPECT_FALSE(window.says(QString::fromLatin1(told))) << name << ": not while it is being typed";
        window.key(Qt::Key_Tab);
        const QQuickItem* fault = window.find([&](const QQuickItem& item) {
            return item.inherits("QQuickText") &&
                   item.property("text").toString().contains(QString::fromLatin1(told));
        });
        ASSERT_NE(fault, nullptr) << name;
        const double apart = window.placeOf(fault).top() - window.placeOf(field(name)).bottom();
        EXPECT_TRUE(0 <= apart && apart < 10) << name << ": " << apart << " pixels below its field";
    }
    window.click(window.named("useSite"));
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Location"));
    EXPECT_EQ(rig.model.site().site(), before);
    window.key(Qt::Key_Escape);
    window.key(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(field("Time zone")->property("text").toString(), QStringLiteral("Europe/Nowhere"));
    EXPECT_EQ(field("Latitude")->property("text").toString(), QStringLiteral("91"));
}
