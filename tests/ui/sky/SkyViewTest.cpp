#include "ui/sky/SkyView.h"

#include "base/CivilTime.h"
#include "support/VirtualRig.h"
#include "ui/sky/SkyItem.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <numbers>

using namespace zenka;
using ui::SkyScene;

namespace {

struct Sky : testing::Test {
    test::VirtualRig rig;
    ui::SkyView view{rig.model, rig.machine.all, nullptr};

    double at(const char* contact) { return rig.model.site().contactTHours().at(contact) * 3600; }

    void place(const char* eclipseId, double lat, double lon, const char* zone) {
        rig.model.site().choose(eclipseId,
                                {.lat = lat, .lon = lon, .elev = 0, .label = "here", .tzId = zone});
        rig.model.recompute();
    }

    double clockOfUtc(int year, int month, int day, int hour, int minute) {
        const absl::CivilSecond civil(year, month, day, hour, minute, 0);
        return rig.model.site().clockAt(base::fromAbsl(absl::FromCivil(civil, absl::UTCTimeZone())));
    }

    const SkyScene& sceneAt(double clock) {
        rig.model.transport().scrubTo(clock);
        return view.scene();
    }

    QImage picture(const SkyScene& scene, const char* themeName, const QSize& size = {420, 290}) {
        ui::Theme theme(rig.machine.settings, nullptr);
        theme.choose(QString::fromLatin1(themeName));
        QFont font(theme.digits());
        font.setPixelSize(theme.small());
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        painting::CoronaCache corona;
        ui::paintSky(painter, size, scene, ui::skyColors(theme), font, corona);
        return image;
    }
};

double luminance(const QImage& image, const QPointF& point) {
    return qGray(image.pixel(point.toPoint()));
}

} // namespace

// The expected places are of an ephemeris that shares nothing with Besselian elements: the Moon by the main
// periodic terms of Meeus, Astronomical Algorithms, chapter 47, the Sun by chapter 25, both brought to the
// observer's horizon. In solar radii, towards greater azimuth and towards the zenith.
TEST_F(Sky, theMoonStandsWhereAnEphemerisOfSunAndMoonPutsIt) {
    struct Place {
        const char* id;
        double lat, lon;
        int month, day, hour, minute;
        double right, up, moonRadius;
    };
    // setting, rising in the tropics, and in the north from the southern hemisphere
    const Place places[] = {{"2026-08-12", 41.65, -0.88, 8, 12, 17, 55, 1.2108, -0.4966, 1.0350},
                            {"2026-08-12", 41.65, -0.88, 8, 12, 19, 0, -1.1027, 0.3792, 1.0310},
                            {"2024-04-08", 23.2, -106.4, 4, 8, 17, 10, 1.5272, 0.3462, 1.0555},
                            {"2028-07-22", -33.87, 151.2, 7, 22, 3, 10, -0.9069, -0.9839, 1.0521}};
    const double ceiling = 0.02; // the short series is good to some arc seconds
    double largest = 0;
    for (const Place& expected : places) {
        place(expected.id, expected.lat, expected.lon, "UTC");
        const int year = std::stoi(expected.id);
        const SkyScene scene =
            sceneAt(clockOfUtc(year, expected.month, expected.day, expected.hour, expected.minute));
        largest = std::max({largest, std::abs(scene.moon().right - expected.right),
                            std::abs(scene.moon().up - expected.up),
                            std::abs(scene.moonRadius - expected.moonRadius)});
    }
    std::printf("Moon's place: largest error %.4f solar radii, ceiling %.4f\n", largest, ceiling);
    EXPECT_LT(largest, ceiling);
}

TEST_F(Sky, theCrescentEndsAtC2AndComesBackAtC3ToTheTenthOfASecond) {
    EXPECT_FALSE(sceneAt(at("C2") - 0.1).total());
    EXPECT_TRUE(sceneAt(at("C2") + 0.1).total());
    EXPECT_TRUE(sceneAt(at("C3") - 0.1).total());
    EXPECT_FALSE(sceneAt(at("C3") + 0.1).total());
    // the height goes on where the site's curve has ended
    EXPECT_GT(sceneAt(at("C1") - 600).altitudeDeg, sceneAt(at("C1")).altitudeDeg + 1);
}

TEST_F(Sky, wordsAndNumbersFollowTheContacts) {
    sceneAt(at("C1") - 60);
    EXPECT_EQ(view.phaseText(), "Before first contact");
    EXPECT_EQ(view.obscurationText(), "0.0 % covered");
    sceneAt(at("C2") - 3);
    EXPECT_EQ(view.phaseText(), "Partial, the Moon moves in");
    EXPECT_EQ(view.obscurationText(), "99.9 % covered") << "never 100 before totality";
    sceneAt(at("MAX"));
    EXPECT_EQ(view.phaseText(), "Totality");
    EXPECT_EQ(view.numbersText(), "magnitude 1.006 · 100.0 % covered · alt 5.9°  az 285°");
    EXPECT_EQ(view.noteText(), "");
    sceneAt(at("C3") + 3);
    EXPECT_EQ(view.phaseText(), "Partial, the Moon moves out");
    sceneAt(at("C4") - 1);
    EXPECT_EQ(view.noteText(), "Sun below the horizon.");
    EXPECT_TRUE(view.altitudeText().startsWith("alt −"));
}

TEST_F(Sky, aRingIsNoTotalityAndLeavesTheRingsPartUncovered) {
    place("2028-01-26", 39.47, -0.38, "Europe/Madrid");
    const SkyScene& scene = sceneAt(at("MAX"));
    EXPECT_TRUE(scene.ring());
    EXPECT_FALSE(scene.total());
    EXPECT_EQ(view.phaseText(), "Ring");
    EXPECT_NEAR(scene.obscuration(), scene.moonRadius * scene.moonRadius, 1e-9);
}

TEST_F(Sky, placesWithoutTotalityOrEclipseAreTold) {
    place("2026-08-12", 40.4168, -3.7038, "Europe/Madrid"); // Madrid, just south of the path
    EXPECT_TRUE(view.noteText().startsWith("No totality here: 9")) << view.noteText().toStdString();
    place("2026-08-12", -33.87, 151.2, "Australia/Sydney");
    EXPECT_EQ(view.phaseText(), "No eclipse here");
    EXPECT_TRUE(view.noteText().contains("Choose another site"));
}

TEST_F(Sky, thePictureShowsSunlightOnlyWhereTheMoonLeavesIt) {
    const QSizeF size(420, 290);
    const double radius = ui::sunRadiusIn(size);
    const QPointF center(210, 145);
    const auto limb = [&](double degrees, double distance) {
        const double angle = degrees * std::numbers::pi / 180;
        return center + QPointF(std::cos(angle), -std::sin(angle)) * radius * distance;
    };
    const SkyScene partial = sceneAt(at("C1") + 1200);
    const QImage crescent = picture(partial, "Dark");
    EXPECT_GT(luminance(crescent, limb(partial.directionDeg + 180, 0.8)), 150);
    EXPECT_LT(luminance(crescent, limb(partial.directionDeg, 0.8)), 60);

    const SkyScene total = sceneAt(at("MAX"));
    const QImage corona = picture(total, "Dark");
    EXPECT_LT(luminance(corona, center), 20);
    for (const double degrees : {20.0, 110.0, 200.0, 290.0})
        EXPECT_GT(luminance(corona, limb(degrees, 1.08)), 120) << degrees;

    const SkyScene diamond = sceneAt(at("C2") - 3);
    const QImage ring = picture(diamond, "Dark");
    EXPECT_GT(luminance(ring, limb(diamond.directionDeg + 180, 1)), 220);
    EXPECT_LT(luminance(ring, limb(diamond.directionDeg, 0.97)), 60);
}

TEST_F(Sky, theHorizonLiesAtItsTrueHeightBelowTheSun) {
    const QSizeF size(420, 290);
    EXPECT_DOUBLE_EQ(ui::horizonIn(size, 0), 145);
    // a Sun that stands its own radius high touches the horizon
    EXPECT_NEAR(ui::horizonIn(size, 959.63 / 3600), 145 + ui::sunRadiusIn(size), 1e-9);
}

TEST_F(Sky, atNightNoPixelIsGreenOrBlue) {
    for (const double clock : {at("C1") + 1200, at("C2") - 3, at("MAX"), at("C4") - 1150, at("C4") - 900}) {
        const QImage image = picture(sceneAt(clock), "Night");
        int others = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                others += qGreen(image.pixel(x, y)) + qBlue(image.pixel(x, y));
        }
        EXPECT_EQ(others, 0) << clock;
    }
}
