#include "DrivenWindow.h"
#include "ui/kit/AppView.h"
#include "ui/kit/NightPointer.h"
#include "ui/kit/Theme.h"

#include <QCursor>
#include <QFile>
#include <QGuiApplication>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

#include <filesystem>

using namespace zenka;

namespace {

/// What only the Night theme has: pictures in pure red, a pointer and a file dialog of its own.
struct WindowNight : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    QTemporaryDir folder{QDir::tempPath() + QStringLiteral("/it's a night XXXXXX")};

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        window->theme().choose(QStringLiteral("Night"));
        window.settle();
    }

    void expectRed(const char* what) const {
        QTest::qWait(30);
        const test::ColdestPixel worst = test::coldestPixel(window.picture());
        EXPECT_EQ(worst.light, 0) << what << " at " << worst.at.x() << "," << worst.at.y() << ", ceiling 0";
    }

    /// A file both on the disk that the picker lists and on the one that the rig reads.
    std::string makeFile(const char* name, const std::string& content) {
        const QString path = folder.filePath(QString::fromUtf8(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content.data(), static_cast<qint64>(content.size()));
        rig.files.contents[path.toStdString()] = content;
        return path.toStdString();
    }

    QQuickItem* entry(const char* name) const {
        const QString words = QString::fromUtf8(name);
        return window.find([&](const QQuickItem& item) {
            return item.property("fileName").toString() == words && item.width() > 0;
        });
    }

    /// What came of the last file operation.
    QString message() {
        rig.run(0.1);
        const QQuickItem* line = window.named("scriptMessage");
        return line ? line->property("text").toString() : QString();
    }
};

} // namespace

TEST_F(WindowNight, dashboardAndEverySheetAreRed) {
    rig.load(rig.frameAt(rig.model.site().contactTHours().at("C2") * 3600));
    rig.playFrom(rig.model.site().contactTHours().at("C2") * 3600 - 5);
    rig.run(8);
    const auto body = rig.addBody("CAM7");
    rig.model.roster().setLabel(*body, "CAM7");
    body->outcomes = {test::silence()};
    rig.model.testShots().fire(body, {.iso = 100});
    ASSERT_EQ(rig.model.testShots().result(body->id())->phrase, "no answer");
    QStringList pages = ui::Window::sheets();
    pages.prepend(QString());
    for (const QString& sheet : pages) {
        window->app().openSheet(sheet);
        window.settle();
        expectRed(sheet.isEmpty() ? "dashboard" : qPrintable(sheet));
        window->app().closeSheet();
    }
}

TEST_F(WindowNight, menusListsAndTipsAreRed) {
    rig.model.log().pushLog(std::string(300, 'w'));
    rig.run(1);
    window.click(window.button("☰ Menu"));
    window.click(window.button("Help"));
    QTest::qWait(300);
    expectRed("menu");
    window.key(Qt::Key_Escape);
    window.key(Qt::Key_Escape);
    const QQuickItem* box =
        window.find([](const QQuickItem& item) { return item.inherits("QQuickComboBox"); });
    window.click(box);
    expectRed("list of eclipses");
    window.key(Qt::Key_Escape);
    window.click(window.button("+ add"));
    expectRed("catalogue");
    window.key(Qt::Key_Escape);
    const QQuickItem* log = window.named("logList");
    window.click(window.placeOf(log).topLeft() + QPointF(100, 10));
    QTest::qWait(500); // until the tip comes
    EXPECT_TRUE(window.says(QString(300, QLatin1Char('w'))));
    expectRed("tip");
}

TEST_F(WindowNight, thePointerIsARedArrowEverywhereAndTheDesktopsOwnByDay) {
    const QCursor* pointer = QGuiApplication::overrideCursor();
    ASSERT_NE(pointer, nullptr) << "over text fields and buttons, too";
    const QImage arrow = pointer->pixmap().toImage();
    ASSERT_FALSE(arrow.isNull());
    EXPECT_EQ(test::coldestPixel(arrow).light, 0);
    int lit = 0;
    for (int y = 0; y < arrow.height(); ++y)
        for (int x = 0; x < arrow.width(); ++x)
            lit += qRed(arrow.pixel(x, y)) > 150 && qAlpha(arrow.pixel(x, y)) == 255;
    EXPECT_GT(lit, 100) << "pixels that can be seen on black";
    window->theme().choose(QStringLiteral("Dark"));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(WindowNight, aFileIsOpenedByKeyAndOneThatIsNoScriptIsToldOfInTheSheet) {
    const std::string first = makeFile("a first day.zenka", "# first\n");
    makeFile("b picture.zenka", std::string("\xFF\xD8\xFF\xE0 picture", 12));
    makeFile("c latin.txt", "# caf\xE9\n");
    rig.files.contents.erase(makeFile("d closed.zenka", "# closed to you\n"));
    makeFile("e second.zenka", "# second\n");
    rig.model.script().openFile(first, [](const std::string&) {});
    rig.run(0.1);
    window.key(Qt::Key_E, Qt::ControlModifier);
    const auto openByKey = [&](int row) {
        window.key(Qt::Key_O, Qt::ControlModifier);
        EXPECT_NE(entry("a first day.zenka"), nullptr);
        expectRed("file picker");
        for (int i = 0; i < row; ++i)
            window.key(Qt::Key_Down);
        window.key(Qt::Key_Return);
        EXPECT_EQ(entry("a first day.zenka"), nullptr) << "closed";
        return message();
    };
    EXPECT_TRUE(openByKey(1).contains(QLatin1String("is not plain text in UTF-8")))
        << message().toStdString();
    EXPECT_TRUE(openByKey(2).contains(QLatin1String("is not plain text in UTF-8")))
        << message().toStdString();
    EXPECT_TRUE(openByKey(3).contains(QLatin1String("cannot be read"))) << message().toStdString();
    EXPECT_TRUE(message().startsWith(QStringLiteral("✖")));
    EXPECT_EQ(rig.model.script().scriptText().get(), "# first\n");
    EXPECT_EQ(openByKey(4), QStringLiteral("Opened \"e second.zenka\"."));
    EXPECT_EQ(rig.model.script().scriptText().get(), "# second\n");
    EXPECT_EQ(window.focused(), window.named("scriptArea"));
}

TEST_F(WindowNight, aFileThatIsThereIsWrittenOverOnlyWhenTheUserSaysSo) {
    const std::string first = makeFile("a first day.zenka", "# first\n");
    const std::string named = makeFile("été 100%.zenka", "# precious\n");
    const std::string notes = makeFile("notes.txt", "all my notes\n");
    rig.model.script().openFile(first, [](const std::string&) {});
    rig.run(0.1);
    window.key(Qt::Key_E, Qt::ControlModifier);
    rig.model.script().setScriptText("# mine\n");

    window.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    window.click(entry("été 100%.zenka"));
    window.click(window.button("Save"));
    rig.run(0.1);
    EXPECT_TRUE(window.says(QStringLiteral("There is a file of this name.")));
    EXPECT_EQ(rig.files.contents[named], "# precious\n");
    expectRed("question");
    window.key(Qt::Key_Escape);
    EXPECT_EQ(entry("été 100%.zenka"), nullptr);
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Script")) << "only the picker closes";
    EXPECT_EQ(rig.files.contents[named], "# precious\n");

    window.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_FALSE(window.says(QStringLiteral("There is a file of this name."))) << "asked anew";
    window.click(entry("été 100%.zenka"));
    window.click(window.button("Save"));
    window.click(window.button("Replace"));
    EXPECT_EQ(message(), QStringLiteral("Saved \"été 100%.zenka\"."));
    EXPECT_EQ(rig.files.contents[named], "# mine\n");

    // A file that the list does not show is asked about as well.
    window.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    window.type(QStringLiteral("notes.txt"));
    window.key(Qt::Key_Return);
    rig.run(0.1);
    EXPECT_TRUE(window.says(QStringLiteral("There is a file of this name.")));
    EXPECT_EQ(rig.files.contents[notes], "all my notes\n");
    window.key(Qt::Key_Return);
    rig.run(0.1);
    EXPECT_EQ(rig.files.contents[notes], "# mine\n");

    window.key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    window.type(QStringLiteral("brand new"));
    window.key(Qt::Key_Return);
    rig.run(0.1);
    EXPECT_EQ(rig.files.contents[folder.filePath(QStringLiteral("brand new.zenka")).toStdString()],
              "# mine\n");
}
