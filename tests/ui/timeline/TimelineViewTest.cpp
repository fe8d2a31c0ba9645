#include "ui/timeline/TimelineView.h"

#include "base/CivilTime.h"
#include "support/VirtualRig.h"
#include "ui/timeline/TimelineAxis.h"
#include "ui/timeline/TimelineItem.h"
#include "ui/timeline/TimelinePainter.h"

#include <QCoreApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMouseEvent>
#include <gmock/gmock.h>

using namespace zenka;
using testing::ElementsAre;
using ui::FrameState;
using ui::TimelineLane;
using ui::TimelineLayout;
using ui::TimelineRange;

namespace {

struct Timeline : testing::Test {
    test::VirtualRig rig;
    ui::TimelineView view{rig.model, rig.machine.all, nullptr};
    std::vector<int> clickedLines;

    Timeline() {
        QObject::connect(&view, &ui::TimelineView::captureClicked,
                         [this](int line) { clickedLines.push_back(line); });
    }

    std::vector<std::string> labels() const {
        std::vector<std::string> labels;
        for (const TimelineLane& lane : view.lanes())
            labels.push_back(lane.label);
        return labels;
    }

    FrameState state(std::size_t lane, std::size_t frame) const {
        return view.lanes()[lane].stateAt(frame, view.playhead());
    }

    TimelineLayout layout() const {
        return {.width = 1100,
                .height = 200,
                .labelWidth = 100,
                .contactsHeight = 20,
                .axisHeight = 30,
                .lanes = view.lanes().size(),
                .range = view.range()};
    }

    /// Sends events to an item as the window would.
    struct Hands {
        ui::Theme theme;
        ui::TimelineItem item;

        explicit Hands(Timeline& test) : theme(test.rig.machine.settings, nullptr) {
            item.setView(&test.view);
            item.setColors(&theme);
            item.setSize(QSizeF(1100, 160));
        }
        TimelineLayout layout() const { return ui::timelineLayout(*item.view(), theme, item.size(), false); }
        void mouse(QEvent::Type type, const QPointF& at) {
            const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
            const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
            QMouseEvent event(type, at, at, button, buttons, Qt::NoModifier);
            QCoreApplication::sendEvent(&item, &event);
        }
        void click(const QPointF& at) {
            mouse(QEvent::MouseButtonPress, at);
            mouse(QEvent::MouseButtonRelease, at);
        }
        void drag(const QPointF& from, const QPointF& to) {
            mouse(QEvent::MouseButtonPress, from);
            mouse(QEvent::MouseMove, to);
            mouse(QEvent::MouseButtonRelease, to);
        }
        void key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
            QKeyEvent event(QEvent::KeyPress, key, modifiers);
            QCoreApplication::sendEvent(&item, &event);
        }
    };
};

} // namespace

TEST_F(Timeline, scriptCamerasComeFirstThenBodiesWithoutShotsThenTheCues) {
    rig.addBody("CAM2");
    rig.addBody("A spare body");
    rig.load(rig.frameAt(0, "CAM2") + rig.frameAt(10, "CAM1") + "PLAY,MAX,+,0, , , , , , , , ,Maximum\n");
    EXPECT_THAT(labels(), ElementsAre("CAM1", "CAM2", "A spare body", "cues"));
    using Kind = TimelineLane::Kind;
    EXPECT_EQ(view.lanes()[0].kind, Kind::missing);
    EXPECT_EQ(view.lanes()[1].kind, Kind::script);
    EXPECT_EQ(view.lanes()[2].kind, Kind::unused);
    EXPECT_EQ(view.lanes()[3].kind, Kind::cues);
    rig.addBody("CAM1");
    EXPECT_EQ(view.lanes()[0].kind, Kind::script) << "a body that comes is seen at once";
}

TEST_F(Timeline, lanesShareTheRoomAndAPointFindsTheNearestFrameOfItsLane) {
    rig.load(rig.frameAt(0, "CAM1") + rig.frameAt(100, "CAM1") + rig.frameAt(0, "CAM2"));
    const TimelineLayout at = layout();
    EXPECT_EQ(at.laneHeight(), 52) << "two lanes do not grow without end";
    EXPECT_EQ(at.laneTop(1), 72);
    EXPECT_EQ(at.laneAt(71.9), 0U);
    EXPECT_EQ(at.laneAt(72), 1U);
    EXPECT_FALSE(at.laneAt(19.9));
    EXPECT_FALSE(at.laneAt(124));
    EXPECT_NEAR(at.clockAt(at.xOf(1234.5)), 1234.5, 1e-9);
    const double x = at.xOf(100);
    EXPECT_EQ(ui::frameAt(at, view.lanes(), x + 5, 30, 6), (ui::FrameRef{0, 1}));
    EXPECT_FALSE(ui::frameAt(at, view.lanes(), x + 40, 30, 6)) << "too far off";
    EXPECT_EQ(ui::frameAt(at, view.lanes(), at.xOf(0) - 3, 80, 6), (ui::FrameRef{1, 0}));
}

TEST_F(Timeline, framesOfOnePixelShowTheirWorstStateAndThoseOutOfSightCostNothing) {
    TimelineLane lane{.offsets = {-5, 0, 0.1, 0.2, 50, 200},
                      .rows = {0, 1, 2, 3, 4, 5},
                      .results = {FrameState::fired, FrameState::fired, FrameState::dropped,
                                  FrameState::coming, FrameState::coming, FrameState::coming}};
    const TimelineLayout at{.width = 200, .labelWidth = 100, .lanes = 1, .range = {.from = 0, .to = 100}};
    std::vector<ui::FrameBin> bins;
    ui::binFrames(at, lane, 40, bins);
    EXPECT_THAT(bins, ElementsAre(ui::FrameBin{100, FrameState::dropped, 3},
                                  ui::FrameBin{150, FrameState::coming, 1}));
    ui::binFrames(at, lane, 60, bins);
    EXPECT_EQ(bins[1].state, FrameState::past);
}

TEST_F(Timeline, zoomingKeepsThePlayheadInItsPlaceAndStopsAtTheWholeRun) {
    rig.model.transport().scrubTo(500);
    const TimelineRange whole = view.range();
    EXPECT_TRUE(view.wholeShown());
    const double place = (500 - whole.from) / whole.span();
    view.zoom(0.1);
    EXPECT_NEAR(view.range().span(), whole.span() / 10, 1e-6);
    EXPECT_NEAR((500 - view.range().from) / view.range().span(), place, 1e-9);
    for (int i = 0; i < 40; ++i)
        view.zoomIn();
    EXPECT_DOUBLE_EQ(view.range().span(), ui::shortestSpan);
    view.pan(-100000);
    EXPECT_DOUBLE_EQ(view.range().from, whole.from);
    for (int i = 0; i < 40; ++i)
        view.zoomOut();
    EXPECT_EQ(view.range(), whole);
}

TEST_F(Timeline, thePageTurnsWhenThePlayheadLeavesItAndNotWhenItWasElsewhere) {
    rig.playFrom(0);
    view.zoom(0.001);
    const double span = view.range().span();
    ASSERT_LT(span, 20);
    rig.run(30);
    EXPECT_TRUE(view.range().contains(view.playhead()));
    EXPECT_NEAR(view.range().span(), span, 1e-9);
    view.pan(50); // looks ahead
    const TimelineRange ahead = view.range();
    rig.run(30);
    EXPECT_EQ(view.range(), ahead);
}

TEST_F(Timeline, aRunLeavesItsMarksAndMovingBackTakesThemOffWhatIsToComeAgain) {
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(20) + rig.frameAt(30) + rig.frameAt(40) +
             rig.frameAt(20.5, "NOBODY"));
    body->outcomes = {{.ok = true, .responded = true}, test::refusal()};
    rig.playFrom(15);
    EXPECT_EQ(state(0, 0), FrameState::past) << "jumped over";
    rig.run(17);
    EXPECT_EQ(state(0, 0), FrameState::past);
    EXPECT_EQ(state(0, 1), FrameState::fired);
    EXPECT_EQ(state(0, 2), FrameState::dropped);
    EXPECT_EQ(state(0, 3), FrameState::coming);
    EXPECT_EQ(state(1, 0), FrameState::noCamera);
    rig.model.transport().scrubTo(25);
    EXPECT_EQ(state(0, 1), FrameState::fired);
    EXPECT_EQ(state(0, 2), FrameState::coming);
    rig.load(rig.frameAt(10) + rig.frameAt(20));
    EXPECT_EQ(state(0, 1), FrameState::past) << "another script has no results yet";
}

TEST_F(Timeline, framesGivenUpAfterASleepAreMarkedSkipped) {
    rig.addBody("CAM1");
    rig.model.transport().armRealEclipseTiming(true);
    const double now = rig.model.transport().clockNow();
    rig.load(rig.frameAt(now + 10) + rig.frameAt(now + 20) + rig.frameAt(now + 300));
    rig.run(1);
    rig.machine.time.sleepFor(base::Seconds{60});
    rig.run(1);
    EXPECT_EQ(state(0, 0), FrameState::skipped);
    EXPECT_EQ(state(0, 1), FrameState::fired) << "the newest goes out late";
    EXPECT_EQ(state(0, 2), FrameState::coming);
}

TEST_F(Timeline, draggingMovesTheSimulatedClockAndNeverALiveOne) {
    rig.addBody("CAM1");
    rig.load(rig.frameAt(0));
    Hands hands(*this);
    const double wanted = hands.layout().clockAt(700);
    hands.drag({300, 60}, {700, 60});
    EXPECT_NEAR(rig.model.transport().clock(), wanted, 1e-6);
    hands.drag({700, 60}, {5000, 60});
    EXPECT_DOUBLE_EQ(rig.model.transport().clock(), view.all().to) << "held to the timeline";

    rig.model.transport().armRealEclipseTiming(true);
    const double live = rig.model.transport().clock();
    hands.drag({300, 60}, {700, 60});
    EXPECT_DOUBLE_EQ(rig.model.transport().clock(), live);
    EXPECT_TRUE(view.markText().startsWith("Live timing")) << view.markText().toStdString();
}

TEST_F(Timeline, aClickOnAFrameTellsItsScriptLineAndDoesNotMoveTheClock) {
    rig.addBody("CAM1");
    rig.load("# a comment\n" + rig.frameAt(100) + rig.frameAt(2000));
    Hands hands(*this);
    const TimelineLayout at = hands.layout();
    const double before = rig.model.transport().clock();
    hands.click({at.xOf(2000) + 2, at.laneTop(0) + 5});
    EXPECT_THAT(clickedLines, ElementsAre(3));
    EXPECT_DOUBLE_EQ(rig.model.transport().clock(), before);
    EXPECT_TRUE(view.markText().contains("1/500 f/8 ISO 200 · frame · coming"))
        << view.markText().toStdString();
    EXPECT_TRUE(view.markText().startsWith(QString::fromStdString(rig.model.site().fmtClock(2000)) + "."))
        << "time at the site";
}

TEST_F(Timeline, theKeyboardAloneChoosesOpensAndGoesToAFrame) {
    rig.addBody("CAM1");
    rig.load(rig.frameAt(100) + rig.frameAt(200) + rig.frameAt(300) + rig.frameAt(210, "CAM2"));
    rig.model.transport().scrubTo(190);
    Hands hands(*this);
    hands.key(Qt::Key_Right); // the one nearest to the clock
    hands.key(Qt::Key_Return);
    hands.key(Qt::Key_Right);
    hands.key(Qt::Key_Right); // there is no further one
    hands.key(Qt::Key_Enter, Qt::KeypadModifier);
    hands.key(Qt::Key_Home);
    hands.key(Qt::Key_Return);
    hands.key(Qt::Key_Right);
    hands.key(Qt::Key_Down);
    hands.key(Qt::Key_Return);
    EXPECT_THAT(clickedLines, ElementsAre(2, 3, 1, 4));
    hands.key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_NEAR(rig.model.transport().clock(), 210, 1e-6);
    hands.key(Qt::Key_Plus);
    EXPECT_FALSE(view.wholeShown());
    hands.key(Qt::Key_0);
    EXPECT_TRUE(view.wholeShown());
}

TEST_F(Timeline, theChosenFrameComesIntoSight) {
    rig.load(rig.frameAt(-1000) + rig.frameAt(3000));
    rig.model.transport().scrubTo(-1000);
    view.zoom(0.01);
    view.step(0);
    view.step(1);
    EXPECT_TRUE(view.range().contains(3000));
}

TEST(TimelineAxis, ticksAreRoundTimesOfDayAtTheSiteAtEveryZoom) {
    // half an hour off, so that round hours of UTC are none here
    const absl::TimeZone adelaide = base::timeZoneOrUtc("Australia/Adelaide");
    const double wall = base::instantOf(absl::CivilSecond(2028, 7, 22, 11, 58, 30), adelaide).epochSec;
    const auto labels = [&](double span) {
        std::vector<std::string> texts;
        double lastClock = -1e9;
        for (const auto& tick : ui::timelineTicks({.from = 0, .to = span}, 1200, 100, adelaide, wall)) {
            EXPECT_GE((tick.clock - lastClock) / span * 1200, 100) << "labels touch";
            lastClock = tick.clock;
            texts.push_back(tick.label);
        }
        EXPECT_GE(texts.size(), 3U) << span;
        return texts;
    };
    EXPECT_EQ(labels(4 * 3600.0).front(), "12:00");
    EXPECT_EQ(labels(600).front(), "11:59");
    EXPECT_EQ(labels(60)[1], "11:58:35");
    EXPECT_THAT(labels(4).at(1), "11:58:30.5");
    EXPECT_EQ(labels(3 * 86400.0).front(), "07-22 12:00");
}

TEST_F(Timeline, atNightNoPixelIsGreenOrBlue) {
    rig.addBody("CAM1");
    rig.addBody("spare");
    rig.load(rig.frameAt(0) + rig.frameAt(50) + rig.frameAt(60, "NOBODY") +
             "PLAY,MAX,+,0, , , , , , , , ,Maximum\n");
    rig.playFrom(-1);
    rig.run(10);
    ui::Theme theme(rig.machine.settings, nullptr);
    theme.choose("Night");
    for (const bool compact : {false, true}) {
        QImage image(900, 160, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        ui::paintTimeline(painter, view, ui::timelineLayout(view, theme, image.size(), compact), theme);
        int reds = 0;
        int others = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                reds += qRed(image.pixel(x, y)) > 100;
                others += qGreen(image.pixel(x, y)) + qBlue(image.pixel(x, y));
            }
        }
        EXPECT_GT(reds, 100);
        EXPECT_EQ(others, 0);
    }
}
