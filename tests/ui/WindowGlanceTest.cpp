#include "DrivenWindow.h"
#include "ui/kit/AppView.h"

#include <gtest/gtest.h>

using namespace zenka;

TEST(WindowGlance, thePageIsSwitchedOnByKeyAndItsAddressStandsToBeRead) {
    test::VirtualRig rig;
    test::DrivenWindow window(rig);
    window.open();
    window.dismissGreetings();
    EXPECT_FALSE(window.pages().listening) << "nobody asked for it";
    window.key(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(window->app().sheet(), "Glance");
    EXPECT_EQ(window.named("glanceAddress0"), nullptr);
    window.key(Qt::Key_Tab);
    window.key(Qt::Key_Tab);
    EXPECT_EQ(window.focused(), window.named("glanceReach2"));
    window.key(Qt::Key_Space);
    window.settle();
    ASSERT_TRUE(window.pages().listening);
    EXPECT_TRUE(window.pages().wanted.wholeNetwork);
    ASSERT_NE(window.named("glanceAddress0"), nullptr);
    const QString address = window.named("glanceAddress0")->property("text").toString();
    EXPECT_TRUE(address.startsWith(QStringLiteral("http://192.168.1.20:"))) << address.toStdString();
    ASSERT_NE(window.named("glanceQr"), nullptr);
    EXPECT_EQ(window.named("glanceQr")->property("text").toString(), address);
    window.click(window.named("glanceRenew"));
    EXPECT_NE(window.named("glanceAddress0")->property("text").toString(), address);
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(window.pages().listening) << "it goes on without its sheet";
}
