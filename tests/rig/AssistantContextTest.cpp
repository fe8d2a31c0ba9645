#include "rig/AssistantContext.h"

#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zenka;

namespace {

std::string contextOf(test::VirtualRig& rig) {
    return rig::assistantContext({.site = rig.model.site(),
                                  .roster = rig.model.roster(),
                                  .cadence = rig.model.cadence(),
                                  .library = rig.model.library(),
                                  .script = rig.model.script()});
}

} // namespace

TEST(AssistantContext, tellsEclipseSiteContactsAndBodiesInLabelledLines) {
    test::VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    body->family = "CrSDK";
    rig.model.floors().saveMeasuredFloor("Z8", 0.5, false);
    rig.model.roster().setLabel(*rig.model.roster().addPlanningCamera("Generic PTP"), "Spare");
    const auto gone = rig.addBody("Gone");
    gone->disconnect();
    rig.model.roster().setLabel(*body, "Long\nlens");
    rig.model.library().setLens(body->serial(), "500 mm");
    rig.load(rig.frameAt(0, "CAM1") + rig.frameAt(1, "CAM2"));
    EXPECT_EQ(
        contextOf(rig),
        "ECLIPSE: Total Solar Eclipse of 2026 August 12 (Total)\n"
        "SITE: Zaragoza, ES, latitude 41.65000, longitude -0.88000, 200 m, time zone Europe/Madrid (not "
        "confirmed yet)\n"
        "CONTACTS (local CEST): C1 19:34:42 (Sun 16°), C2 20:29:03 (Sun 6°), MAX 20:29:45 (Sun 6°), C3 "
        "20:30:27 "
        "(Sun 6°), C4 21:21:29 (Sun -3°)\n"
        "TOTALITY DURATION at this site: 1:23.5 (mm:ss)\n"
        "CAMERAS CONNECTED NOW (2): Long lens [Z8], CrSDK driver, min gap ~0.65s; Spare [Generic PTP], sim "
        "driver, min gap ~0s\n"
        "SHOT SPACING for this rig: RECOMMENDED ~1.0s between corona-bracket frames (reliability over frame "
        "count — real multi-cam rigs drop frames at 0.4-0.6s but run clean at 1s, and a 3-min totality still "
        "yields ~180 frames/body), more for a body whose min gap is longer. Write floor of the slowest body "
        "~0.65s where a setting changes; ~0.26s will do between identical frames.\n"
        "EXPOSURE OCCUPANCY: the gap to the next frame must be at least the EXPOSURE TIME plus the write "
        "floor "
        "(~0.65s above), NOT just the larger of the two.\n"
        "LONG-EXPOSURE NOISE REDUCTION: for any exposure over 1s, leave ~2x the shutter time before the next "
        "frame in case the user has LENR on (it shoots a matching dark frame, during which the body takes no "
        "other).\n"
        "CAMERAS IN LIBRARY (known bodies): Long lens [Z8, lens 500 mm]\n"
        "CAMERA NAMES IN CURRENT SCRIPT: CAM1; CAM2\n");
}

TEST(AssistantContext, aSiteWithoutTheEclipseAndALongListOfNamesStayShort) {
    test::VirtualRig rig;
    rig::Site site = rig.model.site().site();
    site.lat = -60;
    rig.model.site().setSite(site);
    rig.model.recompute();
    std::string script;
    for (int i = 0; i < 1000; ++i)
        script += rig.frameAt(i, "CAM" + std::to_string(i) + std::string(10'000, 'x'));
    rig.load(script);
    const std::string context = contextOf(rig);
    EXPECT_THAT(context, testing::HasSubstr("none, the eclipse is not seen from this site\n"));
    EXPECT_THAT(context, testing::HasSubstr("TOTALITY DURATION at this site: 0:00.0 (mm:ss), there is no"));
    EXPECT_THAT(context, testing::HasSubstr("CAMERAS CONNECTED NOW (0): none\n"));
    EXPECT_THAT(context, testing::EndsWith("; and 960 more\n"));
    EXPECT_LT(context.size(), 20'000U);
}
