#include "DrivenWindow.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

/// The cameras' cards and their sheets.
struct WindowCameras : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }

    std::shared_ptr<test::ScriptedCamera> addKnown(const char* label, const char* lens = "") {
        auto body = rig.addBody(label);
        rig.model.roster().setLabel(*body, label);
        rig.model.library().setLens(body->serial(), lens);
        return body;
    }

    QString sheet() const { return window->app().sheet(); }

    /// Goes on by the Tab key until the item of these words has the keyboard.
    bool tabTo(const char* words) const {
        window.named("cameraList"); // its cards are made with the next frame
        for (int i = 0; i < 60; ++i) {
            window.key(Qt::Key_Tab);
            if (test::nameOf(window.focused()) == QString::fromUtf8(words))
                return true;
        }
        return false;
    }

    QQuickItem* lensField(const char* label) const {
        return window.find([&](const QQuickItem& item) {
            return item.inherits("QQuickTextField") &&
                   test::nameOf(&item) == QStringLiteral("Lens of ") + QString::fromUtf8(label);
        });
    }

    std::optional<std::string> lensOf(const char* serial) {
        const auto entry = rig.model.library().find(serial);
        return entry ? entry->lens : std::nullopt;
    }
};

} // namespace

TEST_F(WindowCameras, aTestShotIsReachedTypedAndFiredByKeyAlone) {
    rig.load(rig.frameAt(rig.model.transport().clock() + 100, "CAM1"));
    const auto body = rig.addBody("CAM1");
    window.settle();
    ASSERT_TRUE(tabTo("Test shot of CAM1"));
    window.key(Qt::Key_Return);
    ASSERT_EQ(sheet(), QStringLiteral("TestShot"));
    EXPECT_EQ(window.focused(), window.named("fire"));
    window.key(Qt::Key_Return);
    ASSERT_EQ(body->shots.size(), 1U);
    EXPECT_EQ(body->shots[0].iso, 200) << "as the script has it";
    EXPECT_TRUE(window.says(QStringLiteral("✓ 212 ms")));

    ASSERT_TRUE(tabTo("ISO"));
    window.type(QStringLiteral("400"));
    window.key(Qt::Key_Up);
    ASSERT_TRUE(tabTo("Shutter, s"));
    window.type(QStringLiteral("x"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(body->shots.size(), 1U);
    EXPECT_TRUE(window.says(QStringLiteral("✖ This is no shutter.")));
    window.key(Qt::Key_Backspace);
    window.key(Qt::Key_Return);
    ASSERT_EQ(body->shots.size(), 2U);
    EXPECT_EQ(body->shots[1].iso, 500);
    EXPECT_EQ(body->shots[1].shutterSec, 0);
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QString());
}

TEST_F(WindowCameras, aShotUnderWayIsToldAndItsResultIsNotLostWithTheSheet) {
    const auto body = rig.addBody("CAM1");
    const cameras::CaptureOutcome notYet{.ok = false, .note = "Could not trigger capture", .responded = true};
    for (int i = 0; i < 100; ++i)
        body->outcomes.push_back(notYet);
    window.key(Qt::Key_T, Qt::ControlModifier);
    window.key(Qt::Key_Return);
    const QQuickItem* fire = window.named("fire");
    EXPECT_FALSE(fire->isEnabled());
    EXPECT_EQ(fire->property("text").toString(), QStringLiteral("waiting for camera…"));
    window.key(Qt::Key_Return);
    window.key(Qt::Key_Escape);
    ASSERT_EQ(sheet(), QString());
    rig.run(30);
    EXPECT_TRUE(window.says(QStringLiteral("⚠ Test: camera not in PC mode yet"))) << "on the card";
    EXPECT_TRUE(window.says(QStringLiteral("TEST FAILED  CAM1"))) << "in the log";
    window.key(Qt::Key_T, Qt::ControlModifier);
    EXPECT_TRUE(window.says(QStringLiteral("✖ camera not in PC mode yet")));
    EXPECT_TRUE(window.says(QStringLiteral("Nikon bodies can take up to a minute")));

    body->outcomes = {notYet};
    window.key(Qt::Key_Return);
    rig.run(3);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("✓ 212 ms")));
    EXPECT_EQ(window.focused(), window.named("fire")) << "ready to be fired again";
}

TEST_F(WindowCameras, inALiveRunTheSheetSaysWhyItDoesNotFire) {
    rig.model.transport().armRealEclipseTiming(true);
    rig.load(rig.frameAt(rig.model.transport().clockNow() + 20, "CAM1"));
    const auto body = rig.addBody("CAM1");
    window.key(Qt::Key_T, Qt::ControlModifier);
    window.key(Qt::Key_Return);
    EXPECT_TRUE(body->shots.empty());
    EXPECT_TRUE(window.says(QStringLiteral("✖ The live run fires CAM1 in ")));
}

TEST_F(WindowCameras, theLensOfABodyIsKeptFromItsCardAndFromTheLibrary) {
    addKnown("CAM1");
    window.settle();
    ASSERT_TRUE(tabTo("Note the lens of CAM1"));
    window.key(Qt::Key_Return);
    window.type(QStringLiteral("400 mm"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(lensOf("SN-id-CAM1"), "400 mm");
    EXPECT_TRUE(window.says(QStringLiteral("gphoto2 · connected · 400 mm")));
    EXPECT_EQ(test::nameOf(window.focused()), QStringLiteral("Lens of CAM1: 400 mm")) << "back on its button";
    window.key(Qt::Key_Return);
    window.type(QStringLiteral("20 mm"));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(lensOf("SN-id-CAM1"), "400 mm");

    window.key(Qt::Key_B, Qt::ControlModifier);
    ASSERT_EQ(sheet(), QStringLiteral("Library"));
    window.click(lensField("CAM1"));
    window.type(QStringLiteral("20 mm"));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QStringLiteral("Library")) << "Escape takes back what was typed first";
    EXPECT_EQ(lensField("CAM1")->property("text").toString(), QStringLiteral("400 mm"));
    window.type(QStringLiteral("85 mm"));
    window.key(Qt::Key_Tab);
    EXPECT_EQ(lensOf("SN-id-CAM1"), "85 mm") << "kept when the keyboard goes elsewhere";
    lensField("CAM1")->forceActiveFocus();
    window.type(QStringLiteral("105 mm"));
    window->app().closeSheet();
    window.settle();
    EXPECT_EQ(lensOf("SN-id-CAM1"), "105 mm") << "or the sheet closes under it";
}

TEST_F(WindowCameras, theLibraryTellsWhoIsHereAndForgetsWithAWayBack) {
    window.click(window.named("openLibrary"));
    ASSERT_EQ(sheet(), QStringLiteral("Library"));
    EXPECT_TRUE(window.says(QStringLiteral("No body is known yet. Detect one and give it a label;")));
    addKnown("CAM1", "400 mm");
    addKnown("CAM2");
    rig.model.roster().setDisconnected("id-CAM2", true);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("2 bodies, 1 not connected.")));
    EXPECT_TRUE(window.says(QStringLiteral("● connected")));
    EXPECT_TRUE(window.says(QStringLiteral("○ not connected")));
    ASSERT_TRUE(tabTo("Forget CAM1"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.library().entries().size(), 1U);
    EXPECT_EQ(test::nameOf(window.focused()), QStringLiteral("Undo: CAM1 forgotten."));
    window.key(Qt::Key_Return);
    EXPECT_EQ(lensOf("SN-id-CAM1"), "400 mm");
    EXPECT_FALSE(window.says(QStringLiteral("forgotten.")));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QString()) << "the keyboard is still in the sheet";
}

TEST_F(WindowCameras, cardsAndTheirSheetsFitTheSmallestWindowAndTheLargestText) {
    const auto body = addKnown("A body with a long label", "150-600 mm f/5-6.3 with converter");
    body->portName = "usb:001,004";
    body->outcomes = {{.ok = false, .note = "Could not claim the USB device, whoever may hold it"}};
    rig.model.testShots().fire(body, {.iso = 102400, .aperture = 5.6, .shutterSec = 0.00003125});
    const auto expectWhole = [&](const std::string& where) {
        const QRectF whole(QPointF(), window.screen().size());
        window.find([&](const QQuickItem& item) {
            const QRectF place = test::DrivenWindow::placeOf(&item);
            const bool inside = place.left() >= whole.left() - 1 && place.right() <= whole.right() + 1;
            EXPECT_TRUE(!item.inherits("QQuickText") || item.width() <= 0 || inside)
                << where << ": " << test::nameOf(&item).toStdString();
            if (item.inherits("QQuickAbstractButton") && item.width() > 0) {
                const auto* words = item.property("contentItem").value<QQuickItem*>();
                EXPECT_FALSE(words && words->property("truncated").toBool())
                    << where << ": " << test::nameOf(&item).toStdString() << " is cut";
            }
            return false;
        });
    };
    for (const double scale : {1.0, 1.6}) {
        window->theme().setTextScale(scale);
        for (const QSize& size : {QSize(960, 440), QSize(1380, 860)}) {
            window.screen().resize(size);
            QTest::qWait(50);
            const std::string where = std::to_string(size.width()) + " at " + std::to_string(scale);
            if (const QQuickItem* tab = window.button("○ Cameras"))
                window.click(tab);
            expectWhole("cards, " + where);
            for (const char* name : {"TestShot", "Library"}) {
                window->app().openSheet(QString::fromLatin1(name));
                window.settle();
                expectWhole(name + (", " + where));
                window->app().closeSheet();
            }
        }
    }
}
