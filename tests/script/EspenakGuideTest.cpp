#include "script/EspenakGuide.h"

#include <gmock/gmock.h>

#include <cmath>

namespace zenka::script {
namespace {

using EspenakGuide::Level;
using testing::ElementsAre;
using testing::IsEmpty;

Capture frame(const char* comment, double shutterSec, int iso = 200, double aperture = 8) {
    Capture capture;
    capture.comment = comment;
    capture.shutterSec = shutterSec;
    capture.iso = iso;
    capture.aperture = aperture;
    return capture;
}

std::vector<double> ladder(double from, double to, double step) {
    std::vector<double> qs;
    for (double q = from; q <= to; q += step)
        qs.push_back(q);
    return qs;
}

TEST(EspenakGuide, qReadsAFrameAsTheScriptWritesIt) {
    EXPECT_NEAR(EspenakGuide::q({"1/500", "8.0", "200"}), std::log2(64 * 500 / 200.0), 1e-12);
    EXPECT_EQ(EspenakGuide::q({"1/500", "wide", ""}), EspenakGuide::q({"1/500", "8", "100"}));
}

TEST(EspenakGuide, aFrameIsMeasuredAgainstTheStandardShutterNearestToTheTarget) {
    // f/8, ISO 200, Q 5: 1/100 s exactly; a little beside it the ideal stays and d counts from there.
    const double ideal = EspenakGuide::q({"1/100", "8", "200"});
    const auto score = [&](std::vector<double> qs) { return EspenakGuide::scoreSingle(5, 8, 200, qs); };
    EXPECT_EQ(score({ideal + 0.5}), (EspenakGuide::Verdict{Level::good, "On target", "1/100"}));
    EXPECT_EQ(score({ideal - 4, ideal + 0.2}).text, "On target (bracketed)");
    EXPECT_EQ(score({ideal + 1.5}), (EspenakGuide::Verdict{Level::warn, "1.5 stop under", "1/100"}));
    EXPECT_EQ(score({ideal - 2, ideal + 9}), (EspenakGuide::Verdict{Level::bad, "2.0 stop over", "1/100"}));
    EXPECT_EQ(score({}).level, Level::bad);
    // f/9 wants 1/10113 s for Q 12: half a stop counts from 1/10000.
    const double q10000 = EspenakGuide::q({"1/10000", "9", "200"});
    EXPECT_LT(q10000, 12);
    EXPECT_EQ(EspenakGuide::scoreSingle(12, 9, 200, std::vector{q10000 - 0.499}).level, Level::good);
    EXPECT_EQ(EspenakGuide::scoreSingle(12, 9, 200, std::vector{12 + 0.499}).level, Level::warn);
    const double q12800 = EspenakGuide::q({"1/12800", "8", "200"});
    EXPECT_EQ(EspenakGuide::scoreSingle(12, 0, 200, std::vector{q12800}).suggestedShutter, "1/500");
    EXPECT_EQ(EspenakGuide::scoreSingle(12, 8, 0, std::vector{q12800}).suggestedShutter, "1/500");
}

TEST(EspenakGuide, theLadderHasToSpanAZoneOfTheCorona) {
    EXPECT_EQ(EspenakGuide::scoreCorona(ladder(-3, 7, 1), 1),
              (EspenakGuide::CoronaCoverage{7, 7, Level::good, std::nullopt}));
    EXPECT_EQ(EspenakGuide::scoreCorona({}, 1),
              (EspenakGuide::CoronaCoverage{0, 7, Level::bad, std::nullopt}));
    // The ends may fall short by 0.75, with wide steps by 0.6 of a step.
    EXPECT_EQ(EspenakGuide::scoreCorona(ladder(-2.25, 6.25, 0.5), 1).covered, 7);
    EXPECT_EQ(EspenakGuide::scoreCorona({-2.2, 6.2}, 1).covered, 5);
    EXPECT_EQ(EspenakGuide::scoreCorona({-2.2, 6.2}, 2).covered, 7);

    const auto inner = EspenakGuide::scoreCorona(ladder(0, 7, 1), 1);
    EXPECT_EQ(inner, (EspenakGuide::CoronaCoverage{5, 7, Level::warn, "outer corona"}));
    const auto outer = EspenakGuide::scoreCorona(ladder(-4, 2, 1), 1);
    EXPECT_EQ(outer, (EspenakGuide::CoronaCoverage{4, 7, Level::bad, "inner corona"}));
}

TEST(EspenakGuide, thePhaseIsTheFirstWordOfTheCommentThatNamesOne) {
    using EspenakGuide::Phase;
    EXPECT_EQ(EspenakGuide::phase("Outer CORONA, prominences"), Phase::corona);
    EXPECT_EQ(EspenakGuide::phase("C2 diamond ring"), Phase::diamondRing);
    EXPECT_EQ(EspenakGuide::phase("Bead"), Phase::beads);
    EXPECT_EQ(EspenakGuide::phase("Earthlit Moon"), Phase::earthshine);
    EXPECT_EQ(EspenakGuide::phase("Partial ingress"), Phase::other);
}

TEST(EspenakGuide, aScriptGetsANoteForEachPhaseThatItShoots) {
    EXPECT_THAT(EspenakGuide::scriptNotes(std::vector<Capture>{}), IsEmpty());
    // Frames on the camera's own settings take no part.
    EXPECT_THAT(EspenakGuide::scriptNotes(std::vector{frame("Corona", 0), frame("Corona", 1, 0)}), IsEmpty());

    const std::vector captures{frame("Corona set 1", 1.0 / 1000), frame("Corona set 1", 1.0 / 500),
                               frame("Corona set 2", 1.0 / 250), frame("Diamond ring", 1.0 / 400),
                               frame("Baily's beads", 1.0 / 16000)};
    EXPECT_THAT(
        EspenakGuide::scriptNotes(captures),
        ElementsAre(
            EspenakGuide::ScriptNote{Level::bad,
                                     "corona bracket reaches 1 of 7 brightness zones, missing the outer "
                                     "corona. Widen the bracket (more exposures or a bigger EV step) to "
                                     "cover the rest."},
            EspenakGuide::ScriptNote{Level::bad, "Diamond ring: 2.0 stop under NASA's ideal (near 1/100). "
                                                 "NASA scores the ring as corona 0.2 Rs (Q5)."},
            EspenakGuide::ScriptNote{Level::good,
                                     "Baily's beads: On target NASA's ideal (near 1/12800). Q12 wants a very "
                                     "fast shutter to freeze them, if your body can."}));
}

} // namespace
} // namespace zenka::script
