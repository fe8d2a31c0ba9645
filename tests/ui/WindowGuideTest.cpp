// The pages of Help: what they show and where their links lead.
#include "DrivenWindow.h"
#include "ui/AppView.h"
#include "ui/Commands.h"
#include "ui/GuidePages.h"
#include "ui/Theme.h"

#include <QFile>
#include <QImageReader>
#include <QRegularExpression>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdio>
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
        EXPECT_EQ(source, ui::guideSource(entry));
        EXPECT_LE(page()->property("contentWidth").toDouble(), page()->width());
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
    std::printf("%d pictures\n", pictures);
}

TEST_F(WindowGuide, linksLeadToPagesHeadingsAndTheBrowserAndBackAgain) {
    open("openWizardGuide");
    EXPECT_EQ(window.named("guideBack"), nullptr);
    follow("script-language.md#moments");
    EXPECT_EQ(title(), QStringLiteral("Script Language Guide"));
    EXPECT_GT(readFrom(), 100) << "it is read from the heading on";
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

TEST_F(WindowGuide, aPictureIsNoWiderThanItsRoomAndAbsentFromALiveRun) {
    const QString source =
        QStringLiteral("A [map](docs.md) and [more](cameras.md).\n![a \"map\"](images/map.png)\n"
                       "```\n![code](images/map.png)\n```\n");
    const auto made = ui::guideMarkdown(source, [](const QString& name) {
        return ui::GuidePicture{.address = QStringLiteral("image://guide/") + name, .size = {890, 500}};
    });
    EXPECT_EQ(made.toStdString(),
              "A map and [more](cameras.md).\n"
              "<img src=\"image://guide/map.png\" alt=\"a &quot;map&quot;\" width=\"890\" "
              "height=\"500\"/>\n\n*a \"map\"*\n"
              "```\n![code](images/map.png)\n```\n");
    rig.model.transport().armRealEclipseTiming(true);
    for (const ui::GuidePage& entry : ui::guidePages()) {
        open(entry.command);
        EXPECT_EQ(shown().count(QChar::ObjectReplacementCharacter), 0) << entry.file;
    }
}
