#include "DrivenWindow.h"
#include "ui/kit/AppView.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// What the window says of a script that will not go well, before the day and at arming.
struct WindowScript : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }
    QString sheet() const { return window->app().sheet(); }
    void openArming() {
        window->app().openSheet(QStringLiteral("Arm"));
        window.settle();
    }
    void holdToArm() {
        window.named("armHold")->forceActiveFocus();
        QTest::keyPress(&window.screen(), Qt::Key_Space);
        QTest::qWait(2200);
        QTest::keyRelease(&window.screen(), Qt::Key_Space);
        window.settle();
    }
};

} // namespace

TEST_F(WindowScript, validationFindsItsLinesAndAClickGoesThere) {
    const auto body = rig.addBody("CAM1");
    body->family = "gphoto2";
    const double clock = rig.model.site().contactTHours().at("C1") * 3600;
    rig.load("# one\n" + rig.frameAt(clock) + rig.frameAt(clock + 1));
    window.key(Qt::Key_E, Qt::ControlModifier);
    window.key(Qt::Key_F7);
    rig.run(0.1);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("Validated: 1 warning, listed below.")));
    QQuickItem* area = window.named("scriptArea");
    EXPECT_EQ(area->property("cursorPosition").toInt(), 0);
    window.click(window.find([](const QQuickItem& item) {
        return item.property("text").toString().contains(QStringLiteral("the 1.3 s drop floor"));
    }));
    EXPECT_EQ(area->property("row").toInt(), 2);
    EXPECT_TRUE(area->hasActiveFocus());
    window.type(QStringLiteral("#"));
    rig.run(1);
    window.settle();
    EXPECT_FALSE(window.says(QStringLiteral("Validated"))) << "the script is another one";
}

TEST_F(WindowScript, armingIsHeldBackByAMeasuredBodyAndWarnsOfAGuessedOne) {
    const auto body = rig.addBody("CAM1");
    const double first = rig.model.transport().clock() + 100;
    rig.load(rig.frameAt(first) + rig.frameAt(first + 0.4));
    openArming();
    EXPECT_TRUE(
        window.says(QStringLiteral("CAM1: the script has frames 400 ms apart, and this body is expected to "
                                   "need 1.3 s. About 69 % of such frames may drop.")));
    window.key(Qt::Key_Escape);

    rig.model.floors().saveMeasuredFloor(body->model(), 1.1, false);
    openArming();
    holdToArm();
    EXPECT_FALSE(rig.model.transport().live());
    ASSERT_EQ(sheet(), QStringLiteral("Arm"));
    EXPECT_TRUE(
        window.says(QStringLiteral("Not armed yet. CAM1: the script has frames 400 ms apart, and this "
                                   "body was measured to need 1.4 s.")));
    window.click(window.named("armEdit"));
    EXPECT_EQ(sheet(), QStringLiteral("Script"));
    EXPECT_FALSE(rig.model.cadence().tooTightWarning().get().has_value());
    window.key(Qt::Key_Escape);

    openArming();
    holdToArm();
    holdToArm();
    EXPECT_TRUE(rig.model.transport().live()) << "the user has been told";
    EXPECT_EQ(sheet(), QString());
}

TEST_F(WindowScript, commandsThatCameWithAFileAreReadBeforeTheyMayRun) {
    rig.files.contents["/home/got.zenka"] = "COMMAND,MAX,-,00:20, , , , , , , , ,Lights;lights \xE2\x80\xAE"
                                            "ffo\n" +
                                            rig.frameAt(0);
    window.key(Qt::Key_E, Qt::ControlModifier);
    window.settle();
    ASSERT_EQ(sheet(), "Script");
    rig.model.script().openFile("/home/got.zenka", [](const std::string&) {});
    rig.run(0.1);
    window.settle();
    ASSERT_EQ(sheet(), "Consent");
    EXPECT_EQ(window.named("consentCommands")->property("text").toString(),
              QStringLiteral("line 1:  lights \\u{202e}ffo"))
        << "nothing turns the text around";
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), "Script");
    EXPECT_EQ(rig.model.consent().waiting()->size(), 1U) << "a glance is no leave";

    window.click(window.named("consentButton"));
    ASSERT_EQ(sheet(), "Consent");
    EXPECT_EQ(window.focused(), window.named("consentRefuse")) << "a careless Enter allows nothing";
    window.key(Qt::Key_Tab);
    EXPECT_EQ(window.focused(), window.named("consentAllow"));
    window.key(Qt::Key_Space);
    window.settle();
    EXPECT_EQ(sheet(), "Script");
    EXPECT_TRUE(rig.model.consent().waiting()->empty());
    EXPECT_EQ(window.named("consentButton"), nullptr);
}

TEST_F(WindowScript, aFileThatTheProgramIsStartedWithIsOpened) {
    rig.files.contents["/home/ann's shots.zenka"] = rig.frameAt(100);
    window->openFile(QStringLiteral("/home/ann's shots.zenka"));
    rig.run(0.1);
    window.settle();
    EXPECT_EQ(sheet(), "Script");
    EXPECT_EQ(rig.model.script().currentScriptName().get(), "ann's shots.zenka");
    rig.files.contents["/home/a.zenka-rig"] = rig::toJson(rig.model.transfer().gather());
    window->openFile(QStringLiteral("/home/a.zenka-rig"));
    rig.run(0.1);
    EXPECT_EQ(sheet(), "RigTransfer") << "and nothing is taken yet";
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("3 saved sites")));
    window->openFile(QStringLiteral("/home/none.zenka"));
    rig.run(0.1);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("\"none.zenka\" cannot be read.")));
    EXPECT_EQ(rig.model.script().captures().size(), 1U);
}

TEST_F(WindowScript, aSecondStartOpensItsScriptHereButNotInALiveRun) {
    rig.files.contents["/home/got.zenka"] = rig.frameAt(5000);
    window->startedAgain(QString());
    EXPECT_EQ(sheet(), QString());
    window->startedAgain(QStringLiteral("/home/got.zenka"));
    rig.run(0.1);
    EXPECT_EQ(sheet(), QStringLiteral("Script"));
    EXPECT_EQ(rig.model.script().currentScriptName().get(), "got.zenka");
    window->app().closeSheet();
    rig.load(rig.frameAt(9000));
    rig.model.transport().armRealEclipseTiming(true);
    window->startedAgain(QStringLiteral("/home/got.zenka"));
    rig.run(0.1);
    EXPECT_EQ(sheet(), QString());
    EXPECT_TRUE(rig.logged("“got.zenka” was not opened"));
}
