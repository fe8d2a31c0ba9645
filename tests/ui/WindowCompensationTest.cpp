#include "DrivenWindow.h"
#include "ui/kit/AppView.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// Live compensation and its rules, by keys and by mouse.
struct WindowCompensation : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    rig::ExposureControl& control = rig.model.exposure();

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        rig.load(rig.frameAt(rig.model.transport().clock() + 100, "CAM1"));
        window.settle();
    }
    QString sheet() const { return window->app().sheet(); }
    QString textOf(const char* name) const { return window.named(name)->property("text").toString(); }
};

} // namespace

TEST_F(WindowCompensation, aCameraGetsItsRulesIsNudgedByKeyAndGoesBackToZero) {
    EXPECT_EQ(textOf("compensation"), QStringLiteral("EV 0"));
    window.key(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(sheet(), QStringLiteral("Compensation"));
    EXPECT_TRUE(window.says(QStringLiteral("ISO 200")));
    window.click(window.named("compRules"));
    ASSERT_EQ(sheet(), QStringLiteral("CompRules"));
    EXPECT_TRUE(window.says(QStringLiteral("No rules are saved for this camera yet")));

    QQuickItem* highestIso = window.named("limit01");
    window.click(highestIso);
    window.key(Qt::Key_A, Qt::ControlModifier);
    window.type(QStringLiteral("50"));
    EXPECT_TRUE(window.says(QStringLiteral("The lowest ISO must be at least 1 and not above the highest.")));
    window.key(Qt::Key_Return);
    EXPECT_FALSE(control.rules().hasSavedCompRules("CAM1"));
    window.key(Qt::Key_A, Qt::ControlModifier);
    window.type(QStringLiteral("800"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(control.rules().compRules("CAM1").isoMax, 800);
    ASSERT_EQ(sheet(), QStringLiteral("Compensation")) << "back to where the rules were opened";

    window.key(Qt::Key_Up, Qt::ControlModifier);
    window.key(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_TRUE(window.says(QStringLiteral("+2: 1/500→1/125")));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(textOf("compensation"), QStringLiteral("EV CAM1 +2"));
    window.key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(control.compSummary(), "CAM1 +1");
    window.key(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(control.compSummary(), "0");
    EXPECT_EQ(sheet(), QString()) << "with compensation on, the key takes it back";
    window.key(Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(sheet(), QStringLiteral("Jump"));
}

TEST_F(WindowCompensation, totalityHasStopsOfItsOwnUntilItFollows) {
    control.rules().saveCompRules({}, "CAM1");
    window.key(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
    const auto press = [&](const char* words) {
        window.click(window.find([&](const QQuickItem& item) {
            return item.inherits("QQuickAbstractButton") && test::nameOf(&item) == QString::fromUtf8(words);
        }));
    };
    press("CAM1 Totality a stop darker");
    press("CAM1 Partials a stop brighter");
    EXPECT_EQ(control.compSummary(), "CAM1 +1/-1");
    press("Totality of CAM1 follows the partials");
    EXPECT_EQ(control.compSummary(), "CAM1 +1");
    press("Leave totality as the script has it");
    EXPECT_TRUE(control.leaveTotalityAlone().get());
    press("Compensate CAM1");
    EXPECT_FALSE(control.compActive());
}
