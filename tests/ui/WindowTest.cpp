#include "ui/Window.h"

#include "support/VirtualRig.h"
#include "ui/AppView.h"
#include "ui/Commands.h"
#include "ui/Theme.h"

#include <QGuiApplication>
#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The whole window, driven by real key events, on a rig in virtual time.
struct Window : testing::Test {
    test::VirtualRig rig;
    ui::Window window{rig.model, rig.machine.all, QStringLiteral("9.9")};

    void SetUp() override {
        ASSERT_TRUE(window.show());
        window.app().closeSheet();
        if (window.app().prompt() == QLatin1String("eclipseDay"))
            window.app().declinePrompt();
        settle();
    }

    void settle() const {
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }

    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.quickWindow(), code, modifiers);
        settle();
    }

    void type(const QString& text) {
        for (const QChar letter : text)
            QTest::keyClick(window.quickWindow(), letter.toLatin1());
        settle();
    }

    QQuickItem* find(const char* name) const {
        return window.quickWindow()->findChild<QQuickItem*>(QString::fromLatin1(name));
    }

    rig::Transport& transport() { return rig.model.transport(); }
};

/// Where an item is in its window.
QRectF placeOf(const QQuickItem* item) {
    return item->mapRectToScene(item->boundingRect());
}

} // namespace

TEST_F(Window, playsPausesAndQuitsByKey) {
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(transport().playing().get());
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_FALSE(transport().playing().get());
    EXPECT_TRUE(window.commands().isEnabled(QStringLiteral("quit")));
}

TEST_F(Window, jumpsToATypedTimeAndSaysWhatIsWrongWithAnother) {
    rig.load(""); // without frames the timeline spans the whole eclipse
    key(Qt::Key_0, Qt::ControlModifier);
    ASSERT_EQ(window.app().sheet(), QStringLiteral("Jump"));
    type(QStringLiteral("25:99"));
    key(Qt::Key_Return);
    EXPECT_EQ(window.app().sheet(), QStringLiteral("Jump")) << "it stays open with what was typed";
    key(Qt::Key_A, Qt::ControlModifier);
    type(QStringLiteral("20:05:30"));
    key(Qt::Key_Return);
    EXPECT_TRUE(window.app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().fmtClock(transport().clock()), "20:05:30");
    key(Qt::Key_0, Qt::ControlModifier);
    key(Qt::Key_Escape);
    EXPECT_TRUE(window.app().sheet().isEmpty());
}

TEST_F(Window, armingTakesAKeyThatIsHeld) {
    window.commands().trigger(QStringLiteral("armReal"));
    settle();
    ASSERT_EQ(window.app().sheet(), QStringLiteral("Arm"));
    QQuickItem* hold = find("armHold");
    ASSERT_NE(hold, nullptr);
    hold->forceActiveFocus();
    key(Qt::Key_Space);
    QTest::qWait(100);
    EXPECT_FALSE(transport().live()) << "a short press does nothing";
    QTest::keyPress(window.quickWindow(), Qt::Key_Space);
    QTest::qWait(2200);
    QTest::keyRelease(window.quickWindow(), Qt::Key_Space);
    settle();
    EXPECT_TRUE(transport().live());
    EXPECT_FALSE(window.commands().isEnabled(QStringLiteral("togglePlay"))) << "a live run is not played";
    key(Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(transport().live());
    EXPECT_FALSE(transport().playing().get());
}

TEST_F(Window, everyCommandsShortcutIsItsOwn) {
    std::map<QString, QString> taken;
    for (const ui::Command& command : window.commands().all()) {
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
    ASSERT_EQ(window.app().sheet(), QStringLiteral("Script"));
    key(Qt::Key_End, Qt::ControlModifier);
    type(QStringLiteral("TAKEPIK,C2"));
    rig.run(0.5);
    settle();
    ASSERT_EQ(rig.model.script().diagnostics().size(), 1U);
    EXPECT_EQ(rig.model.script().diagnostics()[0].message, "unknown command 'TAKEPIK'");
    for (int i = 0; i < 4; ++i)
        key(Qt::Key_Backspace);
    type(QStringLiteral("C,C2,+,00:01,CAM1"));
    key(Qt::Key_Escape); // before the pause that compiles
    EXPECT_TRUE(window.app().sheet().isEmpty());
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
    ASSERT_EQ(window.app().sheet(), QStringLiteral("Location"));
    type(QStringLiteral("zara"));
    key(Qt::Key_Return);
    key(Qt::Key_Escape);
    EXPECT_TRUE(window.app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().site().label, "Valencia, ES");

    key(Qt::Key_L, Qt::ControlModifier);
    type(QStringLiteral("zara"));
    key(Qt::Key_Return);
    QQuickItem* use = find("useSite");
    ASSERT_NE(use, nullptr);
    use->forceActiveFocus();
    key(Qt::Key_Return);
    EXPECT_TRUE(window.app().sheet().isEmpty());
    EXPECT_EQ(rig.model.site().site().label, "Zaragoza, ES");
    EXPECT_EQ(rig.model.site().site().tzId, "Europe/Madrid");
}

TEST_F(Window, everySheetOpensWithoutAWordOnTheErrorStreamAndClosesWithEscape) {
    for (const QString& sheet : ui::Window::sheets()) {
        window.app().openSheet(sheet);
        settle();
        EXPECT_EQ(window.app().sheet(), sheet);
        key(Qt::Key_Escape);
        EXPECT_TRUE(window.app().sheet().isEmpty()) << sheet.toStdString();
    }
}

TEST_F(Window, countdownAndTransportAreWholeAtTheSmallestSize) {
    EXPECT_EQ(window.quickWindow()->minimumSize(),
              QSize(960, 440).boundedTo(window.quickWindow()->screen()->availableSize()));
    for (const QSize& size : {QSize(960, 440), QSize(1380, 860)}) {
        window.quickWindow()->resize(size);
        QTest::qWait(50);
        settle();
        const QRectF whole(QPointF(0, 0), window.quickWindow()->size());
        for (const char* name : {"countdown", "play", "nextShot"}) {
            const QQuickItem* item = find(name);
            ASSERT_NE(item, nullptr) << name;
            EXPECT_TRUE(item->isVisible()) << name;
            const QRectF place = placeOf(item);
            EXPECT_TRUE(whole.contains(place)) << name << " at " << place.x() << "," << place.y() << " "
                                               << place.width() << "x" << place.height();
        }
    }
}

TEST_F(Window, nightLetsNoGreenOrBlueThrough) {
    window.theme().choose(QStringLiteral("Night"));
    rig.load(rig.frameAt(rig.model.site().contactTHours().at("C2") * 3600));
    rig.playFrom(rig.model.site().contactTHours().at("C2") * 3600 - 5);
    rig.run(8);
    QStringList pages = ui::Window::sheets();
    pages.prepend(QString());
    for (const QString& sheet : pages) {
        window.app().openSheet(sheet);
        settle();
        const QImage image = window.quickWindow()->grabWindow().convertToFormat(QImage::Format_RGB32);
        ASSERT_FALSE(image.isNull());
        int worst = 0;
        QPoint where;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (const int light = std::max(qGreen(pixel), qBlue(pixel)); light > worst) {
                    worst = light;
                    where = QPoint(x, y);
                }
            }
        }
        EXPECT_LE(worst, 0) << (sheet.isEmpty() ? "dashboard" : sheet.toStdString()) << " at " << where.x()
                            << "," << where.y() << ", ceiling 0";
        window.app().closeSheet();
    }
}
