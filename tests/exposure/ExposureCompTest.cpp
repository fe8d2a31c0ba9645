#include "exposure/ExposureComp.h"

#include "exposure/ExposureScales.h"

#include <gmock/gmock.h>

#include <cmath>
#include <iostream>

namespace zenka::exposure {
namespace {

using enum CompVariable;

const CompFrame frame{.shutterSec = 1.0 / 500, .iso = 200, .aperture = 8, .bulb = false};
const CompGaps gaps{.same = 0.5, .change = 1, .source = "default"};

CompResult shifted(const CompFrame& from, int stops, const CompRules& rules,
                   std::optional<double> spacing = {}) {
    return ExposureComp::apply(from, stops, rules, gaps, spacing, true);
}

TEST(ExposureComp, theShutterTakesItAllWhereItCan) {
    const CompResult result = shifted(frame, 2, {});
    EXPECT_EQ(result.note, "+2: 1/500→1/125");
    EXPECT_EQ(result.frame, (CompFrame{1.0 / 125, 200, 8, false}));
    EXPECT_EQ(result.requestedStops, 2);
    EXPECT_NEAR(result.appliedStops, 2, 1e-12);
}

TEST(ExposureComp, darkerFramesSpendIsoFirst) {
    const CompResult result = shifted(frame, -3, {});
    EXPECT_EQ(result.note, "−3: 1/500→1/2000, ISO 200→100");
    EXPECT_NEAR(result.appliedStops, 3, 1e-12);
}

TEST(ExposureComp, framesOnAutoAndBulbStayAsTheyAre) {
    for (const CompFrame& kept :
         {CompFrame{0, 200, 8, false}, CompFrame{0.002, 0, 8, false}, CompFrame{0.002, 200, 8, true}}) {
        const CompResult result = shifted(kept, 9, {});
        EXPECT_EQ(result, (CompResult{.frame = kept, .requestedStops = 6, .appliedStops = 0, .note = ""}));
    }
    EXPECT_EQ(shifted(frame, 0, {}).note, "");
}

TEST(ExposureComp, whatCannotBeGivenIsNamed) {
    struct Case {
        CompFrame from;
        int stops;
        CompRules rules;
        std::optional<double> spacing;
        std::string note;
    };
    const CompFrame brightest{.shutterSec = 1.0 / 500, .iso = 1600, .aperture = 8, .bulb = false};
    const std::vector<Case> cases{
        {frame, 2, {.enabled = {}}, {}, "0 of +2: nothing enabled can move"},
        {brightest, 1, {.enabled = {iso}}, {}, "0 of +1: ISO ceiling"},
        {frame, 9, {.enabled = {iso}}, {}, "+3.0 of +6: ISO 200→1600 · ISO ceiling"},
        {brightest, 2, {}, 0.3, "0 of +2: no gap for a slower shutter, ISO ceiling"}, // room is negative
        {frame, 2, {.enabled = {shutter}, .shutterSlowestSec = 1.0 / 500}, {}, "0 of +2: shutter ceiling"},
        {frame,
         -2,
         {.enabled = {shutter}, .shutterFastestSec = 1.0 / 1000},
         {},
         "−1.0 of −2: 1/500→1/1000 · shutter floor"},
        {frame, -6, {}, {}, "−5.0 of −6: 1/500→1/8000, ISO 200→100 · shutter floor, ISO floor"},
        {frame,
         4,
         {.order = {aperture}, .enabled = {aperture}},
         {},
         "+1.0 of +4: f/8→f/5.6 · aperture limit"},
        {{0.002, 200, 0, false}, 1, {.enabled = {aperture}}, {}, "0 of +1: aperture limit"},
        {frame, -1, {.order = {aperture, shutter}, .enabled = {aperture}}, {}, "−1: f/8→f/11"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(shifted(c.from, c.stops, c.rules, c.spacing).note, c.note);
}

TEST(ExposureComp, aSlowerShutterLeavesTheNextFrameItsTime) {
    const CompFrame slow{.shutterSec = 1.0 / 30, .iso = 200, .aperture = 8, .bulb = false};
    // 0.5 s of 0.6 are the body's: 1/10 is all the room, which is a standard speed.
    EXPECT_EQ(shifted(slow, 3, {.enabled = {shutter}}, 0.6).frame.shutterSec, 0.1);
    // With a change of settings the body needs a second.
    const CompResult changed = ExposureComp::apply(slow, 3, {.enabled = {shutter}}, gaps, 1.1, false);
    EXPECT_NEAR(changed.frame.shutterSec, 0.1, 1e-12);
    // The nearest speed to a room of 0.16 s is 1/6, which is too long: the room itself.
    EXPECT_NEAR(shifted(slow, 5, {.enabled = {shutter}}, 0.66).frame.shutterSec, 0.16, 1e-12);
    // A room of 0.17 s has 1/6 in it.
    EXPECT_EQ(shifted(slow, 5, {.enabled = {shutter}}, 0.67).frame.shutterSec, 1.0 / 6);
    // Without a next frame the slowest allowed is the end, standard or not.
    EXPECT_EQ(shifted(slow, 3, {.enabled = {shutter}, .shutterSlowestSec = 0.21}).frame.shutterSec, 1.0 / 5);
    EXPECT_EQ(shifted(slow, 3, {.enabled = {shutter}, .shutterSlowestSec = 0.19}).frame.shutterSec, 0.19);
}

TEST(ExposureComp, balancedRulesShareTheStops) {
    const CompRules shared{
        .enabled = {shutter, iso, aperture}, .balanced = true, .isoMax = 6400, .apertureWidest = 2.8};
    EXPECT_EQ(shifted(frame, 3, shared).note, "+3: 1/500→1/250, ISO 200→400, f/8→f/5.6");
    // What one cannot take goes to the first that can.
    CompRules capped = shared;
    capped.isoMax = 200;
    EXPECT_EQ(shifted(frame, 3, capped).note, "+3: 1/500→1/125, f/8→f/5.6");
    CompRules one = shared;
    one.enabled = {iso};
    EXPECT_EQ(shifted(frame, 3, one).note, "+3: ISO 200→1600");
}

TEST(ExposureComp, snappingStaysWithinAThirdOfAStop) {
    double worst = 0;
    CompRules wide{.enabled = {shutter, iso, aperture},
                   .balanced = true,
                   .isoMin = 50,
                   .isoMax = 102400,
                   .shutterFastestSec = 1.0 / 32000,
                   .shutterSlowestSec = 60,
                   .apertureWidest = 1.4,
                   .apertureNarrowest = 45};
    for (const std::string_view speed : standardShutters().subspan(18, 28))
        for (int stops = -6; stops <= 6; ++stops) {
            const CompFrame from{
                .shutterSec = shutterSeconds(speed), .iso = 800, .aperture = 8, .bulb = false};
            for (const bool balanced : {false, true}) {
                wide.balanced = balanced;
                const CompResult result = shifted(from, stops, wide);
                const double given = std::log2(result.frame.shutterSec / from.shutterSec) +
                                     std::log2(result.frame.iso / 800.0) +
                                     2 * std::log2(8 / result.frame.aperture);
                EXPECT_NEAR(std::abs(given), result.appliedStops, 1e-9);
                worst = std::max(worst, std::abs(given - stops));
            }
        }
    std::cout << "largest departure from the request " << worst << " stops, ceiling 0.34\n";
    EXPECT_LT(worst, 0.34);
}

TEST(ExposureComp, gapsNeedBothKeysAboveZero) {
    EXPECT_EQ(ExposureComp::gapsFromCamset({{"gap_same", "0.5"}, {"gap_change", "1"}}),
              (CompGaps{.same = 0.5, .change = 1, .source = "script"}));
    EXPECT_EQ(ExposureComp::gapsFromCamset({{"gap_same", "0"}, {"gap_change", "1"}}), std::nullopt);
    EXPECT_EQ(ExposureComp::gapsFromCamset({{"gap_same", "0.5"}}), std::nullopt);
    EXPECT_EQ(ExposureComp::gapsFromCamset({{"gap_same", "0.5"}, {"gap_change", "inf"}}), std::nullopt);
}

} // namespace
} // namespace zenka::exposure
