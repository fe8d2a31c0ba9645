#include "eclipse/SkyCurve.h"

#include "Records.h"
#include "eclipse/Catalog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zenka::eclipse {
namespace {

TEST(SkyCurve, spansTheWholeEclipseInEvenSteps) {
    const Eclipse eclipse = Catalog::eclipse("2024-04-08");
    const Observer site{.lat = 37.7273, .lon = -89.2168, .elev = 121};
    const auto seen = eclipse.localCircumstances(site);
    const double start = seen.event("C1")->tHours;
    const double end = seen.event("C4")->tHours;
    const auto curve = sampleCurve(eclipse, site, start, end);
    ASSERT_EQ(curve.size(), 241u);
    EXPECT_EQ(curve.front().t, start * 3600);
    EXPECT_EQ(curve.back().t, end * 3600);
    EXPECT_NEAR(curve[60].t, (start + (end - start) / 4) * 3600, 1e-9);
    for (const ViewSample& contact : {curve.front(), curve.back()}) {
        EXPECT_NEAR(contact.sep, 1 + contact.moonR, 1e-6); // the discs touch
        EXPECT_NEAR(contact.coverage, 0, 1e-6);
        EXPECT_NEAR(contact.mag, 0, 1e-6);
    }
    const auto deepest = std::ranges::max_element(curve, {}, &ViewSample::mag);
    EXPECT_NEAR(deepest->t / 3600, seen.event("MAX")->tHours, (end - start) / 240);
    EXPECT_EQ(deepest->coverage, 1);
    EXPECT_GT(deepest->moonR, 1.04);
    EXPECT_EQ(deepest->alt, eclipse.geometry(deepest->t / 3600, site).altDeg);
}

TEST(SkyCurve, theMoonsDirectionIsThatOnTheObserversSky) {
    const auto angleAt = [](EclipseRecord rec, const Observer& site) {
        return sampleCurve(Eclipse(rec), site, 0, 1).front().ang;
    };
    EclipseRecord rec = testing::standingStill();
    const Observer north{.lat = 40}; // sees the Sun in the south, upright
    const double v0 = -Eclipse(rec).geometry(0, north).v;
    rec.y[0] = v0 + 0.1; // the Moon's centre is north of the Sun's
    EXPECT_NEAR(angleAt(rec, north), 90, 1e-9);
    rec.y[0] = v0;
    rec.x[0] = 0.1; // east, which is on the left when one looks south
    EXPECT_NEAR(std::abs(angleAt(rec, north)), 180, 1e-9);
    // on the equator with the Sun rising in the east, north is on the left
    const Observer morning{.lat = 0, .lon = -80};
    rec = testing::standingStill();
    rec.x[0] = -Eclipse(rec).geometry(0, morning).u + Eclipse(rec).rec.x[0];
    rec.y[0] = 0.1;
    EXPECT_NEAR(std::abs(angleAt(rec, morning)), 180, 1e-9);
}

TEST(SkyCurve, anAbsentSunDiscLeavesTheSeparationAtNothing) {
    EclipseRecord rec = testing::standingStill();
    rec.l1[0] = 0.005;
    const ViewSample sample = sampleCurve(Eclipse(rec), {}, 1, 2).front();
    EXPECT_EQ(sample.sep, 0);
    EXPECT_EQ(sample.moonR, 1);
    EXPECT_EQ(sample.coverage, 0);
}

TEST(SampleAt, interpolatesBetweenNeighboursAndHoldsTheEnds) {
    const std::vector<ViewSample> curve = {
        {.t = 0, .coverage = 0, .alt = 10, .az = 100, .sep = 2, .moonR = 1.0, .ang = 0, .mag = 0},
        {.t = 10, .coverage = 0.4, .alt = 20, .az = 110, .sep = 1, .moonR = 1.2, .ang = 30, .mag = 0.5},
        {.t = 20, .coverage = 0.8, .alt = 30, .az = 130, .sep = 0, .moonR = 1.4, .ang = 60, .mag = 1.0}};
    EXPECT_FALSE(sampleAt({}, 5));
    EXPECT_EQ(sampleAt(curve, -1), curve.front());
    EXPECT_EQ(sampleAt(curve, 20), curve.back());
    EXPECT_EQ(sampleAt(curve, 10), curve[1]);
    const ViewSample between = *sampleAt(curve, 15);
    EXPECT_EQ(between.t, 15);
    EXPECT_DOUBLE_EQ(between.coverage, 0.6);
    EXPECT_DOUBLE_EQ(between.alt, 25);
    EXPECT_DOUBLE_EQ(between.az, 120);
    EXPECT_DOUBLE_EQ(between.sep, 0.5);
    EXPECT_DOUBLE_EQ(between.moonR, 1.3);
    EXPECT_DOUBLE_EQ(between.ang, 45);
    EXPECT_DOUBLE_EQ(between.mag, 0.75);
    const std::vector<ViewSample> single = {curve[1]};
    EXPECT_EQ(sampleAt(single, 3), curve[1]);
}

TEST(SampleAt, turnsTheShorterWayAroundTheCircle) {
    const auto middle = [](double from, double to) {
        const std::vector<ViewSample> curve = {{.t = 0, .ang = from}, {.t = 1, .ang = to}};
        return sampleAt(curve, 0.5)->ang;
    };
    EXPECT_DOUBLE_EQ(middle(170, -170), 180);
    EXPECT_DOUBLE_EQ(middle(-170, 170), -180);
    EXPECT_DOUBLE_EQ(middle(-170, 160), -185); // leaves the circle's range and is left so
    EXPECT_DOUBLE_EQ(middle(10, 730), 10);
}

} // namespace
} // namespace zenka::eclipse
