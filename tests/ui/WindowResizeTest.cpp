#include "DrivenWindow.h"
#include "ui/kit/Theme.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// What changed while it was out of sight, and the window's size after that.
struct WindowResize : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void pass(double seconds) {
        rig.run(seconds);
        window.settle();
        QTest::qWait(50); // what is to be deleted later is
    }
    void resizeAll() {
        window->theme().setTextScale(1.3);
        for (const QSize size : {QSize(960, 440), QSize(1380, 860), QSize(960, 440), QSize(1380, 860)}) {
            window.screen().resize(size);
            pass(0.1);
        }
        window->theme().setTextScale(1);
        pass(0.1);
    }
};

} // namespace

TEST_F(WindowResize, detailsThatWereNeverOpenedMayHaveChanged) {
    window.open();
    window.dismissGreetings();
    for (int i = 0; i < 5; ++i) {
        rig.sensors.now.freeDiskGB = 50 + i;
        pass(60);
    }
    resizeAll();
    window.named("healthChip")->forceActiveFocus();
    window.key(Qt::Key_Return);
    pass(0.1);
    EXPECT_TRUE(window.says("Free disk"));
    resizeAll();
}

TEST_F(WindowResize, panelsBehindTabsMayHaveChanged) {
    window.open();
    window.dismissGreetings();
    window.screen().resize(960, 440);
    for (int i = 0; i < 4; ++i) {
        rig.addBody("CAM" + std::to_string(i));
        rig.load(rig.frameAt(i * 10.0, "CAM" + std::to_string(i)));
        pass(1);
        rig.model.roster().setRealCameras({});
        pass(1);
    }
    resizeAll();
}
