#include "DrivenWindow.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "support/TimedCamera.h"
#include "ui/Commands.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QTest>
#include <QUrl>
#include <absl/strings/str_format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using testing::HasSubstr;
using testing::StartsWith;
using Step = rig::AnalyzerState::Step;

namespace {

/// The Simulation Analyzer, with cards that are folders of this test's.
struct WindowAnalyzer : testing::Test {
    test::TempFolder disk;
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    std::vector<std::string> opened; ///< outside of the window
    std::vector<std::string> sent;   ///< the notes
    int images = 0;

    void SetUp() override {
        window.open();
        window.dismissGreetings();
        window->setOpenUrl([this](const QUrl& url) { opened.push_back(url.toLocalFile().toStdString()); });
    }

    rig::RunAnalyzer& analyzer() { return rig.model.analyzer(); }
    Step step() { return analyzer().state()->step; }
    QString sheet() const { return window->app().sheet(); }
    void run(double seconds) {
        rig.run(seconds);
        window.settle();
    }
    void expectSheet(const char* name, const char* why) const {
        EXPECT_EQ(sheet().toStdString(), name) << why;
    }

    /// Frames ten seconds apart, as the cards' images are.
    std::string script(int frames, const char* camera = "CAM1") {
        std::string lines;
        for (int i = 0; i < frames; ++i)
            lines += rig.frameAt(rig.model.transport().clock() + 100 + 10 * i, camera);
        return lines;
    }
    /// A folder with images that were taken from a minute of the day on. Not put in yet.
    std::filesystem::path card(const char* name, int frames, int minute = 20 * 60) {
        const std::filesystem::path volume = disk.path() / name;
        for (int i = 0; i < frames; ++i) {
            const std::string file = absl::StrFormat("DSC_%04d.NEF", ++images);
            test::writeFile(volume / "DCIM" / "100NCZ_8" / file, "image");
            const int second = minute * 60 + i * 10;
            rig.images.fields[file] = {.dateTimeOriginal =
                                           absl::StrFormat("2026:08:12 %02d:%02d:%02d", second / 3600,
                                                           second / 60 % 60, second % 60),
                                       .isoSpeedRatings = 200,
                                       .fNumber = 8,
                                       .exposureTime = 0.002,
                                       .model = "NIKON Z 8"};
        }
        return volume;
    }
    void plug(const std::filesystem::path& volume) {
        rig.volumes.plug(volume);
        run(0.1);
    }
    void pull() {
        rig.volumes.plugged.clear();
        rig.volumes.changed();
        run(0.1);
    }
    /// A rehearsal of three frames with a body that counts as real, and the seconds after it.
    void rehearse() {
        const auto body =
            std::make_shared<test::TimedCamera>(rig.machine.loop, rig.machine.time, [](double, int) {
                return test::TimedCamera::Reply{.afterSec = 0.05};
            });
        rig.model.roster().add(body);
        rig.model.roster().setLabelOfSerial(body->serial(), "CAM1");
        const double first = rig.model.transport().clock() + 100;
        rig.load(script(3));
        rig.playFrom(first - 2);
        run(30);
        expectSheet("", "not while the run is on");
        run(40);
        ASSERT_FALSE(rig.model.transport().runActive());
    }
    void byKey() {
        window.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
        run(0.1);
    }
    void enter() {
        window.key(Qt::Key_Return);
        run(0.1);
    }
    bool tabTo(const char* objectName) const {
        for (int i = 0; i < 20; ++i) {
            if (focus() == objectName)
                return true;
            window.key(Qt::Key_Tab);
        }
        return false;
    }
    std::string focus() const {
        return window.focused() ? window.focused()->objectName().toStdString() : "nothing";
    }
    std::string textOf(const char* name) const {
        const QQuickItem* item = window.named(name);
        return item ? item->property("text").toString().toStdString() : "nothing";
    }

    /// The sheet's texts and buttons stand in the window and clear of each other, and what has the keyboard
    /// can be seen.
    void expectOrder(const char* page) const {
        const QQuickItem* loader = window.named("sheetLoader");
        std::vector<const QQuickItem*> items;
        window.find([&](const QQuickItem& item) {
            const bool shows = item.inherits("QQuickAbstractButton") || item.inherits("QQuickTextEdit") ||
                               item.inherits("QQuickText") || item.objectName() == "analyzerBar";
            if (shows && !item.objectName().isEmpty() && item.height() > 0 && loader->isAncestorOf(&item))
                items.push_back(&item);
            return false;
        });
        EXPECT_GE(items.size(), 3U) << page;
        const QQuickItem* form = window.named("analyzerForm");
        ASSERT_NE(form, nullptr) << page;
        // What is scrolled away lies behind the rest.
        const auto shown = [&](const QQuickItem* item) {
            const QRectF place = window.placeOf(item);
            return form->isAncestorOf(item) ? place.intersected(window.placeOf(form)) : place;
        };
        for (std::size_t i = 0; i < items.size(); ++i) {
            const QRectF place = shown(items[i]);
            EXPECT_TRUE(place.left() >= 0 && place.right() <= window.screen().width()) << page;
            for (std::size_t k = i + 1; k < items.size(); ++k)
                EXPECT_FALSE(place.intersects(shown(items[k])))
                    << page << ": " << test::nameOf(items[i]).toStdString() << " over "
                    << test::nameOf(items[k]).toStdString();
        }
        const QQuickItem* focused = window.focused();
        ASSERT_NE(focused, nullptr) << page;
        EXPECT_TRUE(loader->isAncestorOf(focused)) << page;
        const QRectF room =
            form->isAncestorOf(focused) ? window.placeOf(form) : QRectF(QPointF(), window.screen().size());
        EXPECT_TRUE(room.contains(window.placeOf(focused))) << page << ": " << focus();
    }
};

} // namespace

TEST_F(WindowAnalyzer, aCardThatComesAfterARunIsOfferedByItselfAndReadByKeyAlone) {
    rehearse();
    ASSERT_EQ(step(), Step::message);
    expectSheet("Analyzer", "no card yet");
    EXPECT_EQ(textOf("analyzerSummary"), "3 frames fired, 0 dropped.");
    EXPECT_EQ(textOf("analyzerTitle"), "Run complete");
    EXPECT_EQ(focus(), "closeMessage");
    enter();
    expectSheet("", "read");

    plug(card("EOS_DIGITAL", 3));
    expectSheet("Analyzer", "a card after a run");
    EXPECT_EQ(textOf("analyzerTitle"), "Check what actually landed?");
    EXPECT_EQ(textOf("analyzerSummary"), "3 frames fired, 0 dropped.");
    EXPECT_EQ(focus(), "analyze");
    enter();
    ASSERT_EQ(step(), Step::verdict);
    EXPECT_EQ(textOf("verdictTitle"), "✓ Simulation Analyzer: PASS");
    EXPECT_THAT(textOf("verdictText"), StartsWith("3 landed · 0 dropped"));
    ASSERT_EQ(opened.size(), 1U) << "in the browser";
    EXPECT_EQ(opened[0], analyzer().state()->report);
    EXPECT_EQ(rig.files.count(".html"), 1);
    EXPECT_EQ(focus(), "keepLocal");
    ASSERT_TRUE(tabTo("openReport"));
    enter();
    EXPECT_EQ(opened.size(), 2U);
    window.key(Qt::Key_Escape);
    expectSheet("", "answered");
    EXPECT_EQ(step(), Step::idle);
    EXPECT_TRUE(rig.logged("report kept local (not sent)"));
}

TEST_F(WindowAnalyzer, notNowLeavesTheCardAloneAndTheNextOneIsOfferedAgain) {
    rehearse();
    window.key(Qt::Key_Escape);
    plug(card("ONE", 3));
    window.click(window.named("notNow"));
    run(5);
    expectSheet("", "not now");
    EXPECT_EQ(step(), Step::idle);
    EXPECT_TRUE(rig.images.asked.empty());
    pull();
    window.key(Qt::Key_E, Qt::ControlModifier);
    plug(card("TWO", 3));
    expectSheet("Script", "somebody is typing there");
    window.key(Qt::Key_F1);
    window.key(Qt::Key_Escape);
    expectSheet("Script", "still");
    window.key(Qt::Key_Escape);
    expectSheet("Analyzer", "now there is room");
    window.key(Qt::Key_F1);
    expectSheet("Keys", "over it");
    window.key(Qt::Key_Escape);
    expectSheet("Analyzer", "to read the keys is no answer");
    EXPECT_EQ(step(), Step::offer);
    window.key(Qt::Key_P, Qt::ControlModifier);
    run(0.1);
    ASSERT_TRUE(rig.model.transport().runActive());
    expectSheet("", "a run is to be seen");
    EXPECT_EQ(step(), Step::idle);
}

TEST(WindowAnalyzerPrompt, anOfferWaitsForAnOpenPrompt) {
    test::VirtualRig rig;
    test::DrivenWindow window(rig);
    window.open();
    window->app().closeSheet();
    ASSERT_EQ(window->app().prompt(), QStringLiteral("eclipseDay"));
    rig.model.analyzer().offerPostRunAnalyze();
    window.settle();
    EXPECT_EQ(window->app().sheet(), QString());
    window.click(window.named("promptAccept"));
    EXPECT_EQ(window->app().sheet(), QStringLiteral("Analyzer"));
    window.key(Qt::Key_Escape);
}

TEST_F(WindowAnalyzer, whatIsMissingIsToldAndAFolderMayTakeTheCardsPlace) {
    rig.load("");
    byKey();
    expectSheet("Analyzer", "asked for");
    EXPECT_EQ(textOf("analyzerTitle"), "No script loaded");
    EXPECT_EQ(window.named("tryAgain"), nullptr);
    byKey();
    EXPECT_EQ(textOf("analyzerTitle"), "No script loaded") << "asked again";
    enter();
    expectSheet("", "closed");

    rig.load(script(3));
    byKey();
    EXPECT_EQ(textOf("analyzerTitle"), "No SD card found");
    EXPECT_EQ(focus(), "tryAgain");
    enter();
    EXPECT_EQ(textOf("analyzerTitle"), "No SD card found");
    EXPECT_EQ(focus(), "tryAgain") << "the keyboard comes back";

    // A picker of its own in the dark.
    card("a copy of the card", 3);
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", QByteArray::fromStdString(disk.path().string()));
    window->theme().choose(QStringLiteral("Night"));
    window.settle();
    ASSERT_TRUE(tabTo("chooseFolder"));
    enter();
    const auto entry = [&](const char* name) {
        return window.find([&](const QQuickItem& item) {
            return item.property("fileName").toString() == QLatin1String(name) && item.width() > 0;
        });
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return entry("a copy of the card") != nullptr; }));
    QTest::qWait(30);
    EXPECT_EQ(test::coldestPixel(window.picture()).light, 0);
    window.key(Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([&] { return entry("DCIM") != nullptr; }));
    for (int i = 0; i < 5 && test::nameOf(window.focused()) != QLatin1String("Analyze this folder"); ++i)
        window.key(Qt::Key_Tab);
    window.key(Qt::Key_Return);
    qputenv("HOME", home);
    run(0.1);
    EXPECT_EQ(textOf("verdictTitle"), "✓ Simulation Analyzer: PASS");
    EXPECT_TRUE(rig.logged("reading “a copy of the card” for CAM1"));
    window.key(Qt::Key_Escape);
}

TEST_F(WindowAnalyzer, cardCameraAndRunAreAskedForAndTheNearestRunIsRecommended) {
    rig.load(script(4, "CAM1") + script(6, "CAM2"));
    const auto first = card("FIRST", 4, 19 * 60);
    for (int at : {18 * 60, 19 * 60 + 30, 20 * 60})
        card("SECOND", at == 19 * 60 + 30 ? 6 : 2, at);
    plug(first);
    plug(disk.path() / "SECOND");
    byKey();
    ASSERT_EQ(step(), Step::pickCard);
    EXPECT_EQ(textOf("choice1"), "SECOND");
    EXPECT_EQ(focus(), "choice0");
    window.key(Qt::Key_Down);
    EXPECT_EQ(focus(), "choice1");
    window.key(Qt::Key_Down);
    EXPECT_EQ(focus(), "choice1") << "the last one";
    enter();
    ASSERT_EQ(step(), Step::pickCamera);
    EXPECT_THAT(textOf("analyzerText"), HasSubstr("“NIKON Z 8”"));
    EXPECT_EQ(focus(), "choice0");
    window.click(window.named("choice1"));
    run(0.1);
    ASSERT_EQ(step(), Step::pickRun);
    EXPECT_EQ(focus(), "choice1");
    EXPECT_THAT(textOf("choice1"), HasSubstr("6 frames"));
    EXPECT_THAT(textOf("choice1"), HasSubstr("(recommended)"));
    EXPECT_EQ(textOf("choice0").find("(recommended)"), std::string::npos);
    enter();
    EXPECT_THAT(textOf("verdictText"), StartsWith("6 landed · 0 dropped"));
    window.key(Qt::Key_Escape);

    byKey();
    ASSERT_TRUE(tabTo("cancelAnalysis"));
    enter();
    expectSheet("", "cancelled");
    EXPECT_EQ(step(), Step::idle);
    run(1);
    EXPECT_EQ(rig.files.count(".html"), 1);
}

TEST_F(WindowAnalyzer, workTellsHowFarItIsAndEndsWithCancel) {
    rig.load(script(8));
    plug(card("CARD", 8));
    window.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    expectSheet("Analyzer", "at once");
    EXPECT_EQ(textOf("analyzerText"), "Looking for a card…");
    EXPECT_EQ(focus(), "cancelAnalysis");
    const auto until = [&](const std::function<bool(const rig::AnalyzerState&)>& there) {
        ASSERT_TRUE(
            rig.machine.time.runUntil([&] { return there(analyzer().state().get()); }, base::Seconds{1}));
        window.settle();
    };
    until([](const auto& state) { return state.title == "CARD"; });
    EXPECT_EQ(textOf("analyzerTitle"), "CARD");
    EXPECT_EQ(window.named("analyzerBar"), nullptr) << "nothing is known yet";
    until([](const auto& state) { return state.filesFound > 0; });
    EXPECT_EQ(textOf("analyzerProgress"), "8 of 8 files");
    const QQuickItem* bar = window.named("analyzerBar");
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(window.named("analyzerBarDone")->width(), bar->width() - 6);
    EXPECT_EQ(focus(), "cancelAnalysis");
    window.key(Qt::Key_Return);
    expectSheet("", "cancelled");
    run(5);
    expectSheet("", "and stays so");
    EXPECT_EQ(rig.files.count(".html"), 0);
    EXPECT_TRUE(opened.empty());

    // Nothing comes of a search for cards whose sheet is closed before it ends.
    window.key(Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    window.key(Qt::Key_Escape);
    expectSheet("", "closed");
    run(5);
    expectSheet("", "nobody waits for it");
    EXPECT_EQ(step(), Step::idle);
    EXPECT_EQ(rig.files.count(".html"), 0);
    byKey();
    EXPECT_EQ(step(), Step::verdict) << "the next one is wanted";
}

TEST_F(WindowAnalyzer, aNoteIsKeptWhileOneLooksElsewhereAndGoesWithTheReport) {
    analyzer().toSend().connect([this](const auto& outgoing) { sent.push_back(outgoing.note); });
    rig.load(script(6));
    plug(card("CARD", 3));
    byKey();
    ASSERT_EQ(step(), Step::verdict);
    EXPECT_EQ(textOf("verdictTitle"), "Simulation Analyzer: review");
    EXPECT_EQ(window.named("verdictTitle")->property("color").value<QColor>(), window->theme().warning());
    window.click(window.named("verdictText"));
    window.key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_THAT(window.named("verdictText")->property("selectedText").toString().toStdString(),
                StartsWith("3 landed · 3 dropped"));
    ASSERT_TRUE(tabTo("note"));
    window.type(QStringLiteral("new cable"));
    window.key(Qt::Key_Return);
    window.type(QStringLiteral("f 8"));
    byKey();
    expectSheet("Analyzer", "a verdict is read first");
    window.key(Qt::Key_F1);
    expectSheet("Keys", "from the text, too");
    window.key(Qt::Key_Escape);
    EXPECT_EQ(textOf("note"), "new cable\nf 8");
    ASSERT_TRUE(tabTo("openReport"));
    enter();
    EXPECT_EQ(opened.size(), 2U);
    EXPECT_EQ(textOf("note"), "new cable\nf 8");
    ASSERT_TRUE(tabTo("sendReport"));
    enter();
    expectSheet("", "sent");
    EXPECT_EQ(sent, std::vector<std::string>{"new cable\nf 8"});

    byKey();
    EXPECT_EQ(textOf("note"), "") << "of another report";
    ASSERT_TRUE(tabTo("keepLocal"));
    enter();
    expectSheet("", "kept");
    EXPECT_EQ(sent.size(), 1U);
}

TEST_F(WindowAnalyzer, aReportThatNobodyCanTakeOrNoDiskHoldsIsToldOf) {
    rig.load(script(3));
    plug(card("CARD", 3));
    rig.files.broken = true;
    byKey();
    ASSERT_EQ(step(), Step::verdict);
    EXPECT_THAT(textOf("verdictText"), HasSubstr("The report could not be written to the disk."));
    EXPECT_EQ(window.named("openReport"), nullptr);
    EXPECT_TRUE(opened.empty());
    EXPECT_THAT(textOf("nobodyToSendTo"), StartsWith("No service is set up"));
    EXPECT_FALSE(window.named("sendReport")->isEnabled());
    EXPECT_EQ(textOf("keepLocal"), "Close");
    enter();
    expectSheet("", "closed");
}

TEST_F(WindowAnalyzer, aCardShowsItselfInTheBarAndOpensTheAnalyzerByMouseAndKey) {
    window.screen().resize(1700, 860);
    rig.load(script(3));
    EXPECT_EQ(window.named("cardChip"), nullptr);
    plug(card("EOS_DIGITAL", 3));
    EXPECT_THAT(textOf("cardChip"), HasSubstr("Card EOS_DIGITAL"));
    window.screen().resize(960, 440);
    QTest::qWait(30);
    EXPECT_THAT(textOf("cardChip"), testing::EndsWith(" Card"));
    window.click(window.named("cardChip"));
    run(0.1);
    EXPECT_EQ(step(), Step::verdict);
    window.key(Qt::Key_Escape);
    plug(card("LUMIX", 3, 18 * 60));
    EXPECT_THAT(textOf("cardChip"), HasSubstr("2 cards"));
    window.named("cardChip")->forceActiveFocus(Qt::TabFocusReason);
    enter();
    EXPECT_EQ(step(), Step::pickCard);
    window.key(Qt::Key_Escape);
    pull();
    EXPECT_EQ(window.named("cardChip"), nullptr);
}

TEST_F(WindowAnalyzer, nothingOpensInALiveRun) {
    rehearse();
    window.key(Qt::Key_Escape);
    window.key(Qt::Key_E, Qt::ControlModifier);
    plug(card("CARD", 3));
    ASSERT_EQ(step(), Step::offer) << "behind the script";
    rig.model.transport().armRealEclipseTiming(true);
    run(0.5);
    ASSERT_TRUE(rig.model.transport().live());
    window.key(Qt::Key_Escape);
    run(5);
    expectSheet("", "not the offer from before");
    pull();
    plug(card("ANOTHER", 3));
    EXPECT_EQ(window.named("cardChip"), nullptr);
    byKey();
    EXPECT_FALSE(window->commands().isEnabled(QStringLiteral("analyzer")));
    expectSheet("", "nor when asked for");
    rig.model.transport().useSimulatedTiming();
    run(0.1);
    expectSheet("", "nor what came up meanwhile");
    EXPECT_NE(window.named("cardChip"), nullptr);

    byKey();
    ASSERT_EQ(step(), Step::verdict);
    rig.model.transport().armRealEclipseTiming(true);
    window.settle();
    expectSheet("", "a live run is to be seen");
    EXPECT_EQ(step(), Step::idle);
}

TEST_F(WindowAnalyzer, everyPageIsWholeInTheSmallestWindow) {
    window.screen().resize(960, 440);
    rehearse();
    expectOrder("run complete");
    window.key(Qt::Key_Escape);
    for (int at = 0; at < 20; ++at)
        card("CARD", at == 14 ? 3 : 1, at * 30);
    plug(disk.path() / "CARD");
    expectOrder("offer");
    pull();
    window.key(Qt::Key_Escape);
    byKey();
    expectOrder("no card");
    rig.volumes.plugged = {disk.path() / "CARD"};
    enter();
    ASSERT_EQ(step(), Step::pickRun);
    QTest::qWait(50);
    EXPECT_EQ(focus(), "choice14");
    expectOrder("runs");
    window.key(Qt::Key_End);
    EXPECT_EQ(focus(), "choice19");
    expectOrder("the last run");
    window.key(Qt::Key_Home);
    expectOrder("the first run");
    enter();
    QTest::qWait(50);
    ASSERT_EQ(step(), Step::verdict);
    expectOrder("verdict");
    ASSERT_TRUE(tabTo("note"));
    expectOrder("note");
}
