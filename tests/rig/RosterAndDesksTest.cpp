#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;

TEST(CameraRoster, anExactLabelTakesItsTokenForItsBodyAlone) {
    rig::CameraRoster roster;
    const auto exact = roster.addPlanningCamera("Panasonic DC-GH6");
    const auto other = roster.addPlanningCamera("CAM1 clone");
    roster.setLabel(*exact, "CAM1");
    EXPECT_TRUE(roster.cameraMatches(*exact, "cam1"));
    EXPECT_FALSE(roster.cameraMatches(*other, "cam1")) << "though its model contains it";
    EXPECT_EQ(roster.camerasFor("CAM1").size(), 1U);
}

TEST(CameraRoster, withoutAnExactLabelPartsOfLabelAndModelDo) {
    rig::CameraRoster roster;
    const auto camera = roster.addPlanningCamera("Panasonic DC-GH6");
    EXPECT_EQ(roster.labelFor(*camera), "GH6");
    EXPECT_TRUE(roster.cameraMatches(*camera, "gh6"));
    EXPECT_TRUE(roster.cameraMatches(*camera, "My GH6 body"));
    EXPECT_TRUE(roster.cameraMatches(*camera, "panasonic"));
    EXPECT_FALSE(roster.cameraMatches(*camera, "CAM2"));
    roster.setLabel(*camera, "Wide");
    EXPECT_TRUE(roster.cameraMatches(*camera, "wid"));
    EXPECT_TRUE(roster.cameraMatches(*camera, "GH6 left")) << "the model is in the token";
}

TEST(SiteDesk, comingBackToAnEclipseRestoresItsSite) {
    VirtualRig rig;
    auto& site = rig.model.site();
    site.setSite({.lat = 43.36, .lon = -8.41, .elev = 20, .label = "A Coruña", .tzId = "Europe/Madrid"});
    site.selectEclipse("2027-08-02");
    EXPECT_TRUE(rig.logged("Site kept: A Coruña sees this eclipse."));
    site.setSite({.lat = 25.7, .lon = 32.6, .elev = 80, .label = "Luxor", .tzId = "Africa/Cairo"});
    site.selectEclipse("2026-08-12");
    EXPECT_EQ(site.site().label, "A Coruña");
    EXPECT_EQ(site.site().tzId, "Europe/Madrid");
    EXPECT_TRUE(rig.logged("Site restored for this eclipse: A Coruña."));
    site.selectEclipse("1999-08-11");
    EXPECT_EQ(site.eclipseId(), "2026-08-12") << "an id that is not in the catalogue changes nothing";
    EXPECT_EQ(rig.machine.settings.text(rig::settingsKeys::selectedEclipse), "2026-08-12");
}

TEST(SiteDesk, anEclipseThatTheSiteDoesNotSeeMovesItToTheGreatestDuration) {
    VirtualRig rig;
    auto& site = rig.model.site();
    site.selectEclipse("2028-07-22"); // Australia
    EXPECT_TRUE(
        rig.logged("This eclipse is not visible from Zaragoza, ES. Finding the point of greatest duration…"));
    rig.run(1);
    EXPECT_EQ(site.site().label, "Greatest duration");
    EXPECT_EQ(site.site().elev, 0);
    EXPECT_TRUE(rig.logged("Site set to greatest duration (not visible from your previous site): -1"));
    EXPECT_TRUE(rig.logged(" — 5m09s. Set your real location before arming."));
    EXPECT_NEAR(site.circ()->totalitySeconds, 310, 1); // 5m10s in published tables
}

TEST(SiteDesk, aResultForAnEclipseThatIsNoLongerSelectedIsDropped) {
    VirtualRig rig;
    auto& site = rig.model.site();
    site.selectEclipse("2028-07-22");
    site.selectEclipse("2026-08-12");
    rig.run(1);
    EXPECT_EQ(site.site().label, "Zaragoza, ES");
}

TEST(SiteDesk, aDamagedRememberedSiteCostsNothingElse) {
    VirtualRig rig;
    rig.machine.time.setWall({1767225600}); // no eclipse's day
    rig.machine.settings.setText(rig::settingsKeys::selectedEclipse, "2027-08-02");
    rig.machine.settings.setText(std::string(rig::settingsKeys::sitePrefix) + "2027-08-02",
                                 "{\"lat\": \"x\"");
    rig.model.bootstrap();
    EXPECT_EQ(rig.model.site().eclipseId(), "2027-08-02");
    EXPECT_EQ(rig.model.site().site().label, "Zaragoza, ES");
    EXPECT_TRUE(rig.logged("⚠️ The site remembered for this eclipse could not be read."));

    VirtualRig nowhere;
    nowhere.machine.settings.setText(
        std::string(rig::settingsKeys::sitePrefix) + "2026-08-12",
        R"({"lat": 900, "lon": 1, "elev": 0, "label": "Nowhere", "tz": "UTC", "confirmed": true})");
    nowhere.model.bootstrap();
    EXPECT_EQ(nowhere.model.site().site().label, "Zaragoza, ES");
    EXPECT_FALSE(nowhere.model.site().locationConfirmed().get());
}

TEST(ScriptDesk, startsWithTheBestScriptThereIs) {
    VirtualRig rig;
    auto& settings = rig.machine.settings;
    auto& script = rig.model.script();
    settings.remove(rig::settingsKeys::scriptText);
    rig.files.contents["/shots/a day.zenka"] = rig.frameAt(1);
    rig.files.contents["/shots/default.zenka"] = rig.frameAt(2);

    script.restore();
    EXPECT_TRUE(script.scriptText().get().starts_with("# New Zenka script.\n"));
    EXPECT_TRUE(script.showWelcome().get());

    settings.setText(rig::settingsKeys::recentScripts, R"(["/shots/a day.zenka", "/shots/gone.zenka"])");
    script.restore();
    EXPECT_EQ(script.currentScriptName().get(), "a day.zenka");

    settings.setText(rig::settingsKeys::scriptText, "# mine");
    script.restore();
    EXPECT_EQ(script.scriptText().get(), "# mine");

    settings.setText(rig::settingsKeys::defaultScriptPath, "/shots/default.zenka");
    script.restore();
    EXPECT_EQ(script.currentScriptName().get(), "default.zenka");
    settings.setText(rig::settingsKeys::defaultScriptPath, "/shots/gone.zenka");
    script.restore();
    EXPECT_EQ(script.scriptText().get(), "# mine") << "a default that cannot be read is passed over";
}

TEST(ScriptDesk, compilesOnceTypingHasPausedAndKeepsTheText) {
    VirtualRig rig;
    auto& script = rig.model.script();
    int compiles = 0;
    script.compiled().connect([&] { ++compiles; });
    script.setScriptText(rig.frameAt(1));
    rig.run(0.3);
    script.setScriptText(rig.frameAt(1) + rig.frameAt(2, "CAM2"));
    rig.run(0.3);
    EXPECT_EQ(compiles, 0);
    rig.run(0.2);
    EXPECT_EQ(compiles, 1);
    EXPECT_EQ(script.captures().size(), 2U);
    EXPECT_EQ(script.visibleCameras(), (std::set<std::string>{"CAM1", "CAM2"}));
    EXPECT_EQ(rig.machine.settings.text(rig::settingsKeys::scriptText), script.scriptText().get());
}

TEST(ScriptDesk, whatACompileMadeOfAnOlderTextIsNotTaken) {
    VirtualRig rig;
    auto& script = rig.model.script();
    rig.load("");
    int compiles = 0;
    script.compiled().connect([&] { ++compiles; });
    script.setScriptText(rig.frameAt(1));
    rig.machine.loop.after(base::Seconds{0.4}, [&] { script.setScriptText("# other"); }); // as it begins
    rig.run(0.5);
    EXPECT_EQ(compiles, 0);
    EXPECT_TRUE(script.captures().empty());
    rig.run(0.5);
    EXPECT_EQ(compiles, 1);

    script.setScriptText(rig.frameAt(1));
    rig.machine.loop.after(base::Seconds{0.4}, [&] { rig.model.site().selectEclipse("2027-08-02"); });
    rig.run(0.5);
    const auto fresh = rig.model.site().contactTHours().at("MAX") * 3600;
    ASSERT_EQ(script.captures().size(), 1U);
    EXPECT_LT(std::abs(script.captures()[0].offsetSec - fresh), 7200) << "for the eclipse that is selected";
}

TEST(RigLog, keepsTheNewest200Lines) {
    VirtualRig rig;
    for (int i = 0; i < 250; ++i)
        rig.model.log().pushLog(std::to_string(i));
    EXPECT_EQ(rig.model.log().lines().size(), 200U);
    EXPECT_EQ(rig.model.log().lines().front(), "249");
    EXPECT_EQ(rig.model.log().lines().back(), "50");
}
