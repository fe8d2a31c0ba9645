#include "DrivenWindow.h"
#include "support/NmeaSentences.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/run/PreflightView.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// What the window says before a run is armed, and of clock, computer and voice at any time.
struct WindowPreflight : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    std::shared_ptr<test::ScriptedCamera> body;

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        rig.model.site().confirmLocation(true);
        body = rig.addBody("CAM1");
        body->status = {.isManual = true, .modeName = "M", .batteryPercent = 80};
        body->autoIso = {.isAuto = false, .detail = std::nullopt};
        rig.model.modes().recheckModes();
        rig.load(rig.frameAt(rig.model.site().contactTHours().at("MAX") * 3600));
        pass();
    }
    QString sheet() const { return window->app().sheet(); }
    void pass(double seconds = 0.1) {
        rig.run(seconds);
        window.settle();
    }
    void arm() {
        window->commands().trigger(QStringLiteral("armReal"));
        pass();
    }
    void machine(int percent) {
        rig.sensors.now.onACPower = false;
        rig.sensors.now.batteryPercent = percent;
        pass(10);
    }
    /// Opens a chip's details by key and says whether they hold the words.
    bool chipSays(const char* chip, const QString& words) {
        window.named(chip)->forceActiveFocus();
        window.key(Qt::Key_Return);
        window.settle();
        const bool says = window.says(words);
        window.key(Qt::Key_Escape);
        window.settle();
        EXPECT_FALSE(window.says(words)) << "Escape closes it";
        EXPECT_EQ(window.focused(), window.named(chip)) << "the keyboard is where it was";
        return says;
    }
};

} // namespace

TEST_F(WindowPreflight, nothingWrongLeadsToTheButtonThatIsHeld) {
    arm();
    EXPECT_EQ(sheet(), QStringLiteral("Arm"));
    EXPECT_FALSE(rig.model.transport().live());
}

TEST_F(WindowPreflight, whatFailsIsMendedWhileTheListIsOpenOrOverruledByAWord) {
    body->status.isManual = false;
    body->status.modeName = "A";
    rig.model.modes().recheckModes();
    arm();
    ASSERT_EQ(sheet(), QStringLiteral("Preflight"));
    EXPECT_TRUE(window.says(QStringLiteral("■ 1 to mend")));
    EXPECT_TRUE(window.says(QStringLiteral("Not in Manual: CAM1. Set the dial to M")));
    EXPECT_FALSE(window.named("preflightGoOn")->isEnabled());
    window.named("armWord")->forceActiveFocus();
    window.type(QStringLiteral("ar"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(sheet(), QStringLiteral("Preflight"));
    window.type(QStringLiteral("m"));
    EXPECT_TRUE(window.named("preflightGoOn")->isEnabled());
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QString());
    EXPECT_FALSE(rig.model.preflight().showPreflight().get());

    arm();
    body->status.isManual = true;
    window.key(Qt::Key_F5);
    pass();
    EXPECT_TRUE(window.says(QStringLiteral("All live cameras in Manual.")));
    EXPECT_EQ(window.named("armWord"), nullptr) << "nothing fails any more";
    window.click(window.named("preflightGoOn"));
    EXPECT_EQ(sheet(), QStringLiteral("Arm"));
}

TEST_F(WindowPreflight, aPageReadOverTheListComesBackToItAndTheDefaultSiteLeadsToLocation) {
    rig.model.site().confirmLocation(false);
    arm();
    ASSERT_EQ(sheet(), QStringLiteral("Preflight"));
    window.key(Qt::Key_F1);
    EXPECT_EQ(sheet(), QStringLiteral("Keys"));
    window.key(Qt::Key_Escape);
    ASSERT_EQ(sheet(), QStringLiteral("Preflight"));
    EXPECT_TRUE(rig.model.preflight().mayProceed());
    window.named("armWord")->forceActiveFocus();
    window.type(QStringLiteral("ARM"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(sheet(), QStringLiteral("Location"));
    EXPECT_FALSE(rig.model.transport().live());
}

TEST_F(WindowPreflight, theChipsTellClockReceiverAndComputerByKey) {
    ASSERT_TRUE(rig.http.waiting.empty());
    EXPECT_TRUE(chipSays("clockChip", QStringLiteral("Time source: system clock only")));
    EXPECT_EQ(rig.http.waiting.size(), 1U) << "to open it is to check again";
    rig.http.fail("the time ran out");
    EXPECT_EQ(window.named("gpsChip"), nullptr);
    test::nmea::Sky sky{.hasFix = false};
    rig.serialPorts.stream(
        "/dev/ttyACM0", [&](base::Instant wall) { return test::nmea::second(wall - base::Seconds{5}, sky); });
    pass(8);
    EXPECT_TRUE(chipSays("gpsChip", QStringLiteral("Puck is streaming")));
    sky.hasFix = true;
    pass(5);
    EXPECT_TRUE(chipSays(
        "clockChip", QStringLiteral("arming corrects to GPS automatically. This is the most trustworthy")));
    EXPECT_TRUE(
        window.named("clockChip")->property("text").toString().startsWith(QStringLiteral("◷ GPS +5.")));
    window.click(window.named("gpsChip"));
    window.settle();
    window.click(window.named("gpsChipAction"));
    EXPECT_NEAR(rig.model.site().site().lat, sky.lat, 1e-5);
    EXPECT_TRUE(rig.logged("Location set from GPS: 42.50000, -3.70000, 850 m"));
    window.key(Qt::Key_Escape);
    machine(38);
    EXPECT_EQ(window.named("healthChip")->property("text").toString(), QStringLiteral("▲ battery 38 %"));
    EXPECT_TRUE(chipSays("healthChip", QStringLiteral("battery, 38 %")));
}

TEST_F(WindowPreflight, warningsStandInABarUntilTheyAreSeenOrOver) {
    machine(9);
    ASSERT_NE(window.named("warningBar"), nullptr);
    EXPECT_TRUE(window.says(QStringLiteral("■ The computer's battery is about to run out")));
    rig.audio.now.muted = true;
    pass(46);
    EXPECT_TRUE(window.says(QStringLiteral("(+1 more)")));
    window.click(window.named("warningSeen"));
    EXPECT_TRUE(window.says(QStringLiteral("▲ The sound is muted")));
    rig.audio.now.muted = false;
    pass(2);
    EXPECT_EQ(window.named("warningBar"), nullptr);
    machine(8);
    EXPECT_EQ(window.named("warningBar"), nullptr) << "it has been seen";
    rig.sensors.now.onACPower = true;
    pass(10);
    machine(10);
    EXPECT_NE(window.named("warningBar"), nullptr) << "it comes anew";
}

TEST_F(WindowPreflight, whatIsSpokenCanBeReadAlsoOverASheet) {
    rig.speech.fault = "no speech service answers";
    window->app().openSheet(QStringLiteral("Settings"));
    window.settle();
    window.click(window.named("testVoice"));
    window.settle();
    ASSERT_NE(window.named("caption"), nullptr);
    EXPECT_TRUE(window.says(QStringLiteral("♪ Remove filters")));
    pass(5);
    EXPECT_EQ(window.named("caption"), nullptr);
}
