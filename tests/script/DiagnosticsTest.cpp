#include "Sites.h"

#include <gmock/gmock.h>

namespace zenka::script {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct Case {
    std::vector<std::string> lines;
    std::vector<std::string> said; ///< "line severity: message"
};

std::vector<std::string> said(const CompiledScript& script) {
    std::vector<std::string> list;
    for (const ScriptDiag& diag : script.diagnostics)
        list.push_back(std::to_string(diag.lineNo) + " " + diag.severity + ": " + diag.message);
    return list;
}

void check(const std::vector<Case>& cases, const Site& site) {
    for (const Case& c : cases)
        EXPECT_EQ(said(site.compile(c.lines)), c.said) << c.lines.front();
}

TEST(Diagnostics, sayWhatIsWrongInAScript) {
    check(
        {
            {{"ENDFOR", "endfor"}, {"1 error: ENDFOR without FOR", "2 error: ENDFOR without FOR"}},
            {{"FOR,(while),1", "nonsense", "ENDFOR", "FOR"},
             {"1 error: unknown FOR type '(WHILE)'", "2 warning: unknown command 'nonsense'",
              "4 error: unknown FOR type ''"}},
            {{"CAMSET", "CAMSET,,a=b"},
             {"1 warning: CAMSET needs a camera name", "2 warning: CAMSET needs a camera name"}},
            {{"CAMSET,My Cam,x", "CAMSET,CAM1,gap_same=soon"},
             {"1 warning: CAMSET for My Cam has no key=value pairs",
              "2 warning: CAMSET CAM1: gap_same should be seconds, got 'soon'"}},
            {{"Snap,C2", ",TAKEPIC"}, {"1 warning: unknown command 'Snap'", "2 warning: unknown command ''"}},
            {{"TAKEPIC,MAGPRE (VAR),+,0,CAM1"}, {"1 error: (VAR) used outside a FOR,(VAR) loop"}},
            {{"TAKEPIC,LAST,+,0,CAM1", "TAKEPIC,LAST,+,0,CAM1"},
             {"1 warning: LAST used before any timed item, anchoring to maximum"}},
            {{"TAKEPIC,magpre,+,00:10,CAM1", "PLAY,MAGPOST x,+,0"},
             {"1 error: MAGPRE needs its magnitude in the SAME field, separated by a space (e.g. 'MAGPRE 50' "
              "or "
              "'MAGPRE (VAR)', not 'MAGPRE,50'). Got 'magpre', line skipped.",
              "2 error: MAGPOST needs its magnitude in the SAME field, separated by a space (e.g. 'MAGPOST "
              "50' or "
              "'MAGPOST (VAR)', not 'MAGPOST,50'). Got 'MAGPOST x', line skipped."}},
            {{"TAKEPIC,A,+,0,CAM1", "TAKEPIC,L noon,+,0,CAM1", "TAKEPIC,18:x,+,0,CAM1"},
             {"1 error: A needs a time in the SAME field, e.g. 'A 18:32' or 'A 18:32:05'. Got 'A', line "
              "skipped.",
              "2 error: L needs a time in the SAME field, e.g. 'L 18:32' or 'L 18:32:05'. Got 'L noon', line "
              "skipped.",
              "3 error: L needs a time in the SAME field, e.g. 'L 18:32' or 'L 18:32:05'. Got '18:x', line "
              "skipped."}},
            {{"FOR,(VAR),1,1,1", "TAKEPIC,Full (VAR),+,0,CAM1", "ENDFOR", "PLAY,,+,0"},
             {"2 warning: reference 'Full 1.0000' isn't supported yet, line skipped. Supported: C1–C4, MAX, "
              "U1–U4, "
              "MAGPRE/MAGPOST, SUNRISE, SUNSET, LAST, A/L time.",
              "4 warning: reference '' isn't supported yet, line skipped. Supported: C1–C4, MAX, U1–U4, "
              "MAGPRE/MAGPOST, SUNRISE, SUNSET, LAST, A/L time."}},
            {{"takepic,C2,-,0", "SETEXP", "TAKEPIC,MAGPRE,50,+,00:10"},
             {"1 error: TAKEPIC has too few fields", "2 error: SETEXP has too few fields",
              "3 error: TAKEPIC has too few fields"}},
            // what the parser finds comes ahead of what the walk finds
            {{"TAKEPIC,C9,+,0,CAM1", "ENDFOR"},
             {"2 error: ENDFOR without FOR",
              "1 warning: reference 'C9' isn't supported yet, line skipped. Supported: "
              "C1–C4, MAX, U1–U4, MAGPRE/MAGPOST, SUNRISE, SUNSET, LAST, A/L time."}},
        },
        carbondale());
}

TEST(Diagnostics, sayWhatASiteDoesNotSee) {
    check(
        {
            {{"TAKEPIC,u2,+,0,CAM1", "PLAY,C3,-,0,x.wav"},
             {"1 warning: C2 does not occur at this location, line skipped",
              "2 warning: C3 does not occur at this location, line skipped"}},
            {{"TAKEPIC,MAGPRE 99.5,+,0,CAM1", "TAKEPIC,MAGPOST 100,+,0,CAM1", "TAKEPIC,MAGPRE 0,+,0,CAM1"},
             {"1 warning: magnitude 99.5% not reached on ingress here",
              "2 warning: magnitude 100.0% not reached on egress here",
              "3 warning: magnitude 0.0% not reached on ingress here"}},
        },
        paris());
    const Site svalbard("2039-06-21", {80, 25, 0}, "UTC"); // the midnight Sun
    check({{{"TAKEPIC,SUNSET,+,0,CAM1", "TAKEPIC,SUNRISE,+,0,CAM1"},
            {"1 warning: SUNSET not found for this site/date, line skipped",
             "2 warning: SUNRISE not found for this site/date, line skipped"}}},
          svalbard);
}

TEST(Diagnostics, aNumberThatCannotStandCostsItsLineOnly) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"TAKEPIC,C2,-,,CAM1", "offset is blank"},
        {"TAKEPIC,C2,-,::,CAM1", "offset is blank"},
        {"PLAY,C2,-,,x.wav", "offset is blank"},
        {"COMMAND,C2,-, ,a;b", "offset is blank"},
        {"TAKEPIC,C2,-,1e999,CAM1", "offset '1e999' is out of range"},
        {"TAKEPIC,C2,-,1e300:0:0,CAM1", "offset '1e300:0:0' is out of range"},
        {"TAKEPIC,C2,-,00:nan,CAM1", "offset '00:nan' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,inf", "shutter 'inf' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,1/1e-300", "shutter '1/1e-300' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,1,-Infinity", "aperture '-Infinity' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,1,8,3000000000", "ISO '3000000000' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,1,8,NaN", "ISO 'NaN' is out of range"},
        {"TAKEPIC,C2,-,0,CAM1,1,8,200,1e400", "compensation '1e400' is out of range"},
        {"TAKEBST,C2,-,0,CAM1,1,8,200,-1e10", "burst count '-1e10' is out of range"},
        {"RAMPUP,C2,-,0,CAM1,1,8,200,0,RAW,None,N,inf,1,x", "ramp count 'inf' is out of range"},
        {"RAMPUP,C2,-,0,CAM1,1,8,200,0,RAW,None,N,2,inf,x", "ramp step 'inf' is out of range"},
        {"BKTDATA,1e10", "bracket count '1e10' is out of range"},
        {"BKTDATA,3,infEV", "bracket step 'infEV' is out of range"},
        {"TAKEPIC,MAGPRE inf,+,0,CAM1", "magnitude 'inf' is out of range"},
        {"RAMPUP,C2,-,0,CAM1,1,8,200,0,RAW,None,N,2000,1,x",
         "RAMPUP reaches exposures that are out of range"},
        {"TAKEBST,C2,-,0,CAM1,1e10,8,200,3", "TAKEBST reaches exposures that are out of range"},
        {"TAKEPIC,A 226-08-12 18:32,+,0,CAM1", "moment lies more than 300 years from the eclipse"},
        {"TAKEPIC,A 2000000000-08-12 18:32,+,0,CAM1", "moment lies more than 300 years from the eclipse"},
    };
    for (const auto& [line, message] : cases) {
        const CompiledScript script =
            carbondale().compile({"TAKEPIC,C2,+,0,CAM2", line, "TAKEBKT,LAST,+,0,CAM2"});
        EXPECT_THAT(said(script), ElementsAre("2 error: " + message + ", line skipped")) << line;
        EXPECT_THAT(script.captures, SizeIs(4)) << line; // LAST and the bracket are untouched
        EXPECT_THAT(script.cameras, ElementsAre("CAM2")) << line;
    }
    for (const char* line : {"FOR,(VAR),inf,1,2", "FOR,(VAR),1,nan,2", "FOR,(VAR),1,1,1e999",
                             "FOR,(INTERVALOMETER),1e999,1,2", "FOR,(INTERVALOMETER),0,1,1e12"}) {
        const CompiledScript script =
            carbondale().compile({line, "TAKEPIC,C2,+,0,CAM1", "ENDFOR", "TAKEPIC,C2,+,0,CAM2"});
        ASSERT_THAT(script.diagnostics, SizeIs(1)) << line;
        EXPECT_THAT(script.diagnostics[0].message,
                    testing::MatchesRegex("FOR .* is out of range, loop skipped"));
        EXPECT_THAT(script.cameras, ElementsAre("CAM2")) << line;
    }
}

TEST(Diagnostics, aNumberTooSmallForADoubleIsZero) {
    const CompiledScript script = carbondale().compile({"TAKEPIC,C2,+,1e-999,CAM1,1/1e308,8,1e-400"});
    EXPECT_THAT(script.diagnostics, IsEmpty());
    EXPECT_EQ(script.captures.at(0).iso, 0);
}

TEST(Diagnostics, repeatForEachRound) {
    const CompiledScript script =
        paris().compile({"FOR,(VAR),1,1,20000", "TAKEPIC,C2,+,0,CAM1", "TAKEPIC,C3,+,0", "ENDFOR"});
    EXPECT_THAT(script.diagnostics, SizeIs(40'000));
}

} // namespace
} // namespace zenka::script
