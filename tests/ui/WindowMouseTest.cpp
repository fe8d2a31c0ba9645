#include "DrivenWindow.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"
#include "ui/timeline/TimelineItem.h"
#include "ui/timeline/TimelinePainter.h"

#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

using namespace zenka;

namespace {

/// The dashboard by mouse, and by key where both must do.
struct WindowMouse : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }

    const std::string& eclipse() { return rig.model.site().eclipseId(); }
    double clock() { return rig.model.transport().clock(); }
    QQuickItem* eclipseBox() const {
        return window.find([](const QQuickItem& item) { return item.inherits("QQuickComboBox"); });
    }
    /// Goes on with Tab until an item has the keyboard.
    void tabTo(const QQuickItem* item) const {
        ASSERT_NE(item, nullptr);
        for (int i = 0; i < 60 && window.focused() != item; ++i)
            window.key(Qt::Key_Tab);
        ASSERT_EQ(window.focused(), item) << test::nameOf(item).toStdString();
    }

    /// Goes down an open menu.
    void downTo(const char* line) const {
        const auto there = [&] {
            const QQuickItem* item = window.button(line);
            return item && item->property("highlighted").toBool();
        };
        for (int i = 0; i < 30 && !there(); ++i)
            window.key(Qt::Key_Down);
        ASSERT_TRUE(there()) << line;
    }

    struct Timeline {
        const test::DrivenWindow& window;
        ui::TimelineItem* item;

        ui::TimelineLayout layout() const {
            return ui::timelineLayout(*item->view(), *item->colors(), item->size(), item->compact());
        }
        /// A place that is free of marks, at a clock value.
        QPointF at(double clock) const { return item->mapToScene({layout().xOf(clock), 4}); }
        QPointF lane(std::size_t number, double clock) const {
            return item->mapToScene(
                {layout().xOf(clock), layout().laneTop(number) + layout().laneHeight() / 2});
        }
        double secondsPerPixel() const { return layout().secondsPerPixel(); }
    };
    Timeline timeline() const {
        return {window, qobject_cast<ui::TimelineItem*>(window.named("timelineItem"))};
    }
};

} // namespace

TEST_F(WindowMouse, anEclipseIsChosenFromTheBarByMouseAndByKey) {
    ASSERT_EQ(eclipse(), "2026-08-12");
    window.click(eclipseBox());
    QQuickItem* other = window.find([](const QQuickItem& item) {
        return item.inherits("QQuickItemDelegate") &&
               item.property("label").toString().contains(QLatin1String("2027"));
    });
    ASSERT_NE(other, nullptr) << "the list is open";
    window.click(other);
    EXPECT_TRUE(eclipse().starts_with("2027")) << eclipse();
    const std::string chosen = eclipse();

    tabTo(eclipseBox());
    window.key(Qt::Key_Space);
    window.key(Qt::Key_Down);
    window.key(Qt::Key_Escape);
    EXPECT_EQ(eclipse(), chosen) << "left without choosing";
    window.key(Qt::Key_Space);
    window.key(Qt::Key_Up);
    window.key(Qt::Key_Return);
    EXPECT_LT(eclipse(), chosen);
    EXPECT_EQ(window.focused(), eclipseBox());
}

TEST_F(WindowMouse, aMenusEntryIsTriggeredByMouse) {
    window.click(window.button("☰ Menu"));
    QQuickItem* simulation = window.button("Simulation");
    ASSERT_NE(simulation, nullptr);
    window.click(simulation);
    QTest::qWait(300);
    window.settle();
    QQuickItem* play = window.button("Play / Pause");
    ASSERT_NE(play, nullptr);
    window.click(play);
    EXPECT_TRUE(rig.model.transport().playing().get());
    EXPECT_EQ(window.button("Play / Pause"), nullptr) << "the menus have closed";
}

TEST_F(WindowMouse, theMenuIsReachedOpenedAndLeftByKeyAlone) {
    tabTo(window.button("☰ Menu"));
    window.key(Qt::Key_Return);
    window.key(Qt::Key_Down); // Zenka
    window.key(Qt::Key_Down); // File
    window.key(Qt::Key_Right);
    window.key(Qt::Key_Escape);
    EXPECT_NE(window.button("File"), nullptr) << "only the sub-menu closes";
    window.key(Qt::Key_Escape);
    EXPECT_EQ(window.button("File"), nullptr);
    EXPECT_EQ(window.focused(), window.button("☰ Menu"));

    window.key(Qt::Key_Return);
    downTo("Help");
    window.key(Qt::Key_Return);
    downTo("Keys");
    window.key(Qt::Key_Return);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Keys"));
}

TEST_F(WindowMouse, aDragMovesTheSimulatedClockAndTheSkyButNeverALiveClock) {
    rig.load("");
    const Timeline line = timeline();
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    const QQuickItem* sky = window.named("skyPanel");
    const auto skyPicture = [&] { return window.picture().copy(window.placeOf(sky).toRect()); };
    const QImage before = skyPicture();
    window.press(line.at(c2 - 600));
    window.moveTo(line.at(c2 - 300));
    EXPECT_NEAR(clock(), c2 - 300, line.secondsPerPixel());
    window.moveTo(line.at(c2 + 5));
    EXPECT_NEAR(clock(), c2 + 5, line.secondsPerPixel()) << "it follows while the button is down";
    EXPECT_NE(skyPicture(), before);
    window.release(line.at(c2 + 5));

    rig.model.transport().armRealEclipseTiming(true);
    ASSERT_TRUE(rig.model.transport().live());
    window.settle();
    const double live = clock();
    window.press(line.at(c2 - 600));
    window.moveTo(line.at(c2 - 300));
    window.release(line.at(c2 - 300));
    EXPECT_EQ(clock(), live);
    EXPECT_TRUE(window.says(QStringLiteral("the clock cannot be moved"))) << "and it is said why";
}

TEST_F(WindowMouse, wheelAndKeysZoomAroundThePlayhead) {
    rig.load("");
    const Timeline line = timeline();
    rig.model.transport().scrubTo(rig.model.site().contactTHours().at("C2") * 3600);
    window.settle();
    const ui::TimelineView& view = *line.item->view();
    const ui::TimelineRange whole = view.range();
    const double x = line.layout().xOf(view.playhead());
    double worst = 0;
    const auto look = [&] { worst = std::max(worst, std::abs(line.layout().xOf(view.playhead()) - x)); };
    window.wheel(line.at(whole.from + 60), 3);
    look();
    EXPECT_LT(view.range().span(), whole.span() * 0.6);
    const double byWheel = view.range().span();
    line.item->forceActiveFocus();
    window.key(Qt::Key_Plus, Qt::ShiftModifier);
    look();
    EXPECT_NEAR(view.range().span(), byWheel / 2, 1);
    window.key(Qt::Key_Minus);
    look();
    EXPECT_NEAR(view.range().span(), byWheel, 1);
    EXPECT_LT(worst, 1.0) << "ceiling 1 pixel";
    EXPECT_EQ(clock(), view.playhead());
    window.key(Qt::Key_0);
    EXPECT_EQ(view.range(), whole);
    window.wheel(line.at(whole.from + 60), -5);
    EXPECT_EQ(view.range(), whole) << "no further out than the whole run";
}

TEST_F(WindowMouse, aClickOnAMarkOpensTheScriptAtItsLine) {
    const double max = rig.model.site().contactTHours().at("MAX") * 3600;
    rig.load("# one\n# two\n" + rig.frameAt(max - 600) + "# four\n" + rig.frameAt(max));
    window.settle();
    const double before = clock();
    window.click(timeline().lane(0, max));
    ASSERT_EQ(window->app().sheet(), QStringLiteral("Script"));
    QQuickItem* area = window.named("scriptArea");
    ASSERT_NE(area, nullptr);
    EXPECT_EQ(area->property("row").toInt(), 4) << "counted from 0";
    EXPECT_EQ(window.focused(), area);
    EXPECT_EQ(clock(), before);
    window.key(Qt::Key_Escape);
    EXPECT_EQ(window.focused(), timeline().item) << "the keyboard is back where it was";
}

TEST_F(WindowMouse, aBodyIsAddedNamedRemovedAndBroughtBack) {
    rig.load(rig.frameAt(0, "CAM1"));
    window.settle();
    window.click(window.button("+ add"));
    QQuickItem* brand = window.button("Nikon");
    ASSERT_NE(brand, nullptr);
    window.click(brand);
    QTest::qWait(300);
    window.settle();
    QQuickItem* model = window.find([](const QQuickItem& item) {
        return item.inherits("QQuickMenuItem") &&
               item.property("text").toString().contains(QLatin1String("Z8"));
    });
    ASSERT_NE(model, nullptr);
    window.click(model);
    ASSERT_EQ(rig.model.roster().cameras().size(), 1U);
    const auto body = rig.model.roster().cameras().front();
    EXPECT_EQ(rig.model.roster().labelFor(*body), "CAM1") << "the script's camera without a body";

    QQuickItem* label = window.named("labelField");
    window.click(label);
    window.type(QStringLiteral("Wide"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.roster().labelFor(*body), "Wide");
    window.key(Qt::Key_A, Qt::ControlModifier);
    window.type(QStringLiteral("   "));
    EXPECT_TRUE(window.says(QStringLiteral("A body needs a label.")));
    window.key(Qt::Key_Escape);
    EXPECT_EQ(rig.model.roster().labelFor(*body), "Wide");
    EXPECT_EQ(label->property("text").toString(), QStringLiteral("Wide"));

    window.click(window.button("✕"));
    EXPECT_TRUE(rig.model.roster().cameras().empty());
    EXPECT_TRUE(window.says(QStringLiteral("Wide removed.")));
    window.click(window.button("Undo"));
    ASSERT_EQ(rig.model.roster().cameras().size(), 1U);
    EXPECT_EQ(rig.model.roster().labelFor(*rig.model.roster().cameras().front()), "Wide");
    EXPECT_TRUE(rig.model.roster().cameras().front()->connected());
    EXPECT_EQ(window.button("Undo"), nullptr);
}

TEST_F(WindowMouse, aBodyIsAddedAndRemovedByKeyAlone) {
    rig.load(rig.frameAt(0, "CAM1"));
    window.settle();
    tabTo(window.button("+ add"));
    window.key(Qt::Key_Space);
    window.key(Qt::Key_Down); // the first brand, past the heading
    window.key(Qt::Key_Right);
    window.key(Qt::Key_Return); // its first model
    ASSERT_EQ(rig.model.roster().cameras().size(), 1U);
    EXPECT_EQ(window.focused(), window.button("+ add"));
    tabTo(window.named("labelField"));
    window.type(QStringLiteral("Tele")); // in the place of what was there
    window.key(Qt::Key_Tab);
    EXPECT_EQ(rig.model.roster().labelFor(*rig.model.roster().cameras().front()), "Tele");
    EXPECT_EQ(window.focused(), window.button("✕"));
    window.key(Qt::Key_Space);
    EXPECT_TRUE(rig.model.roster().cameras().empty());
    EXPECT_EQ(window.focused(), window.button("Undo")) << "the keyboard does not go with the card";
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.roster().cameras().size(), 1U);
    EXPECT_EQ(window.focused(), window.button("+ add"));

    rig.model.transport().togglePlay();
    rig.run(1);
    tabTo(window.button("✕"));
    window.key(Qt::Key_Space);
    EXPECT_TRUE(window.says(QStringLiteral("A run is on."))) << "frames would be lost";
    EXPECT_EQ(rig.model.roster().cameras().size(), 1U);
    tabTo(window.button("Keep"));
    window.key(Qt::Key_Space);
    EXPECT_FALSE(window.says(QStringLiteral("A run is on.")));
    tabTo(window.named("play"));
    window.key(Qt::Key_Space);
    EXPECT_FALSE(rig.model.transport().playing().get());
}

TEST_F(WindowMouse, anOpenListGoesWhenASheetComes) {
    for (const char* opener : {"eclipses", "☰ Menu", "+ add"}) {
        const QQuickItem* item = opener == std::string("eclipses") ? eclipseBox() : window.button(opener);
        window.click(item);
        const auto popup = [](const QQuickItem& each) { return each.inherits("QQuickPopupItem"); };
        EXPECT_NE(window.find(popup), nullptr) << opener;
        window.key(Qt::Key_L, Qt::ControlModifier);
        ASSERT_EQ(window->app().sheet(), QStringLiteral("Location")) << opener;
        EXPECT_EQ(window.find(popup), nullptr) << opener;
        window.type(QStringLiteral("zara"));
        EXPECT_EQ(window.named("placeSearch")->property("text").toString(), QStringLiteral("zara")) << opener;
        window.key(Qt::Key_Escape);
        EXPECT_TRUE(window->app().sheet().isEmpty()) << opener;
    }
}

TEST_F(WindowMouse, theLogShowsWhatTheFilterLetsThrough) {
    rig.model.log().pushLog("one about bread");
    rig.model.log().pushLog("another about butter");
    rig.run(1);
    window.click(window.named("logFilter"));
    window.type(QStringLiteral("bread"));
    EXPECT_TRUE(window.says(QStringLiteral("one about bread")));
    EXPECT_FALSE(window.says(QStringLiteral("butter")));
    window.key(Qt::Key_Escape);
    EXPECT_TRUE(window.says(QStringLiteral("butter")));
}
