// The pages of Help: what they show and where their links lead.
#include "DrivenWindow.h"
#include "ui/Commands.h"
#include "ui/help/GuidePages.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QFile>
#include <QImageReader>
#include <QRegularExpression>
#include <QTest>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <vector>

using namespace zenka;

namespace {

struct WindowGuide : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    std::vector<QUrl> opened;

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        window->setOpenUrl([this](const QUrl& address) { opened.push_back(address); });
        window.screen().resize(960, 440);
    }

    void open(const char* command) const {
        window->commands().trigger(QString::fromLatin1(command));
        window.settle();
    }
    QQuickItem* page() const { return window.named("guideText"); }
    QString shown() const {
        QString text;
        QMetaObject::invokeMethod(page(), "getText", Q_RETURN_ARG(QString, text), Q_ARG(int, 0),
                                  Q_ARG(int, page()->property("length").toInt()));
        return text;
    }
    QString title() const { return window.named("sheetTitle")->property("text").toString(); }
    /// As the text field reports it for a click.
    void follow(const char* link) const {
        QMetaObject::invokeMethod(page(), "linkActivated", Q_ARG(QString, QString::fromUtf8(link)));
        window.settle();
    }
    /// Something of the text is to be seen, and not the empty page alone.
    bool isDrawn() const {
        const QRect inside =
            window.placeOf(page()->parentItem()->parentItem()).toRect().adjusted(8, 8, -24, -8);
        const QImage picture = window.picture();
        for (int y = inside.top(); y < inside.bottom(); ++y) {
            for (int x = inside.left(); x < inside.right(); ++x) {
                if (picture.pixel(x, y) != picture.pixel(inside.topLeft()))
                    return true;
            }
        }
        return false;
    }
    double readFrom() const {
        const QQuickItem* flickable = page()->parentItem()->parentItem();
        return flickable->property("contentY").toDouble();
    }
};

/// The page as it lies in docs/.
QString onDisk(const char* file) {
    std::ifstream stream(std::string(ZENKA_SOURCE_DIR) + "/docs/" + file);
    return QString::fromStdString({std::istreambuf_iterator<char>(stream), {}});
}

} // namespace

TEST_F(WindowGuide, eachPageIsShownWholeWithPicturesThatFitAndLinksThatLead) {
    static const QRegularExpression link(QStringLiteral(R"((!?)\[[^\]]*\]\(([^)]*)\))"));
    int pictures = 0;
    for (const ui::GuidePage& entry : ui::guidePages()) {
        SCOPED_TRACE(entry.file);
        open(entry.command);
        ASSERT_EQ(title(), QString::fromLatin1(entry.title));
        const QString source = onDisk(entry.file);
        ASSERT_FALSE(source.isEmpty());
        EXPECT_TRUE(source == ui::guideSource(entry)) << "the program holds another page";
        EXPECT_LE(page()->property("contentWidth").toDouble(), page()->width())
            << "something is cut at the right";
        EXPECT_GT(shown().size(), source.size() / 2) << "it is cut";
        const auto objects = shown().count(QChar::ObjectReplacementCharacter);
        qsizetype expected = 0;
        for (auto matches = link.globalMatch(source); matches.hasNext();) {
            const auto match = matches.next();
            const QString address = match.captured(2);
            SCOPED_TRACE(address.toStdString());
            const QString file = address.section(QLatin1Char('#'), 0, 0);
            const QString anchor = address.section(QLatin1Char('#'), 1);
            if (!match.captured(1).isEmpty()) {
                ++expected;
                EXPECT_FALSE(QImageReader(QStringLiteral(":/zenka/docs/") + address).size().isEmpty());
            } else if (file.isEmpty() || ui::guidePageOf(file)) {
                const QString target = file.isEmpty() ? source : onDisk(ui::guidePageOf(file)->file);
                EXPECT_TRUE(anchor.isEmpty() || !ui::headingAt(target, anchor).isEmpty());
            } else if (!address.startsWith(QLatin1String("https:"))) {
                EXPECT_FALSE(
                    page()->property("text").toString().contains(QStringLiteral("](%1)").arg(address)))
                    << "Help has no such page";
            }
        }
        EXPECT_EQ(objects, expected) << "pictures shown, pictures of the page";
        pictures += static_cast<int>(expected);
    }
    EXPECT_GT(pictures, 10);
}

TEST_F(WindowGuide, linksLeadToPagesHeadingsAndTheBrowserAndBackAgain) {
    open("openWizardGuide");
    EXPECT_EQ(window.named("guideBack"), nullptr);
    follow("script-language.md#moments");
    EXPECT_EQ(title(), QStringLiteral("Script Language Guide"));
    EXPECT_GT(readFrom(), 100) << "it is read from the heading on";
    EXPECT_TRUE(isDrawn());
    follow("cameras.md#what-grabs-a-camera-on-linux");
    EXPECT_TRUE(isDrawn());
    window.click(window.named("guideBack"));
    EXPECT_TRUE(isDrawn());
    follow("data-formats.md");
    follow("../../etc/passwd");
    EXPECT_EQ(title(), QStringLiteral("Script Language Guide")) << "Help has no such page";
    follow("https://zenka.example/");
    ASSERT_EQ(opened.size(), 1U);
    follow("file:///etc/passwd");
    EXPECT_EQ(opened.size(), 1U);
    window.click(window.named("guideBack"));
    EXPECT_EQ(title(), QStringLiteral("Script Wizard"));
    EXPECT_EQ(readFrom(), 0);
    EXPECT_EQ(window.named("guideBack"), nullptr);
}

TEST_F(WindowGuide, whatStandsInAFenceOfCodeIsNoLinkAndNoPicture) {
    const QString source =
        QStringLiteral("A [map](docs.md) and [more](cameras.md).\n![a map](images/map.png)\n"
                       "```\n![code](images/map.png) [map](docs.md)\n```\n");
    const auto made =
        ui::guideMarkdown(source, [](const QString& name) { return QStringLiteral("at:") + name; });
    EXPECT_EQ(made.toStdString(), "A map and [more](cameras.md).\n![a map](at:map.png)\n\n*a map*\n"
                                  "```\n![code](images/map.png) [map](docs.md)\n```\n");
}

TEST_F(WindowGuide, picturesAndLinksAreRedAtNightAndPicturesStayOutOfALiveRun) {
    window->theme().choose(QStringLiteral("Night"));
    open("openGuide");
    for (const char* place :
         {"#what-you-need", "#the-window-at-a-glance", "#reading-the-screen-in-the-sun-and-in-the-dark"}) {
        follow(place);
        EXPECT_GT(readFrom(), 100) << place;
        const test::ColdestPixel worst = test::coldestPixel(window.picture());
        EXPECT_EQ(worst.light, 0) << place << " at " << worst.at.x() << "," << worst.at.y() << ", ceiling 0";
    }
    rig.model.transport().armRealEclipseTiming(true);
    for (const ui::GuidePage& entry : ui::guidePages()) {
        open(entry.command);
        EXPECT_EQ(shown().count(QChar::ObjectReplacementCharacter), 0) << entry.file;
    }
}
