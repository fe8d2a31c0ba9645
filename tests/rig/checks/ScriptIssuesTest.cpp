#include "rig/checks/ScriptIssues.h"

#include "eclipse/Catalog.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;
using rig::computeIssues;
using rig::IssueBody;
using script::Capture;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/// Where the Sun stands high at every frame, with no eclipse to aim at.
rig::IssueContext noon() {
    return {.eclipse = std::make_shared<eclipse::Eclipse>(eclipse::Catalog::eclipse("2024-04-08")),
            .observer = {25, -104, 0},
            .siteLabel = "Nazas"};
}

Capture frame(double offsetSec, double shutterSec = 0.01, int lineNo = 0) {
    Capture capture{.offsetSec = offsetSec, .camera = "CAM1", .shutterSec = shutterSec, .iso = 100};
    capture.refLabel = "+" + std::to_string(static_cast<int>(offsetSec)) + "s";
    capture.lineNo = lineNo ? lineNo : static_cast<int>(offsetSec) + 1;
    return capture;
}

std::vector<script::ScriptDiag> issuesOf(const rig::IssueContext& context,
                                         const std::vector<Capture>& captures) {
    return computeIssues(context, captures, script::capturesByToken(captures));
}

/// What is said of frames on one body.
std::vector<std::string> wordsOn(const IssueBody& body, const std::vector<Capture>& captures) {
    auto context = noon();
    context.bodies["CAM1"] = {body};
    std::vector<std::string> words;
    for (const auto& issue : issuesOf(context, captures))
        words.push_back(issue.severity + ": " + issue.message);
    return words;
}

/// A series of short frames, so far apart.
std::vector<Capture> series(int count, double gapSec) {
    std::vector<Capture> captures;
    for (int i = 0; i < count; ++i)
        captures.push_back(frame(i * gapSec, 0.01, i + 1));
    return captures;
}

} // namespace

TEST(ScriptIssues, aFrameInTheExposureBeforeItIsAnErrorOneInItsDarkFrameAWarning) {
    const IssueBody body{.name = "Left", .driver = "CanonEDSDK"};
    EXPECT_THAT(wordsOn(body, {frame(0, 4), frame(3)}),
                ElementsAre("error: Left: +3s starts 3.0 s after +0s, but that exposure runs 4.0 s; they "
                            "overlap; the second will fail."));
    EXPECT_THAT(
        wordsOn(body, {frame(0, 4), frame(4)}),
        ElementsAre("warning: Left: +4s starts 4.0 s after the 4.0 s exposure. If Long-Exposure NR is "
                    "on, that frame stays busy ~8.0 s (it writes a dark frame), so this may drop. "
                    "Leave ~2x the shutter, or turn LENR off."));
    EXPECT_THAT(wordsOn(body, {frame(0, 4), frame(8)}), IsEmpty());
    EXPECT_THAT(wordsOn(body, {frame(0, 1), frame(1)}), IsEmpty()) << "1 s has no dark frame";
    EXPECT_THAT(wordsOn(body, {frame(0, 4)}), IsEmpty());
}

TEST(ScriptIssues, spacingIsJudgedByWhatTheLinkAndTheBodyHold) {
    const auto gphoto2 = [](std::optional<double> floor, std::optional<double> sustained) {
        return IssueBody{
            .name = "Z8", .driver = "gphoto2", .measuredFloorSec = floor, .sustainedFloorSec = sustained};
    };
    EXPECT_THAT(wordsOn(gphoto2({}, {}), {frame(0), frame(1)}),
                ElementsAre("warning: Z8: +1s: only 1.0 s between +0s and +1s (the 1.3 s drop floor); the "
                            "second will likely drop. Widen the spacing or use a faster body."));
    EXPECT_THAT(wordsOn(gphoto2({}, {}), {frame(0, 0.5), frame(1)}),
                ElementsAre(HasSubstr(" (the 500 ms exposure + ~1.3 s to write); ")));
    EXPECT_THAT(wordsOn(gphoto2({}, {}), {frame(0, 0), frame(1)}), ElementsAre(HasSubstr("1.3 s drop floor")))
        << "the camera's own shutter is not known";
    // Sums of offsets are a hair off what was meant.
    EXPECT_THAT(wordsOn(gphoto2(0.3, 0.1), {frame(8000.1, 0), frame(8000.4, 0)}), IsEmpty());
    EXPECT_THAT(
        wordsOn(gphoto2(0.8, {}), {frame(0), frame(1)}),
        ElementsAre("warning: Z8: +1s: only 1.0 s between +0s and +1s: tighter than this body's measured "
                    "1.3 s safe margin for this body. OK for a few frames, but risky across a long "
                    "burst."));
    EXPECT_THAT(wordsOn(gphoto2(0.8, 2.5), {frame(0, 0.2), frame(2)}),
                ElementsAre(HasSubstr(": only 2.0 s between +0s and +2s (the 200 ms exposure plus your 2.5 s "
                                      "safe margin needs ~2.7 s): tighter than this body's measured 2.5 s")));
    EXPECT_THAT(wordsOn({.name = "a1", .driver = "CrSDK"}, series(2, 0.5)),
                ElementsAre(AllOf(HasSubstr(": tighter than the 520 ms safe margin for this body."))));
    EXPECT_THAT(wordsOn({.name = "G9", .driver = "LumixPTP", .catalogFloorSec = 0.18}, series(2, 0.15)),
                ElementsAre(HasSubstr("(the 180 ms drop floor)")));
    EXPECT_THAT(wordsOn({.name = "EOS", .driver = "CanonEDSDK"}, series(2, 0.05)), IsEmpty())
        << "nothing is known of it";
}

TEST(ScriptIssues, bulbFramesAreToldByWhatTheLinkMakesOfThem) {
    auto captures = series(3, 5);
    captures[1].bulb = captures[2].bulb = true;
    EXPECT_THAT(wordsOn({.name = "Z8", .driver = "gphoto2"}, captures),
                ElementsAre("error: Z8: 2 BULB frames will fire NOTHING on this connection (the shutter is "
                            "never opened) while logging ok. Use a timed exposure (30s or less) instead."));
    captures[1].bulb = false;
    EXPECT_THAT(wordsOn({.name = "CAM1"}, captures),
                ElementsAre("warning: CAM1: 1 BULB frame only fires on LUMIX today; on Nikon/Canon/Sony it "
                            "fails or clamps. Validate with this body connected"));
    EXPECT_THAT(wordsOn({.name = "GH6", .driver = "LumixICC"}, captures), IsEmpty());
}

TEST(ScriptIssues, aBurstDeeperThanTheMeasuredBufferIsToldOnce) {
    const IssueBody body{
        .name = "Z8", .driver = "CanonEDSDK", .burstDepth = {{.frames = 10, .cadenceSec = 0.4}}};
    auto captures = series(8, 0.5); // just within the burst's pace
    for (int i = 0; i < 12; ++i)
        captures.push_back(frame(100 + i * 0.45, 0.01, 50 + i));
    EXPECT_THAT(
        wordsOn(body, captures),
        ElementsAre("warning: Z8: a burst of 12 frames at ~450 ms (from +100s) is deeper than this body's "
                    "measured buffer (~10 frames before it filled and dropped, Gap Profiler › Sustained "
                    "burst). Expect drops past ~frame 10. Split the burst or widen the spacing."));
    EXPECT_THAT(wordsOn(body, series(10, 0.45)), IsEmpty());
    EXPECT_THAT(wordsOn(body, series(40, 0.51)), IsEmpty()) << "slower than the pace that filled it";
}

TEST(ScriptIssues, aSunThatIsDownOrLowIsToldOnceForAllCameras) {
    const eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2026-08-12");
    rig::IssueContext context = noon();
    context.eclipse = std::make_shared<eclipse::Eclipse>(eclipse);
    context.observer = {41.65, -0.88, 200};
    context.siteLabel = "Zaragoza, ES";
    const auto seen = eclipse.localCircumstances(context.observer);
    context.contactTHours = script::contactTHours(seen);
    const double maximum = context.contactTHours.at("MAX") * 3600;
    const double set = context.contactTHours.at("C4") * 3600;
    std::vector<Capture> captures{frame(maximum, 0.01, 3), frame(maximum + 900, 0.01, 4), frame(set, 0.01, 5),
                                  frame(set + 900, 0.01, 6)};
    captures[2].camera = "CAM2";
    EXPECT_THAT(issuesOf(context, captures),
                ElementsAre(AllOf(Field(&script::ScriptDiag::lineNo, 4),
                                  Field(&script::ScriptDiag::message,
                                        StartsWith("Sun very low (under 5°) for 1 frame (all cameras), "
                                                   "starting at " +
                                                   captures[1].refLabel + " (alt +"))),
                            AllOf(Field(&script::ScriptDiag::lineNo, 5),
                                  Field(&script::ScriptDiag::message,
                                        StartsWith("Sun below the horizon for 2 frames (all cameras), "
                                                   "starting at " +
                                                   captures[2].refLabel + " (alt -")))));

    // The antipodes: nothing of it is to be seen.
    context.observer = {-41.65, 179.12, 0};
    context.contactTHours = {{"MAX", maximum / 3600}};
    const auto issues = issuesOf(context, {});
    ASSERT_EQ(issues.size(), 1U);
    EXPECT_EQ(issues[0].severity, "error");
    EXPECT_EQ(issues[0].lineNo, 0);
    EXPECT_THAT(issues[0].message, StartsWith("Eclipse not visible from Zaragoza, ES: the Sun is below the "
                                              "horizon at maximum (alt -"));
    context.contactTHours.clear();
    EXPECT_THAT(issuesOf(context, {}), IsEmpty());
}

TEST(ScriptIssues, errorsComeFirstThenLinesThenCamerasByName) {
    std::vector<Capture> captures{frame(0, 4, 9), frame(1, 0.01, 8)};
    for (Capture capture : series(2, 0.05)) {
        capture.camera = "B";
        capture.lineNo = 5;
        captures.push_back(capture);
        capture.camera = "A";
        captures.push_back(capture);
    }
    captures[0].comment = "Earthshine";
    auto context = noon();
    for (const char* name : {"A", "B", "CAM1"})
        context.bodies[name] = {{.name = name, .driver = "CrSDK"}};
    const auto issues = issuesOf(context, captures);
    ASSERT_EQ(issues.size(), 4U);
    EXPECT_THAT(issues[0],
                AllOf(Field(&script::ScriptDiag::lineNo, 8), Field(&script::ScriptDiag::severity, "error")));
    EXPECT_THAT(issues[1].message, StartsWith("A: "));
    EXPECT_THAT(issues[2].message, StartsWith("B: "));
    EXPECT_THAT(issues[3].message, StartsWith("NASA exposure: Earthshine: "));
    EXPECT_EQ(issues[3].lineNo, 9);
}

TEST(ScriptValidator, whatIsFoundStandsUntilTheScriptIsCompiledAgain) {
    test::VirtualRig rig;
    auto& validator = rig.model.validator();
    const auto body = rig.addBody("CAM1");
    body->family = "gphoto2";
    const double clock = rig.model.site().contactTHours().at("C1") * 3600;
    const std::string text = rig.frameAt(clock) + rig.frameAt(clock + 1);
    rig.load(text);
    validator.validateScript();
    rig.run(0.1);
    EXPECT_TRUE(validator.didValidate().get());
    EXPECT_THAT(validator.validationIssues().get(),
                ElementsAre(Field(&script::ScriptDiag::message, HasSubstr("(the 1.3 s drop floor)"))));
    EXPECT_TRUE(rig.logged("Validate: 0 errors, 1 warning"));

    EXPECT_EQ(validator.issues(text + "NONSENSE\n").size(), 2U) << "the compiler's words come first";
    EXPECT_EQ(rig.model.script().compilePreview(rig.frameAt(clock)).size(), 1U);
    EXPECT_EQ(rig.model.script().captures().size(), 2U) << "other texts touch nothing";

    rig.model.floors().saveMeasuredFloor(body->model(), 0.2, false);
    rig.model.floors().saveSustainedFloor(body->model(), 0.4);
    rig.load(text);
    EXPECT_FALSE(validator.didValidate().get());
    EXPECT_THAT(validator.validationIssues().get(), IsEmpty());
    validator.validateScript();
    rig.load(rig.frameAt(clock)); // before the answer, which is of no use then
    rig.run(0.1);
    EXPECT_FALSE(validator.didValidate().get());
    validator.validateScript();
    rig.run(0.1);
    EXPECT_TRUE(rig.logged("✓ Validate: no issues across 1 captures"));

    rig.model.script().setScriptText(text);
    validator.validateScript(); // of what was just typed
    rig.run(1);
    EXPECT_TRUE(validator.didValidate().get());
    EXPECT_TRUE(rig.logged("✓ Validate: no issues across 2 captures"));
}
