#include "DrivenWindow.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QTest>
#include <gtest/gtest.h>

#include <algorithm>

using namespace zenka;

namespace {

/// Where the Tab key leads.
struct WindowFocus : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }

    /// All stops from the present place round to the first again. Fails the test where there is no way round.
    std::vector<QQuickItem*> stops(Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
        std::vector<QQuickItem*> found;
        for (int i = 0; i < 100; ++i) {
            window.key(modifiers & Qt::ShiftModifier ? Qt::Key_Backtab : Qt::Key_Tab, modifiers);
            QQuickItem* item = window.focused();
            if (!found.empty() && item == found.front())
                return found;
            EXPECT_EQ(std::ranges::count(found, item), 0)
                << "stuck between " << test::nameOf(found.back()).toStdString() << " and "
                << test::nameOf(item).toStdString();
            if (!item || std::ranges::count(found, item) > 0)
                return found;
            found.push_back(item);
        }
        ADD_FAILURE() << "Tab does not come round";
        return found;
    }

    static std::string names(const std::vector<QQuickItem*>& items) {
        std::string names;
        for (const QQuickItem* item : items)
            names += test::nameOf(item).toStdString() + " | ";
        return names;
    }

    /// What scrolls with an item, null where nothing does.
    static const QQuickItem* contentAround(const QQuickItem* item) {
        for (; item; item = item->parentItem()) {
            if (item->parentItem() && item->parentItem()->inherits("QQuickFlickable"))
                return item;
        }
        return nullptr;
    }

    /// Down the columns and along the rows: upwards only into a column further right. A list as a whole has
    /// its place for what is outside.
    static bool readsOn(const QQuickItem* from, const QQuickItem* to) {
        const QQuickItem* before = contentAround(from);
        const QQuickItem* after = contentAround(to);
        const bool together = before == after;
        const QRectF a = test::DrivenWindow::placeOf(together || !before ? from : before->parentItem());
        const QRectF b = test::DrivenWindow::placeOf(together || !after ? to : after->parentItem());
        if (b.bottom() <= a.top() + 1)
            return b.left() >= a.right() - 1;
        return b.top() >= a.bottom() - 1 || b.left() >= a.left();
    }

    /// How much of the accent's colour the focus adds in and close around an item, pixels.
    int ringOf(const QQuickItem* item, const QImage& without) const {
        const QImage with = window.picture();
        const QRect place =
            test::DrivenWindow::placeOf(item).toAlignedRect().adjusted(-8, -8, 8, 8).intersected(with.rect());
        const QRgb accent = accent_.rgb();
        int ring = 0;
        for (int y = place.top(); y <= place.bottom(); ++y)
            for (int x = place.left(); x <= place.right(); ++x)
                ring += with.pixel(x, y) == accent && without.pixel(x, y) != accent;
        return ring;
    }

    void expectSeen(const std::vector<QQuickItem*>& items, const std::string& where) {
        for (std::size_t i = 0; i < items.size(); ++i) {
            QQuickItem* item = items[i];
            if (items.size() > 1)
                items[(i + 1) % items.size()]->forceActiveFocus(Qt::TabFocusReason);
            else
                item->setFocus(false);
            window.settle();
            const QImage without = window.picture();
            item->forceActiveFocus(Qt::TabFocusReason);
            window.settle();
            EXPECT_GE(ringOf(item, without), 60)
                << where << ": the focus on " << test::nameOf(item).toStdString() << " cannot be seen";
            EXPECT_TRUE(window.screen().contentItem()->boundingRect().intersects(window.placeOf(item)))
                << where << ": " << test::nameOf(item).toStdString() << " is out of sight";
        }
    }

    /// Every stop is reached once, in reading order, there and back, and is seen.
    void expectWayRound(const char* where) {
        // Cards out of sight are made when there is time.
        const auto cardsAreMade = [&] {
            std::size_t cards = 0;
            const QQuickItem* list = window.find([&](const QQuickItem& item) {
                cards += item.objectName() == QLatin1String("labelField");
                return item.objectName() == QLatin1String("cameraList");
            });
            return !list || cards == rig.model.roster().cameras().size();
        };
        EXPECT_TRUE(QTest::qWaitFor(cardsAreMade, 5000)) << where;
        window.screen().contentItem()->forceActiveFocus();
        const std::vector<QQuickItem*> forward = stops();
        EXPECT_GT(forward.size(), 6U) << where << ": " << names(forward);
        for (std::size_t i = 1; i < forward.size(); ++i)
            EXPECT_TRUE(readsOn(forward[i - 1], forward[i]))
                << where << ": " << test::nameOf(forward[i - 1]).toStdString() << " before "
                << test::nameOf(forward[i]).toStdString() << " in " << names(forward);
        window.find([&](const QQuickItem& item) {
            const bool stop = item.isEnabled() && item.activeFocusOnTab() && item.width() > 0;
            // A list gives the keyboard to its current row.
            const auto has = [&](const QQuickItem* each) { return each == &item || item.isAncestorOf(each); };
            EXPECT_TRUE(!stop || std::ranges::count_if(forward, has) == 1)
                << where << ": " << test::nameOf(&item).toStdString() << " is not reached in "
                << names(forward);
            return false;
        });
        expectSeen(forward, where);
        forward.front()->forceActiveFocus();
        std::vector<QQuickItem*> back = stops(Qt::ShiftModifier);
        std::ranges::reverse(back);
        EXPECT_EQ(names(back), names(forward)) << where << ": and back the same way";
    }

    QColor accent_{0xffb02b}; // of the dark theme
};

} // namespace

TEST_F(WindowFocus, tabGoesThroughTheDashboardInReadingOrderAndIsSeen) {
    for (const char* label : {"CAM1", "CAM2", "CAM3", "CAM4", "CAM5", "A spare", "Another spare"})
        rig.addBody(label);
    rig.load(rig.frameAt(0, "CAM1"));
    rig.run(1);
    expectWayRound("large");
    window.screen().resize(960, 440);
    expectWayRound("small");
    rig.model.transport().armRealEclipseTiming(true);
    ASSERT_TRUE(rig.model.transport().live());
    expectWayRound("small and live");
    window.screen().resize(1380, 860);
    expectWayRound("large and live");
}

TEST_F(WindowFocus, tabStaysInASheetAndEscapeLeavesItFromEveryPlace) {
    rig.load("TAKEPIK\n" + rig.frameAt(0, "CAM1"));
    for (const char* label : {"CAM1", "CAM2"})
        rig.model.roster().setLabel(*rig.addBody(label), label); // which makes it known
    for (const QString& sheet : ui::Window::sheets()) {
        const std::string name = sheet.toStdString();
        window->app().openSheet(sheet);
        window.settle();
        const QQuickItem* loader = window.named("sheetLoader");
        ASSERT_NE(loader, nullptr);
        const auto outside = [&](const QQuickItem* item) { return !loader->isAncestorOf(item); };
        const std::vector<QQuickItem*> all = stops();
        ASSERT_FALSE(all.empty()) << name;
        EXPECT_FALSE(std::ranges::any_of(all, outside)) << name << ": " << names(all);
        expectSeen(all, name);
        window.screen().resize(960, 440);
        QTest::qWait(30);
        expectSeen(stops(), name + ", small");
        window.screen().resize(1380, 860);
        const std::size_t count = all.size();
        for (std::size_t i = 0; i < count; ++i) {
            window->app().closeSheet();
            window->app().openSheet(sheet);
            window.settle();
            for (std::size_t k = 0; k <= i; ++k)
                window.key(Qt::Key_Tab);
            const std::string place = name + " at " + test::nameOf(window.focused()).toStdString();
            window.key(Qt::Key_Escape);
            EXPECT_TRUE(window->app().sheet().isEmpty()) << place;
        }
    }
}

TEST_F(WindowFocus, longTextsAreReadByKeyFromTheMomentTheyOpen) {
    const auto listOf = [&] {
        return window.find([](const QQuickItem& item) {
            return item.inherits("QQuickFlickable") &&
                   item.property("contentHeight").toDouble() > item.height() && item.height() > 150;
        });
    };
    for (const char* command : {"showKeys", "openScriptGuide"}) {
        window.screen().resize(960, 440);
        window->commands().trigger(QString::fromLatin1(command));
        const QQuickItem* list = listOf();
        ASSERT_NE(list, nullptr) << command;
        const auto y = [&] { return list->property("contentY").toDouble(); };
        const double top = y();
        window.key(Qt::Key_PageDown);
        EXPECT_GT(y(), top) << command;
        window.key(Qt::Key_End);
        EXPECT_TRUE(list->property("atYEnd").toBool()) << command;
        window.key(Qt::Key_Home);
        EXPECT_TRUE(list->property("atYBeginning").toBool()) << command;
        window.key(Qt::Key_Escape);
        EXPECT_TRUE(window->app().sheet().isEmpty()) << command;
    }
}
