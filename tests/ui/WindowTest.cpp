#include "ui/Window.h"

#include "DrivenWindow.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QGuiApplication>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The window by key.
struct Window : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }

    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        window.key(code, modifiers);
    }
    void type(const QString& text) const { window.type(text); }
    rig::Transport& transport() { return rig.model.transport(); }
};

} // namespace

TEST_F(Window, playsAndPausesByKey) {
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(transport().playing().get());
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_FALSE(transport().playing().get());
}

TEST_F(Window, jumpsToATypedTimeAndSaysWhatIsWrongWithAnother) {
    rig.load(""); // without frames the timeline spans the whole eclipse
    key(Qt::Key_0, Qt::ControlModifier);
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Jump"));
    type(QStringLiteral("25:99"));
    key(Qt::Key_Return);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Jump")) << "it stays open with what was typed";
    key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("20:05:30"));
    key(Qt::Key_Return);
    EXPECT_TRUE(window->app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().fmtClock(transport().clock()), "20:05:30");
    key(Qt::Key_0, Qt::ControlModifier);
    key(Qt::Key_Escape);
    EXPECT_TRUE(window->app().sheet().isEmpty());
}

TEST_F(Window, aTimeThatIsTypedWhileTheClockRunsStays) {
    rig.load("");
    transport().togglePlay();
    key(Qt::Key_0, Qt::ControlModifier);
    type(QStringLiteral("20:05"));
    rig.run(3);
    window.settle();
    type(QStringLiteral(":30"));
    EXPECT_EQ(window.named("jumpField")->property("text").toString(), QStringLiteral("20:05:30"));
}

TEST_F(Window, armingTakesAKeyThatIsHeld) {
    rig.model.site().confirmLocation(true);
    window->commands().trigger(QStringLiteral("armReal"));
    rig.run(0.1);
    window.settle();
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Preflight")) << "no body is connected";
    rig.model.preflight().proceedPreflight();
    window.settle();
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Arm"));
    QQuickItem* hold = window.named("armHold");
    ASSERT_NE(hold, nullptr);
    hold->forceActiveFocus();
    key(Qt::Key_Space);
    QTest::qWait(100);
    EXPECT_FALSE(transport().live()) << "a short press does nothing";
    QTest::keyPress(&window.screen(), Qt::Key_Space);
    QTest::qWait(2200);
    QTest::keyRelease(&window.screen(), Qt::Key_Space);
    window.settle();
    EXPECT_TRUE(transport().live());
    EXPECT_FALSE(window->commands().isEnabled(QStringLiteral("togglePlay"))) << "a live run is not played";
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(transport().live());
    EXPECT_FALSE(transport().playing().get());
}

TEST_F(Window, everyCommandsShortcutIsItsOwn) {
    std::map<QString, QString> taken;
    for (const ui::Command& command : window->commands().all()) {
        if (command.shortcut.isEmpty())
            continue;
        EXPECT_TRUE(taken.emplace(command.shortcut, command.id).second)
            << command.id.toStdString() << " and " << taken[command.shortcut].toStdString();
        EXPECT_FALSE(QKeySequence(command.shortcut).isEmpty()) << command.shortcut.toStdString();
    }
}

TEST_F(Window, editsAScriptToAnErrorAndBackByKeyAndLosesNothing) {
    rig.load("# one\n");
    key(Qt::Key_E, Qt::ControlModifier);
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Script"));
    key(Qt::Key_End, Qt::ControlModifier);
    type(QStringLiteral("TAKEPIK,C2"));
    rig.run(0.5);
    window.settle();
    ASSERT_EQ(rig.model.script().diagnostics().size(), 1U);
    EXPECT_EQ(rig.model.script().diagnostics()[0].message, "unknown command 'TAKEPIK'");
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Backspace);
    type(QStringLiteral("C,C2,+,00:01,CAM1"));
    key(Qt::Key_Escape); // before the pause that compiles
    EXPECT_TRUE(window->app().sheet().isEmpty());
    EXPECT_EQ(rig.machine.settings.text("eclipse.scriptText"), "# one\nTAKEPIC,C2,+,00:01,CAM1");
    rig.run(0.5);
    EXPECT_TRUE(rig.model.script().diagnostics().empty());
    EXPECT_EQ(rig.model.script().captures().size(), 1U);
}

TEST_F(Window, aSiteIsSetByTypingItsNameAndEscapeLeavesItAsItWas) {
    rig.model.site().setSite(
        {.lat = 39.47, .lon = -0.376, .elev = 15, .label = "Valencia, ES", .tzId = "UTC"});
    rig.model.recompute();
    key(Qt::Key_L, Qt::ControlModifier);
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Location"));
    type(QStringLiteral("zara"));
    key(Qt::Key_Return);
    key(Qt::Key_Escape);
    EXPECT_TRUE(window->app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().site().label, "Valencia, ES");

    key(Qt::Key_L, Qt::ControlModifier);
    type(QStringLiteral("zara"));
    key(Qt::Key_Return);
    QQuickItem* use = window.named("useSite");
    ASSERT_NE(use, nullptr);
    use->forceActiveFocus();
    key(Qt::Key_Return);
    EXPECT_TRUE(window->app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().site().label, "Zaragoza, ES");
    EXPECT_EQ(rig.model.site().site().tzId, "Europe/Madrid");
}

TEST_F(Window, everySheetOpensWithoutAWordOnTheErrorStreamAndClosesWithEscape) {
    for (const QString& sheet : ui::Window::sheets()) {
        window->app().openSheet(sheet);
        window.settle();
        EXPECT_EQ(window->app().sheet(), sheet);
        key(Qt::Key_Escape);
        EXPECT_TRUE(window->app().sheet().isEmpty()) << sheet.toStdString();
    }
}

TEST_F(Window, countdownAndTransportAreWholeAtTheSmallestSize) {
    EXPECT_EQ(window.screen().minimumSize(),
              QSize(960, 440).boundedTo(window.screen().screen()->availableSize()));
    for (const QSize& size : {QSize(960, 440), QSize(1380, 860)}) {
        window.screen().resize(size);
        QTest::qWait(50);
        window.settle();
        const QRectF whole(QPointF(0, 0), window.screen().size());
        for (const char* name : {"countdown", "play", "nextShot"}) {
            const QQuickItem* item = window.named(name);
            ASSERT_NE(item, nullptr) << name;
            EXPECT_TRUE(item->isVisible()) << name;
            const QRectF place = window.placeOf(item);
            EXPECT_TRUE(whole.contains(place)) << name << " at " << place.x() << "," << place.y() << " "
                                               << place.width() << "x" << place.height();
        }
    }
}

TEST_F(Window, ctrlQQuitsFromTheDashboardFromASheetAndOutOfATextField) {
    // What is typed last is kept, as the program's end does it.
    const auto quitByKey = [&] {
        QTimer::singleShot(0, &window.screen(),
                           [&] { QTest::keyClick(&window.screen(), Qt::Key_Q, Qt::ControlModifier); });
        QTimer::singleShot(3000, &window.screen(), [] { QCoreApplication::exit(1); });
        const int status = QGuiApplication::exec();
        window.screen().show();
        window.settle();
        return status;
    };
    EXPECT_EQ(quitByKey(), 0);
    for (const char* sheet : {"Location", "Jump", "Arm", "Script"}) {
        window->app().openSheet(QString::fromLatin1(sheet));
        window.settle();
        EXPECT_EQ(quitByKey(), 0) << sheet;
    }
    type(QStringLiteral("#"));
    EXPECT_EQ(quitByKey(), 0);
    rig.model.handleAppWillTerminate();
    EXPECT_TRUE(rig.machine.settings.text("eclipse.scriptText")->starts_with("## New Zenka script."));
}

TEST(WindowPrompts, aRunThatWasCutOffIsTakenUpOrForgottenByKey) {
    for (const bool resume : {true, false}) {
        test::VirtualRig killed;
        killed.load(killed.frameAt(3000));
        killed.model.transport().armRealEclipseTiming(true);
        killed.run(20);
        test::VirtualRig rig;
        rig.files.contents = killed.files.contents;
        rig.machine.settings = killed.machine.settings;
        rig.machine.time.setWall(killed.machine.time.now());
        test::DrivenWindow window(rig);
        window.open();
        EXPECT_TRUE(window->app().sheet().isEmpty()) << "no first start";
        EXPECT_TRUE(window.says(QStringLiteral("Pick the sequence back up from where the clock is now.")));
        EXPECT_FALSE(rig.model.transport().live());
        window.key(Qt::Key_Return);
        EXPECT_FALSE(rig.model.transport().live()) << "no stray key takes it up";
        const QQuickItem* answer = window.button(resume ? "Resume" : "Not now, forget it");
        ASSERT_NE(answer, nullptr);
        for (int i = 0; i < 10 && window.focused() != answer; ++i)
            window.key(Qt::Key_Tab);
        ASSERT_EQ(window.focused(), answer);
        window.key(Qt::Key_Return);
        rig.run(0.1);
        EXPECT_EQ(rig.model.transport().live(), resume);
        EXPECT_EQ(rig.files.count("run-state.json"), resume ? 1 : 0);
        EXPECT_EQ(rig.logged("RESUMED real run"), resume);
        EXPECT_FALSE(window.says(QStringLiteral("Pick the sequence back up")));
        window.key(Qt::Key_Tab);
        EXPECT_NE(window.focused(), nullptr) << "the keyboard goes on from there";
        window->app().declinePrompt(); // of the eclipse's day
    }
}

TEST(WindowPrompts, theWelcomeComesOnceAndNotAgainOnceItWasClosed) {
    test::VirtualRig rig;
    rig.machine.settings.remove("eclipse.scriptText"); // that the rig has written already
    {
        test::DrivenWindow window(rig);
        window.open();
        EXPECT_EQ(window->app().sheet(), QStringLiteral("Welcome"));
        window.key(Qt::Key_Return);
        EXPECT_TRUE(window->app().sheet().isEmpty());
    }
    test::VirtualRig next;
    next.machine.settings = rig.machine.settings;
    next.machine.settings.remove("eclipse.scriptText");
    test::DrivenWindow window(next);
    window.open();
    EXPECT_TRUE(window->app().sheet().isEmpty());
}

TEST_F(Window, aLiveRunIsNotQuitByOneKeyNorByTheCloseButton) {
    rig.load(rig.frameAt(3000));
    transport().armRealEclipseTiming(true);
    window.settle();
    window.key(Qt::Key_Q, Qt::ControlModifier);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("QuitLive"));
    window.key(Qt::Key_Escape);
    EXPECT_FALSE(window.screen().close());
    EXPECT_TRUE(window.screen().isVisible());
    EXPECT_EQ(window->app().sheet(), QStringLiteral("QuitLive"));
    window.key(Qt::Key_Escape);
    transport().useSimulatedTiming();
    EXPECT_TRUE(window.screen().close());
}

TEST_F(Window, theEditMenuWorksOnTheFieldThatHadTheKeyboard) {
    window.key(Qt::Key_0, Qt::ControlModifier);
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Jump"));
    QQuickItem* field = window.named("jumpField");
    ASSERT_NE(field, nullptr);
    type(QStringLiteral("20:11"));
    EXPECT_FALSE(window->commands().isEnabled(QStringLiteral("cut"))) << "nothing is selected";
    window->commands().trigger(QStringLiteral("selectAll"));
    window->commands().trigger(QStringLiteral("cut"));
    EXPECT_EQ(field->property("text").toString(), QString());
    window->commands().trigger(QStringLiteral("undo"));
    EXPECT_EQ(field->property("text").toString(), QStringLiteral("20:11"));
    window.key(Qt::Key_Escape);
    EXPECT_FALSE(window->commands().isEnabled(QStringLiteral("undo"))) << "the field is gone";
}

TEST_F(Window, keysAndGuidesTellOfThePlaceAndLeadBackToIt) {
    window.key(Qt::Key_E, Qt::ControlModifier);
    window.key(Qt::Key_F1);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Keys"));
    EXPECT_TRUE(window.says(QStringLiteral("Here: Ctrl+S: save.")));
    window->commands().trigger(QStringLiteral("openGuide"));
    window.settle();
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Guide"));
    window.key(Qt::Key_F1);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Keys")) << "a text that is read does not keep the key";
    window.key(Qt::Key_Escape);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Script"));
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(window->app().sheet().isEmpty());
}

TEST_F(Window, nightComesByItselfAroundTotalityAndGoesAgain) {
    ui::Theme& theme = window->theme();
    theme.choose(QStringLiteral("Sunlight"));
    theme.setNightByItself(true);
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    const double c3 = rig.model.site().contactTHours().at("C3") * 3600;
    const auto themeAt = [&](double clock) {
        transport().scrubTo(clock);
        rig.run(0.2);
        return theme.name().toStdString();
    };
    EXPECT_EQ(themeAt(c2 - 610), "Sunlight");
    EXPECT_EQ(themeAt(c2 - 590), "Night");
    EXPECT_EQ(themeAt(c3 + 590), "Night");
    EXPECT_EQ(rig.machine.settings.text("zenka.theme"), "Sunlight") << "a crash now does not keep it";
    EXPECT_EQ(themeAt(c3 + 610), "Sunlight");
    EXPECT_EQ(themeAt(c2), "Night");
    theme.choose(QStringLiteral("Dark"));
    EXPECT_EQ(themeAt(c3), "Dark") << "what is chosen by hand stays";
    EXPECT_EQ(themeAt(c3 + 610), "Dark");
    EXPECT_EQ(themeAt(c2), "Night") << "the next darkness is another one";
    theme.setNightByItself(false);
    EXPECT_EQ(themeAt(c2), "Dark");
}

TEST_F(Window, largeTextIsHeldToWhatTheWindowHasRoomFor) {
    ui::Theme& theme = window->theme();
    theme.setTextScale(1.6);
    window.screen().resize(QSize(960, 440));
    QTest::qWait(50);
    EXPECT_EQ(theme.scale(), 1);
    window.screen().resize(QSize(1380, 860));
    QTest::qWait(50);
    EXPECT_GT(theme.scale(), 1.4);
    EXPECT_EQ(theme.textScale(), 1.6) << "what was asked for is kept for a larger window";
}

TEST_F(Window, aLostBodyIsToldAcrossTheWindowAndAcknowledgedWithEnter) {
    const auto body = rig.addBody("CAM7");
    rig.model.reconnect().flagDisconnect(rig.model.roster().cameras().back());
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("CAM7 DISCONNECTED")));
    const QRectF alarm = window.placeOf(window.named("alarmBar"));
    for (const char* name : {"countdown", "play", "nextShot"})
        EXPECT_FALSE(alarm.intersects(window.placeOf(window.named(name)))) << name;
    window.key(Qt::Key_Return);
    EXPECT_FALSE(window.says(QStringLiteral("CAM7 DISCONNECTED")));
    EXPECT_TRUE(rig.model.reconnect().downCams().contains(body->id())) << "it is looked for all the same";
}
