#include "DrivenWindow.h"
#include "rig/shared/SettingsKeys.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The terrain in the location sheet, by keyboard alone.
struct WindowHorizon : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        rig.machine.settings.setText(rig::settingsKeys::terrainToken, "pk");
        window->app().openSheet(QStringLiteral("Location"));
        window.settle();
        press("showHorizon");
    }
    void press(const char* button) {
        window.named(button)->forceActiveFocus();
        window.key(Qt::Key_Return);
        pass();
    }
    void pass() {
        rig.run(0.1);
        window.settle();
    }
    void serve(double here, double around) {
        bool first = true;
        while (!rig.http.waiting.empty()) {
            rig.http.answer(200, test::ToldPixels::ground(first ? here : around));
            first = false;
            pass();
        }
    }
    QString said(const char* label) {
        const QQuickItem* item = window.named(label);
        return item && item->isVisible() ? item->property("text").toString() : QString();
    }
};

} // namespace

TEST_F(WindowHorizon, theTerrainIsLookedUpCountedAndHeldAgainstTheSun) {
    EXPECT_TRUE(said("horizonVerdict").contains("not been looked up yet"));
    EXPECT_FALSE(window.named("map")) << "the map has made room";
    press("findHorizon");
    EXPECT_TRUE(said("horizonRemark").startsWith("Loading ")) << said("horizonRemark").toStdString();
    EXPECT_TRUE(said("horizonRemark").contains(" 0 of "));
    serve(240, 240);
    EXPECT_TRUE(
        said("horizonVerdict").startsWith("The Sun stands clear at every contact that is up; closest at C"))
        << said("horizonVerdict").toStdString();
    EXPECT_EQ(said("horizonRemark"), "");

    const QImage flat = window.picture();
    press("findHorizon");
    serve(240, 3240);
    EXPECT_TRUE(said("horizonVerdict").startsWith("▲ C")) << said("horizonVerdict").toStdString();
    EXPECT_TRUE(said("horizonVerdict").contains("hidden: the Sun stands at"));
    EXPECT_NE(window.picture(), flat);

    press("showHorizon");
    EXPECT_TRUE(window.named("map"));
}

TEST_F(WindowHorizon, aLookupCanBeCancelledAndSaysWhatIsWanting) {
    press("findHorizon");
    ASSERT_FALSE(rig.http.waiting.empty());
    press("findHorizon");
    EXPECT_TRUE(rig.http.waiting.empty());
    EXPECT_EQ(said("horizonRemark"), "");

    rig.machine.settings.remove(rig::settingsKeys::terrainToken);
    press("findHorizon");
    EXPECT_TRUE(said("horizonRemark").startsWith("No token for the terrain tiles is set"));
    press("openTiles");
    press("findHorizon");
    ASSERT_FALSE(rig.http.waiting.empty());
    EXPECT_NE(rig.http.waiting.front().request.url.find("/terrarium/"), std::string::npos);
}
