#include "DrivenWindow.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The framing simulator, by keyboard alone.
struct WindowFraming : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }
    void openByKey() {
        window.key(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
        window.settle();
    }
    /// Goes on by the Tab key until the item of this name has the keyboard.
    bool tabTo(const char* name) {
        for (int i = 0; i < 40; ++i) {
            window.key(Qt::Key_Tab);
            if (window.focused() && window.focused()->objectName() == QLatin1String(name))
                return true;
        }
        return false;
    }
    QString said(const char* label) {
        const QQuickItem* item = window.named(label);
        return item ? item->property("text").toString() : QString();
    }
};

} // namespace

TEST_F(WindowFraming, aBodyIsFramedByKeysAndItsFramingIsThereAgain) {
    EXPECT_EQ(window->commands().inMenu("Tools").first().toMap().value("id"), "framingSimulator");
    const auto body = rig.addBody("CAM1");
    rig.model.roster().setLabel(*body, "CAM1");
    const double max = rig.model.site().contactTHours().at("MAX") * 3600;
    rig.load(rig.frameAt(max - 100) + rig.frameAt(max - 50) + rig.frameAt(max) + rig.frameAt(max + 900) +
             rig.frameAt(max + 901));
    openByKey();
    ASSERT_EQ(window->app().sheet(), "Framing");
    EXPECT_EQ(window.focused()->objectName(), "framingBody") << "the keyboard is where one begins";
    const QImage before = window.picture();

    ASSERT_TRUE(tabTo("framing_focal"));
    window.type("2000");
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.library().find(body->serial())->framing->focalMm, 2000);
    EXPECT_NE(window.picture(), before);
    window.key(Qt::Key_Up);
    EXPECT_EQ(window.focused()->property("text"), "2500");
    window.key(Qt::Key_Down);

    ASSERT_TRUE(tabTo("held1"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.library().find(body->serial())->framing->rotationDeg, 90);

    ASSERT_TRUE(tabTo("burst1"));
    window.key(Qt::Key_Return);
    window.settle();
    EXPECT_TRUE(said("burst1").contains("2 frames in 1 s, drift ")) << said("burst1").toStdString();
    EXPECT_TRUE(window.named("burst1")->property("picked").toBool()) << said("burst1").toStdString();

    window.named("framingTracking")->forceActiveFocus();
    window.key(Qt::Key_Return);
    EXPECT_TRUE(window.says("followed"));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(window->app().sheet(), "");
    openByKey();
    EXPECT_EQ(window.named("framing_focal")->property("text"), "2000");
    EXPECT_TRUE(window.named("framingTracking")->property("checked").toBool());
}

TEST_F(WindowFraming, theFaultOfANumberIsToldBesideItAndNothingElseIsLost) {
    openByKey();
    const QString verdict = said("framingVerdict");
    ASSERT_FALSE(verdict.isEmpty());
    ASSERT_TRUE(tabTo("framing_focal"));
    window.type("6000");
    window.key(Qt::Key_Tab);
    window.settle();
    EXPECT_TRUE(window.says("✖ A focal length is 4 to 5000 mm."));
    EXPECT_FALSE(said("framingVerdict").isEmpty());
    // The usual ones, from the list
    window.named("usualFocals")->forceActiveFocus();
    window.key(Qt::Key_Return);
    window.settle();
    window.key(Qt::Key_Home);
    window.key(Qt::Key_Return);
    window.settle();
    EXPECT_EQ(window.named("framing_focal")->property("text"), "14");
    EXPECT_FALSE(window.says("✖ A focal length is 4 to 5000 mm."));
}

TEST_F(WindowFraming, myCamerasLeadToTheFramingOfEachAndBack) {
    for (const char* label : {"CAM1", "CAM2"}) {
        const auto body = rig.addBody(label);
        rig.model.roster().setLabel(*body, label);
    }
    rig.model.library().setFraming("SN-id-CAM2", {.focalMm = 135});
    window->app().openSheet(QStringLiteral("Library"));
    window.settle();
    auto* button = window.find(
        [](const QQuickItem& item) { return test::nameOf(&item) == QStringLiteral("Framing of CAM2"); });
    ASSERT_TRUE(button);
    button->forceActiveFocus();
    window.key(Qt::Key_Return);
    window.settle();
    ASSERT_EQ(window->app().sheet(), "Framing");
    EXPECT_EQ(window.named("framing_focal")->property("text"), "135");
    window.key(Qt::Key_Escape);
    EXPECT_EQ(window->app().sheet(), "Library");
}
