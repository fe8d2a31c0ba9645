#include "DrivenWindow.h"
#include "support/TimedCamera.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Theme.h"

#include <QTest>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using test::TimedCamera;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

/// Frames closer than this are dropped.
TimedCamera::Behave dropsUnder(double spacing) {
    return [spacing](double since, int) {
        return TimedCamera::Reply{.afterSec = 0.05, .ok = since > spacing - 1e-6};
    };
}

/// The gap profiler, the camera profiler, and what is said of drops when a run is over.
struct WindowProfilers : testing::Test {
    test::VirtualRig rig;
    test::DrivenWindow window{rig};
    rig::GapProfiler& profiler = rig.model.gapProfiler();

    void SetUp() override {
        window.open();
        window.dismissGreetings();
    }

    std::shared_ptr<TimedCamera> add(const TimedCamera::Behave& behave, const char* label = "CAM1") {
        auto body = std::make_shared<TimedCamera>(rig.machine.loop, rig.machine.time, behave);
        rig.model.roster().add(body);
        rig.model.roster().setLabelOfSerial(body->serial(), label);
        window.settle();
        return body;
    }
    void run(double seconds) {
        rig.run(seconds);
        window.settle();
    }
    void finish() {
        rig.machine.time.runUntil([&] { return !profiler.gapProfileRunning().get(); }, base::Seconds{2000});
        window.settle();
    }
    QString sheet() const { return window->app().sheet(); }
    std::string textOf(const char* name) const {
        const QQuickItem* item = window.named(name);
        return item ? item->property("text").toString().toStdString() : "nothing";
    }
    int count(const char* name) const {
        int items = 0;
        window.find([&](const QQuickItem& item) {
            items += item.objectName() == QLatin1String(name);
            return false;
        });
        return items;
    }
    /// What the rungs of the ladder are called, from the top.
    std::vector<std::string> rungs() const {
        std::vector<std::string> words;
        window.find([&](const QQuickItem& item) {
            if (item.objectName() == QLatin1String("rung"))
                words.push_back(test::nameOf(&item).toStdString());
            return false;
        });
        return words;
    }
    bool tabTo(const char* objectName) const {
        for (int i = 0; i < 40; ++i) {
            if (window.focused() && window.focused()->objectName() == QLatin1String(objectName))
                return true;
            window.key(Qt::Key_Tab);
        }
        return false;
    }
};

} // namespace

TEST_F(WindowProfilers, aBodyIsMeasuredByKeyAloneWithItsLadderVerdictFloorAndHistory) {
    const auto body = add(dropsUnder(0.4));
    window.key(Qt::Key_G, Qt::ControlModifier);
    ASSERT_EQ(sheet(), QStringLiteral("GapProfiler"));
    EXPECT_THAT(textOf("plan"), HasSubstr("CAM1 fires up to 66 frames"));
    EXPECT_TRUE(window.says(QStringLiteral("Nothing is stored for bodies of the model Z8")));
    EXPECT_EQ(window.focused(), window.named("startProfile"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(window.focused(), window.named("stopProfile"));

    run(7.5); // six frames a second apart, a rest, two of the next rung
    EXPECT_EQ(textOf("progress"), "Rung 2 of 11, a frame every 0.8 s: frame 3 of 6");
    ASSERT_EQ(rungs().size(), 11U);
    EXPECT_EQ(rungs()[0], "A frame every 1.0 s: 6 ok, answered in 50 ms, came every 1.00 s");
    EXPECT_EQ(rungs()[1], "A frame every 0.8 s: 2 ok, answered in 50 ms, came every 0.80 s, under way");
    EXPECT_EQ(rungs()[2], "A frame every 0.6 s: to come");
    EXPECT_TRUE(window.says(QStringLiteral("✓ clean")));

    window.key(Qt::Key_Escape);
    ASSERT_EQ(sheet(), QString());
    EXPECT_TRUE(profiler.gapProfileRunning().get()) << "goes on without its sheet";
    EXPECT_TRUE(window.says(QStringLiteral("its timing is being measured"))) << "on the card";
    window.click(window.named("showProfile"));
    ASSERT_EQ(sheet(), QStringLiteral("GapProfiler"));
    EXPECT_EQ(window.focused(), window.named("stopProfile"));
    EXPECT_EQ(rungs().size(), 11U);

    finish();
    EXPECT_EQ(textOf("verdict"), "Clean floor 0.4s · drops begin at 0.33s");
    ASSERT_EQ(rungs().size(), 6U) << "what was not tried is not shown any more";
    EXPECT_EQ(rungs()[5], "A frame every 0.33 s: 1 ok, 5 dropped, answered in 50 ms, came every 0.33 s");
    EXPECT_EQ(textOf("stored"), "Frames that change a setting: a frame every 0.4 s (new)");
    EXPECT_THAT(textOf("meaning"),
                StartsWith("In scripts leave 1.3 s or more between its frames (1300ms measured)."));
    EXPECT_THAT(textOf("past"),
                EndsWith("CAM1, quick floor, changing settings: Clean floor 0.4s · drops begin at 0.33s"));
    EXPECT_EQ(window.focused(), window.named("again"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(window.focused(), window.named("startProfile")) << "ready for the next one";
    EXPECT_TRUE(window.says(QStringLiteral("Stored for bodies of the model Z8")));
}

TEST_F(WindowProfilers, theLadderShowsTheFramesInTheirOrderAndTheSlowRungsOnceTheyAreTried) {
    add([](double, int number) {
        return number == 3   ? TimedCamera::Reply{.afterSec = 0.05, .ok = false}
               : number == 5 ? TimedCamera::Reply{.afterSec = 0.05, .ok = false, .responded = false}
                             : TimedCamera::Reply{.afterSec = 0.05};
    });
    window.key(Qt::Key_G, Qt::ControlModifier);
    window.key(Qt::Key_Return);
    run(6.5);
    QString signs;
    const QQuickItem* rung = window.named("rung"); // the last one
    ASSERT_NE(rung, nullptr);
    window.find([&](const QQuickItem& item) {
        if (item.property("sign").isValid() && signs.size() < 6)
            signs += item.property("sign").toString();
        return false;
    });
    EXPECT_EQ(signs, QStringLiteral("●●▲●?●"));
    EXPECT_EQ(textOf("progress"), "Slow rung 1 of 6, a frame every 1.5 s: frame 1 of 6");
    ASSERT_EQ(rungs().size(), 7U);
    EXPECT_TRUE(window.says(QStringLiteral("▲ 1 dropped, ? 1 silent")));
    window.key(Qt::Key_Return); // stop
    EXPECT_EQ(textOf("verdict"), "Profile stopped.");
    EXPECT_TRUE(window.says(QStringLiteral("Nothing is stored for bodies of the model Z8")));
}

TEST_F(WindowProfilers, theFrameCountsThatAreToldBeforehandAreThoseThatAreFired) {
    const auto body = add(dropsUnder(0));
    window.key(Qt::Key_G, Qt::ControlModifier);
    window.key(Qt::Key_Return);
    finish();
    EXPECT_EQ(body->shots.size(), 66U);
    window.key(Qt::Key_Return);
    for (const int frames : {40, 20}) {
        body->shots.clear();
        profiler.setGapProfileMode(rig::GapProfileMode::sustainedBurst);
        profiler.setGapBurstShutter(frames == 20 ? 1 : 0);
        window.settle();
        EXPECT_THAT(textOf("plan"), HasSubstr("CAM1 fires " + std::to_string(frames) + " frames"));
        window.key(Qt::Key_Return);
        finish();
        EXPECT_EQ(body->shots.size(), static_cast<std::size_t>(frames));
        EXPECT_EQ(count("burstFrame"), frames);
        window.key(Qt::Key_Return);
    }
}

TEST_F(WindowProfilers, aBurstIsSetUpByKeyAndAWrongCadenceIsToldBesideItsFieldAndKept) {
    const auto body = add([](double, int number) {
        return TimedCamera::Reply{.afterSec = 0.05, .ok = number < 8 || number > 9};
    });
    window.key(Qt::Key_G, Qt::ControlModifier);
    ASSERT_TRUE(tabTo("mode1"));
    window.key(Qt::Key_Space);
    ASSERT_TRUE(tabTo("longShutter"));
    window.key(Qt::Key_Down);
    EXPECT_DOUBLE_EQ(profiler.gapBurstShutter().get(), 0.25);
    window.key(Qt::Key_Up);
    EXPECT_EQ(profiler.gapBurstShutter().get(), 0);
    window->theme().choose(QStringLiteral("Night"));
    window.key(Qt::Key_Space);
    ASSERT_TRUE(window.find([](const QQuickItem& item) {
        return item.property("text").toString() == QStringLiteral("1.3 s");
    })) << "the list is open";
    EXPECT_EQ(test::coldestPixel(window.picture()).light, 0);
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QStringLiteral("GapProfiler")) << "Escape has closed the list alone";
    ASSERT_TRUE(tabTo("cadence"));
    window.type(QStringLiteral("0.6.1"));
    EXPECT_FALSE(window.says(QStringLiteral("✖ "))) << "not while it is being typed";
    window.key(Qt::Key_Return);
    EXPECT_TRUE(window.says(QStringLiteral("✖ This is no cadence.")));
    EXPECT_TRUE(body->shots.empty());
    window.key(Qt::Key_Escape);
    window.key(Qt::Key_G, Qt::ControlModifier);
    EXPECT_EQ(textOf("cadence"), "0.6.1") << "kept";
    ASSERT_TRUE(tabTo("cadence"));
    window.key(Qt::Key_End);
    window.key(Qt::Key_Backspace);
    window.key(Qt::Key_Backspace);
    EXPECT_FALSE(window.says(QStringLiteral("✖ "))) << "mended";
    window.key(Qt::Key_Return);
    run(1);
    EXPECT_EQ(textOf("progress"), "Frame 3 of 40, a frame every 0.6 s");
    finish();
    EXPECT_EQ(textOf("verdict"), "Buffer wall: 7 clean frames at 0.6s, then dropped (2 of 40).");
    EXPECT_EQ(textOf("burstText"),

              "● 7 clean · ▲ 2 missing, the first was frame 8 · a frame every 0.6 s (asked: 0.6 s)");
    EXPECT_EQ(textOf("stored"), "Before the buffer was full: 7 frames, a frame every 0.6 s (new)");
}

TEST_F(WindowProfilers, whatCannotBeMeasuredNowIsToldInASentence) {
    add(dropsUnder(0));
    window.key(Qt::Key_G, Qt::ControlModifier);
    rig.model.transport().togglePlay();
    window.key(Qt::Key_Return);
    EXPECT_EQ(textOf("refusal"),
              "✖ A run is on, and a profile would cost it frames. Measure when it is over.");
    rig.model.transport().togglePlay();
    window.key(Qt::Key_Return);
    EXPECT_TRUE(profiler.gapProfileRunning().get());
    rig.model.transport().togglePlay();
    window.settle();
    EXPECT_EQ(textOf("verdict"), "Profile stopped. A run has begun.");
    rig.model.transport().togglePlay();
    window.key(Qt::Key_Return);
    rig.model.roster().setDisconnected("timed", true);
    window.settle();
    EXPECT_TRUE(window.says(QStringLiteral("○ not connected")));
    window.key(Qt::Key_Return);
    EXPECT_EQ(textOf("refusal"), "✖ This camera is not connected.");
}

TEST_F(WindowProfilers, aBodyIsReadAndTakenAmongTheOperatorsOwn) {
    const auto body = add(dropsUnder(0));
    body->choices.shutter = {"Bulb", "30", "1/2", "1/8000"};
    body->choices.iso = {"Auto", "100", "25600"};
    body->choices.aperture = {"f/5.6", "f/22"};
    window.key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_EQ(sheet(), QStringLiteral("CameraProfiler"));
    window.key(Qt::Key_Return);
    EXPECT_THAT(textOf("progress"), StartsWith("Reading what CAM1 offers."));
    run(1);
    EXPECT_EQ(textOf("profileTitle"), "Z8, serial number SN-timed");
    EXPECT_TRUE(window.says(QStringLiteral("Shutter: 4 values, 1/8000 to 30")));
    EXPECT_TRUE(window.says(QStringLiteral("Bulb  30  1/2  1/8000")));
    EXPECT_TRUE(window.says(QStringLiteral("ISO: 3 values, 100 to 25600")));
    EXPECT_TRUE(window.says(QStringLiteral("Aperture: 2 values, f/5.6 to f/22")));
    EXPECT_FALSE(rig.model.library().find("SN-timed"));
    ASSERT_TRUE(tabTo("addToLibrary"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.library().find("SN-timed")->label, "CAM1");
    EXPECT_EQ(textOf("libraryText"), "Is among your cameras as CAM1.");
    EXPECT_EQ(window.focused(), window.named("profileLens"));
    window.type(QStringLiteral("500 mm"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(rig.model.library().find("SN-timed")->lens, "500 mm");

    body->choices = {};
    body->profileError = "The body is asleep.";
    ASSERT_TRUE(tabTo("readProfile"));
    window.key(Qt::Key_Return);
    run(1);
    EXPECT_EQ(textOf("profileError"), "✖ The body is asleep.");
    EXPECT_FALSE(window.says(QStringLiteral("Shutter: ")));
}

TEST_F(WindowProfilers, dropsAreExplainedAfterTheRunAndTheBodyIsMeasuredFromThere) {
    const auto refuse = [](double, int) { return TimedCamera::Reply{.afterSec = 0.05, .ok = false}; };
    add(refuse);
    rig.model.floors().saveMeasuredFloor("Z8", 1.5, false);
    const double first = rig.model.transport().clock() + 100;
    const auto play = [&] {
        rig.load(rig.frameAt(first) + rig.frameAt(first + 5) + rig.frameAt(first + 5.4));
        rig.playFrom(first - 2);
        run(20);
        EXPECT_EQ(sheet(), QString()) << "not while the run is on";
        run(25);
        ASSERT_FALSE(rig.model.transport().runActive());
    };
    play();
    ASSERT_EQ(sheet(), QStringLiteral("DropExplainer"));
    EXPECT_EQ(textOf("dropHeadline"), "▲ CAM1 dropped 3 of 3 frames.");
    EXPECT_EQ(textOf("dropReason"),
              "The script asked it for frames as close as 400 ms, and it needs 2.0 s from one to "
              "the next. About 79 % of frames so close drop.");
    window.key(Qt::Key_F1);
    ASSERT_EQ(sheet(), QStringLiteral("Keys"));
    window.key(Qt::Key_Escape);
    ASSERT_EQ(sheet(), QStringLiteral("DropExplainer")) << "reading the keys is no answer";
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QString());
    EXPECT_FALSE(rig.model.cadence().dropExplainer().get());

    play();
    ASSERT_TRUE(tabTo("measureBody"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(sheet(), QStringLiteral("GapProfiler"));
    EXPECT_THAT(textOf("plan"), HasSubstr("CAM1 fires"));
    EXPECT_FALSE(rig.model.cadence().dropExplainer().get());

    window.key(Qt::Key_Escape);
    int line = 0;
    QObject::connect(&window->app(), &ui::AppView::scriptLineWanted, [&](int wanted) { line = wanted; });
    play();
    ASSERT_TRUE(tabTo("editScript"));
    window.key(Qt::Key_Return);
    EXPECT_EQ(sheet(), QStringLiteral("Script"));
    EXPECT_EQ(line, 3) << "the second one of the two that are closest together";
}

TEST_F(WindowProfilers, anExplanationWaitsForAnOpenSheetAndGivesWayToARun) {
    add([](double, int) { return TimedCamera::Reply{.afterSec = 0.05, .ok = false}; });
    const double first = rig.model.transport().clock() + 100;
    rig.load(rig.frameAt(first) + rig.frameAt(first + 0.4));
    rig.playFrom(first - 2);
    window.key(Qt::Key_E, Qt::ControlModifier);
    run(40);
    ASSERT_TRUE(rig.model.cadence().dropExplainer().get());
    EXPECT_EQ(sheet(), QStringLiteral("Script")) << "somebody is typing there";
    window.key(Qt::Key_Escape);
    EXPECT_EQ(sheet(), QStringLiteral("DropExplainer"));
    window.key(Qt::Key_P, Qt::ControlModifier);
    ASSERT_TRUE(rig.model.transport().runActive());
    EXPECT_EQ(sheet(), QString());
    EXPECT_FALSE(window.says(QStringLiteral("After the run")));
    EXPECT_FALSE(rig.model.cadence().dropExplainer().get());
}
