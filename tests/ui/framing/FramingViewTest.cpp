#include "ui/framing/FramingView.h"

#include "rig/shared/SettingsKeys.h"
#include "support/VirtualRig.h"
#include "ui/framing/FramingItem.h"

#include <QImage>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

using namespace zenka;
using BurstRole = ui::FramingBursts::Role;

namespace {

/// Zaragoza in 2026: the Sun sets towards the lower right.
struct Framing : testing::Test {
    test::VirtualRig rig;
    ui::FramingView view{rig.model, rig.machine.all, nullptr};

    double max() { return rig.model.site().contactTHours().at("MAX") * 3600; }
    void addSimulated(const char* label, const char* model) {
        rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera(model), label);
    }
    std::string frames(double from, int count, double step, const char* camera = "CAM1") {
        std::string script;
        for (int i = 0; i < count; ++i)
            script += rig.frameAt(from + i * step, camera);
        return script;
    }
    void type(ui::FramingView& into, const char* field, const char* text) {
        into.type(QString::fromLatin1(field), QString::fromUtf8(text));
        into.check();
    }
    static QString number(const ui::FramingView& of, const char* name) {
        for (const QVariant& row : of.numbers())
            if (row.toMap().value("name").toString() == QLatin1String(name))
                return row.toMap().value("value").toString();
        return {};
    }
    QString burst(int row, int role) {
        return view.bursts()->data(view.bursts()->index(row), role).toString();
    }

    /// A picture of what the view has; prints how long painting took.
    QImage picture(bool timed = false) {
        ui::Theme theme(rig.machine.settings, nullptr);
        QImage image(600, 400, QImage::Format_RGB32);
        QPainter painter(&image);
        for (int i = 0; i < 2; ++i) { // the corona is made once
            const auto begin = std::chrono::steady_clock::now();
            ui::paintFraming(painter, image.size(), view.scene(), ui::framingColors(theme),
                             ui::smallDigits(theme), corona);
            const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
            if (timed)
                std::printf("painting took %.2f ms%s\n", took.count(), i == 0 ? " with a new corona" : "");
        }
        return image;
    }
    painting::CoronaCache corona;
};

} // namespace

TEST_F(Framing, whatOneCanFrameIsListedAndThePlanNeedsNoBody) {
    auto& library = rig.model.library();
    const auto away = rig.addBody("CAM3");
    library.setLens(away->serial(), "180 mm");
    rig.model.roster().removeCamera(away->id());
    addSimulated("CAM1", "Z8");
    rig.load(frames(max(), 2, 1, "CAM1") + frames(max(), 2, 1, "CAM2") + frames(max(), 2, 1, "CAM3"));
    view.open();
    ASSERT_EQ(view.bodies().size(), 4) << view.bodies().join('|').toStdString();
    EXPECT_EQ(view.bodies()[0], "CAM1, Z8, simulated");
    EXPECT_TRUE(view.bodies()[1].startsWith("CAM3, ")) << view.bodies()[1].toStdString();
    EXPECT_TRUE(view.bodies()[1].endsWith(", not connected"));
    EXPECT_EQ(view.bodies()[2], "CAM2, no body yet");
    EXPECT_EQ(view.bodies()[3], "No body: a plan");
    EXPECT_EQ(view.sensors()[view.sensor()], "Of the body: Z8");
    for (const int body : {1, 2}) {
        view.setBody(body);
        EXPECT_EQ(view.bursts()->rowCount(), 1) << body;
    }
    view.setBody(1);
    EXPECT_EQ(view.texts()["focal"], "180") << "the lens that was noted";
    view.setBody(3);
    EXPECT_EQ(view.bursts()->rowCount(), 0);
    EXPECT_TRUE(view.burstsText().contains("pick one"));
    EXPECT_EQ(number(view, "Field of view"), "5.15° × 3.44°, pixels not known") << "400 mm, full frame";
}

TEST_F(Framing, theNumbersAreThoseOfTheDayTheLensAndTheSensor) {
    addSimulated("CAM1", "Z8");
    view.open();
    type(view, "focal", "500");
    // The Sun's radius was 946.9″ on that day: 2 · 500 mm · tan 946.9″ is 4.591 mm of 35.9 mm / 8256 pixels.
    EXPECT_TRUE(number(view, "The Sun").startsWith("1056 px across (4.6 mm), 19 %"))
        << number(view, "The Sun").toStdString();
    EXPECT_EQ(number(view, "Field of view"), "4.11° × 2.74°, 1.79″ a pixel");
    EXPECT_EQ(number(view, "Room"), "5.2 solar radii, 7.8 to the farther edges");
    // 15″ cos 14.8° a second past 1.79″: 8.1 px; a pixel takes 0.124 s
    EXPECT_EQ(number(view, "Longest shutter"), "1/10 s for 1.0 px; the Sun moves 8.1 px/s");
    EXPECT_EQ(view.verdict(), "✓ The corona fits to 4 radii.");
    view.setRadius(4);
    EXPECT_EQ(view.verdict(), "▲ The corona fits to 5.2 radii only; 6 are wanted.");
    view.setConverter(2);
    EXPECT_TRUE(number(view, "The Sun").startsWith("2112 px"));
    type(view, "focal", "1500");
    EXPECT_EQ(view.verdict(), "✖ The Sun does not fit into the frame.");
    EXPECT_EQ(view.verdictLevel(), 2);
    view.setTracking(true);
    EXPECT_EQ(number(view, "Longest shutter"), "the mount follows the Sun");
}

TEST_F(Framing, theSunLeavesAFixedFrameInALongBurstAndAMountKeepsItIn) {
    addSimulated("CAM1", "Z8");
    rig.load(frames(max() - 10, 21, 1) + frames(max() + 3000, 5, 50) + rig.frameAt(max() - 2000) +
             rig.frameAt(max() - 1800));
    view.open();
    type(view, "focal", "2000");
    view.setRadius(0);
    ASSERT_EQ(view.bursts()->rowCount(), 2);
    EXPECT_EQ(view.burstsText(), "2 frames of the script a minute or more apart from the others.");
    EXPECT_EQ(burst(0, BurstRole::factsRole), "21 frames in 20 s");
    EXPECT_EQ(burst(0, BurstRole::warningRole), "") << "the corona that does not fit is told once, above";
    EXPECT_TRUE(burst(0, BurstRole::pickedRole) == "true") << "the one around the maximum";
    // 14.5″ a second for 20 s over 0.449″ a pixel
    EXPECT_TRUE(QRegularExpression("^drift 64\\d px, 12 % .*, to the lower right$")
                    .match(burst(0, BurstRole::driftRole))
                    .hasMatch())
        << burst(0, BurstRole::driftRole).toStdString();
    EXPECT_EQ(burst(0, BurstRole::trailRole), "longest exposure 1/500 trails 0.1 px");
    EXPECT_TRUE(burst(1, BurstRole::warningRole).startsWith("✖ The Sun leaves the frame after "));
    EXPECT_TRUE(view.scene().lastHeld);
    const QImage early = picture();
    view.pickBurst(1);
    EXPECT_FALSE(view.scene().lastHeld);
    EXPECT_NE(picture(), early);

    view.setAim(1);
    EXPECT_EQ(burst(1, BurstRole::warningRole), "✖ The Sun is not whole in the frame at either end.");
    EXPECT_EQ(burst(0, BurstRole::warningRole), "");
    view.setTracking(true);
    EXPECT_EQ(burst(1, BurstRole::warningRole), "");
    EXPECT_TRUE(view.scene().path.empty());

    // A wider lens has room for the corona at first.
    view.setTracking(false);
    view.setAim(0);
    type(view, "focal", "600");
    view.setRadius(2);
    EXPECT_TRUE(
        burst(1, BurstRole::warningRole).startsWith("▲ The corona to 4 radii reaches the edge after "))
        << burst(1, BurstRole::warningRole).toStdString();
    EXPECT_EQ(burst(1, BurstRole::levelRole), "1");
}

TEST_F(Framing, totalityIsListedByItselfWhereTheBurstGoesOnBeyondIt) {
    addSimulated("CAM1", "Generic PTP");
    rig.load(frames(max() - 600, 61, 20));
    view.open();
    ASSERT_EQ(view.bursts()->rowCount(), 2);
    EXPECT_EQ(burst(0, BurstRole::titleRole), "Totality, C2 to C3");
    EXPECT_EQ(burst(0, BurstRole::factsRole), "5 frames in 80 s") << "of the 83.5 s that there are";
    EXPECT_EQ(burst(0, BurstRole::pickedRole), "true");
    EXPECT_EQ(burst(0, BurstRole::warningRole), "");
    EXPECT_EQ(burst(1, BurstRole::factsRole), "61 frames in 20 min 0 s");
    EXPECT_EQ(burst(1, BurstRole::trailRole), "longest exposure 1/500 trails 0″")
        << "the pixels are not known";
    rig.load(frames(max() - 20, 3, 20));
    EXPECT_EQ(view.bursts()->rowCount(), 1) << "the burst is in totality itself";
}

TEST_F(Framing, whatIsTypedIsTakenWhereItCanBeReadAndToldWhereNot) {
    view.open();
    type(view, "focal", "600,5");
    const QString before = number(view, "Field of view");
    EXPECT_EQ(before, "3.43° × 2.29°, pixels not known");
    for (const char* wrong : {"", "abc", "3", "5001", "nan", "1e9"}) {
        type(view, "focal", wrong);
        EXPECT_EQ(view.faults()["focal"], "A focal length is 4 to 5000 mm.") << wrong;
        EXPECT_EQ(number(view, "Field of view"), before) << wrong;
    }
    type(view, "focal", "600");
    EXPECT_TRUE(view.faults().isEmpty());
    view.nudge("focal", 1);
    EXPECT_EQ(view.texts()["focal"], "700");
    view.nudge("focal", -15);
    EXPECT_EQ(view.texts()["focal"], "50");
    type(view, "rotation", "−90");
    EXPECT_TRUE(view.faults().isEmpty()) << "the printed minus";

    view.setSensor(1);
    type(view, "ownWidth", "17.3");
    type(view, "ownHeight", "13");
    type(view, "ownWidthPx", "5184");
    EXPECT_TRUE(view.faults().contains("ownHeightPx")) << "one of the two says nothing";
    type(view, "ownHeightPx", "3888");
    EXPECT_TRUE(view.faults().isEmpty());
    EXPECT_TRUE(number(view, "Field of view").endsWith("″ a pixel"));
    view.setSensor(2);
    EXPECT_TRUE(number(view, "Field of view").endsWith("not known"));
}

TEST_F(Framing, theFramingStaysWithTheBodyAndTheLastChoiceIsThereAgain) {
    const auto body = rig.addBody("CAM1");
    addSimulated("CAM2", "Z9");
    view.open();
    type(view, "focal", "700");
    EXPECT_EQ(rig.model.library().find(body->serial())->framing->focalMm, 700);
    view.setBody(1);
    type(view, "focal", "85");
    view.setMoment(1);
    view.setAim(1);
    view.setTrail(3);
    view.type("focal", "90"); // and the sheet closes in the middle of it
    view.close();

    ui::FramingView next(rig.model, rig.machine.all, nullptr);
    next.open();
    EXPECT_EQ(next.bodies()[next.body()], "CAM2, Z9, simulated");
    EXPECT_EQ(next.texts()["focal"], "90");
    EXPECT_EQ(next.moments()[next.moment()], "C2");
    EXPECT_EQ(next.aim(), 1);
    EXPECT_EQ(next.trail(), 3);
    next.choose(QString::fromStdString(body->id()));
    EXPECT_EQ(next.texts()["focal"], "700");

    // A body that goes takes nothing of the others' with it.
    rig.model.roster().removeCamera(body->id());
    EXPECT_EQ(next.bodies()[next.body()].left(5), "CAM1,");
    for (const char* damaged : {"[]", "{\"radii\":\"x\",\"trail\":7,\"moment\":3}", "{"}) {
        rig.machine.settings.setText(rig::settingsKeys::framingChoice, damaged);
        ui::FramingView anew(rig.model, rig.machine.all, nullptr);
        anew.open();
        EXPECT_EQ(anew.body(), 0) << damaged;
        EXPECT_EQ(anew.radii()[anew.radius()], "4 solar radii");
        EXPECT_EQ(anew.moments()[anew.moment()], "MAX");
    }
}

TEST_F(Framing, aSiteWithoutTotalityHasTheMaximumInItsPlace) {
    addSimulated("CAM1", "Z8");
    view.open();
    view.setMoment(1);
    EXPECT_TRUE(view.scene().corona) << "at C2";
    EXPECT_EQ(view.aims()[1], "at mid-totality");
    rig.model.site().choose("2026-08-12", {.lat = 48.8566, .lon = 2.3522, .elev = 35, .label = "Paris"});
    rig.model.recompute();
    EXPECT_FALSE(view.moments().contains("C2"));
    EXPECT_EQ(view.moments()[view.moment()], "MAX");
    EXPECT_EQ(view.aims()[1], "at the maximum");
    EXPECT_FALSE(view.scene().corona);
    EXPECT_GT(view.scene().sky.separation, 0.05);
}

TEST_F(Framing, thePictureHoldsTheFrameToScaleAndIsPaintedQuickly) {
    addSimulated("CAM1", "Z8");
    rig.load(frames(max() - 60, 121, 1));
    view.open();
    const auto extent = [&] {
        const QColor frame = ui::framingColors(ui::Theme(rig.machine.settings, nullptr)).frame;
        const QImage image = picture();
        QRect found;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == frame)
                    found = found.united(QRect(x, y, 1, 1));
        return QSizeF(found.size());
    };
    const QSizeF landscape = extent();
    EXPECT_NEAR(landscape.width() / landscape.height(), 35.9 / 23.9, 0.03);
    type(view, "rotation", "90");
    const QSizeF portrait = extent();
    EXPECT_NEAR(portrait.height() / portrait.width(), 35.9 / 23.9, 0.03);
    type(view, "focal", "14");
    EXPECT_GT(extent().height(), 300) << "a wide lens fills the picture with its frame";
    type(view, "focal", "600");
    corona = {};
    picture(true);
}
