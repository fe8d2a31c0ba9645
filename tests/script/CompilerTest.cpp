#include "Sites.h"

#include <gmock/gmock.h>

namespace zenka::script {
namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::Pointwise;
using testing::SizeIs;

MATCHER(Near, "within a microsecond") {
    return std::abs(std::get<0>(arg) - std::get<1>(arg)) < 1e-6;
}

testing::Matcher<std::vector<double>> nearAll(const std::vector<double>& wanted) {
    return Pointwise(Near(), wanted);
}

std::vector<double> shutters(const CompiledScript& script) {
    std::vector<double> list;
    for (const Capture& capture : script.captures)
        list.push_back(capture.shutterSec);
    return list;
}

std::vector<std::string> comments(const CompiledScript& script) {
    std::vector<std::string> list;
    for (const Capture& capture : script.captures)
        list.push_back(capture.comment);
    return list;
}

TEST(Compiler, anEmptyTextGivesNothing) {
    for (const char* text : {"", "\n\r\n", "  \t\n# TAKEPIC,C2,-,00:02,CAM1\n"}) {
        const CompiledScript script = ZenkaScript::compile(text, carbondale().context);
        EXPECT_THAT(script.captures, IsEmpty());
        EXPECT_THAT(script.audioCues, IsEmpty());
        EXPECT_THAT(script.diagnostics, IsEmpty());
        EXPECT_THAT(script.cameras, IsEmpty());
    }
}

TEST(Compiler, everyFieldOfATakeLineArrives) {
    const CompiledScript script = carbondale().compile(
        {"", "  takepic , c2 , - ,00:08.5, Cam2 ,1/4000, 5.6 ,400.9,-0.5,JPEG,None,n, C2 diamond, ring "});
    ASSERT_THAT(script.captures, SizeIs(1));
    const Capture& frame = script.captures[0];
    EXPECT_THAT(script.diagnostics, IsEmpty());
    EXPECT_THAT(frame.offsetSec, DoubleNear(carbondale().contact("C2") - 8.5, 1e-9));
    EXPECT_EQ(frame.seq, 1);
    EXPECT_EQ(frame.refLabel, "C2 −8s"); // half to even
    EXPECT_EQ(frame.camera, "Cam2");
    EXPECT_EQ(frame.shutterSec, 1.0 / 4000);
    EXPECT_EQ(frame.aperture, 5.6);
    EXPECT_EQ(frame.iso, 400);
    EXPECT_EQ(frame.expComp, -0.5);
    EXPECT_EQ(frame.format, "JPEG");
    EXPECT_TRUE(frame.forceFullExposure);
    EXPECT_EQ(frame.comment, "C2 diamond,ring");
    EXPECT_EQ(frame.lineNo, 2);
    EXPECT_THAT(script.cameras, ElementsAre("Cam2"));
}

TEST(Compiler, aShortLineTakesDefaultsAndItsLastFieldAsNote) {
    const CompiledScript script =
        carbondale().compile({"TAKEPIC,C2,-,00:02,CAM1",
                              "TAKEPIC,C2,x,00:03,CAM1,BULB,AUTO,-,soon,,None,Y", // "x" is no minus
                              "TAKEPIC,C2,,00:04,CAM1,sometime,wide,fast"});
    ASSERT_THAT(script.captures, SizeIs(3));
    const Capture& bare = script.captures[0];
    EXPECT_EQ(bare.shutterSec, 1.0 / 500);
    EXPECT_EQ(bare.aperture, 8.0);
    EXPECT_EQ(bare.iso, 200);
    EXPECT_EQ(bare.format, "RAW");
    EXPECT_FALSE(bare.forceFullExposure);
    EXPECT_EQ(bare.comment, "CAM1");
    const Capture& automatic = script.captures[1];
    EXPECT_TRUE(automatic.bulb);
    EXPECT_EQ(automatic.shutterSec, 0);
    EXPECT_EQ(automatic.aperture, 0);
    EXPECT_EQ(automatic.iso, 0);
    EXPECT_EQ(automatic.expComp, 0);
    EXPECT_EQ(automatic.comment, "Y");
    const Capture& unreadable = script.captures[2];
    EXPECT_EQ(unreadable.shutterSec, 0);
    EXPECT_EQ(unreadable.aperture, 8.0);
    EXPECT_EQ(unreadable.iso, 200);
    EXPECT_FALSE(unreadable.bulb);
    EXPECT_THAT(script.diagnostics, IsEmpty());
}

TEST(Compiler, aBurstFollowsItsExposuresButNotTooClose) {
    const double c2 = carbondale().contact("C2");
    const CompiledScript quick =
        carbondale().compile({"TAKEBST,C2,+,1,CAM1,1/1000,8,200,3,RAW,None,Y,Beads"});
    EXPECT_THAT(offsets(quick, c2), nearAll({1, 1.2, 1.4}));
    EXPECT_THAT(comments(quick), ElementsAre("Beads burst 1/3", "Beads burst 2/3", "Beads burst 3/3"));
    EXPECT_EQ(quick.captures[0].expComp, 0);
    const CompiledScript slow = carbondale().compile({"TAKEBST,C2,+,1,CAM1,2,8,200,2"});
    EXPECT_THAT(offsets(slow, c2), nearAll({1, 3}));
    EXPECT_THAT(carbondale().compile({"TAKEBST,C2,+,1,CAM1,2,8,200,-4"}).captures, SizeIs(1));
}

TEST(Compiler, bracketsAndRampsRunThroughTheShutters) {
    const std::string take = ",MAX,+,0,CAM1,1/16,8,200,0,RAW,None,Y,";
    EXPECT_THAT(shutters(carbondale().compile({"TAKEBKT" + take + "x"})),
                nearAll({1 / 32., 1 / 16., 1 / 8.}));
    EXPECT_THAT(shutters(carbondale().compile({"BKTDATA,4,2ev", "TAKEBKT" + take + "x"})),
                nearAll({1 / 128., 1 / 32., 1 / 8., 1 / 2.}));
    EXPECT_THAT(shutters(carbondale().compile({"RAMPUP" + take + "3"})), nearAll({1 / 16., 1 / 8., 1 / 4.}));
    EXPECT_THAT(shutters(carbondale().compile({"RAMPDN" + take + "3,0.5,n"})),
                nearAll({1 / 16., 1 / 16. / std::sqrt(2), 1 / 32.}));
    EXPECT_THAT(shutters(carbondale().compile({"RAMPSUD" + take + "5"})),
                nearAll({1 / 16., 1 / 8., 1 / 4., 1 / 8., 1 / 16.}));
    EXPECT_THAT(shutters(carbondale().compile({"RAMPSUD" + take + "4"})),
                nearAll({1 / 16., 1 / 8., 1 / 4., 1 / 8.}));
    EXPECT_THAT(comments(carbondale().compile({"RAMPUP" + take + "2,1,Up, slowly", "TAKEBKT" + take + "x"})),
                testing::UnorderedElementsAre("Up,slowly ramp 1/2", "Up,slowly ramp 2/2", "x bkt 1/3",
                                              "x bkt 2/3", "x bkt 3/3"));
    // As exposures grow, the frames move apart.
    EXPECT_THAT(offsets(carbondale().compile({"RAMPUP,MAX,+,0,CAM1,1/4,8,200,0,RAW,None,Y,3"}),
                        carbondale().contact("MAX")),
                nearAll({0, 0.25, 0.75}));
}

TEST(Compiler, aBracketSetInALoopHoldsFromThereOn) {
    const std::string take = "TAKEBKT,MAX,+,0,CAM1,1/16,8,200";
    const CompiledScript script = carbondale().compile(
        {"FOR,(INTERVALOMETER),0,10,2", take, "BKTDATA,1,1.0EV", "ENDFOR", take, "BKTDATA,none,0", take});
    // three frames, then one, then one behind the loop; last the defaults again, at a step of 1
    EXPECT_THAT(script.captures, SizeIs(3 + 1 + 1 + 3));
}

TEST(Compiler, loopsAddUp) {
    const double max = carbondale().contact("MAX");
    const std::string take = "TAKEPIC,MAX,+,1,CAM1";
    const auto run = [&](std::vector<std::string> lines) {
        return offsets(carbondale().compile(lines), max);
    };
    EXPECT_THAT(
        run({"FOR,(INTERVALOMETER),-20,10,3", "FOR,(INTERVALOMETER),0,2,2", take, "ENDFOR", "ENDFOR"}),
        nearAll({-19, -17, -9, -7, 1, 3}));
    EXPECT_THAT(run({"FOR,(VAR),1,1,2", "FOR,(intervalometer),0.5,5,2", take, "ENDFOR", "ENDFOR"}),
                nearAll({1.5, 1.5, 6.5, 6.5}));
    EXPECT_THAT(run({"FOR,(INTERVALOMETER),0,30,0", take, "ENDFOR"}), nearAll({1}));
    EXPECT_THAT(run({"FOR,(INTERVALOMETER),x,,y", take}), nearAll({1}));    // closed by the end of the text
    EXPECT_THAT(run({"FOR,(VAR),0.1,0.1,0.3", take, "ENDFOR"}), SizeIs(3)); // 0.1 + 0.1 + 0.1 is above 0.3
    EXPECT_THAT(run({"FOR,(VAR),99.5,-0.5,98.5", take, "ENDFOR"}), SizeIs(3));
    EXPECT_THAT(run({"FOR,(VAR),1,0,5", take, "ENDFOR", "FOR,(VAR),5,1,1", take, "ENDFOR"}), IsEmpty());
    EXPECT_THAT(run({"FOR,(VAR),0,1,100000", take, "ENDFOR"}), SizeIs(20'000));
}

TEST(Compiler, lastIsTheFirstFrameOfTheLineWalkedBefore) {
    const double c2 = carbondale().contact("C2");
    const CompiledScript script =
        carbondale().compile({"TAKEBST,C2,+,1,CAM1,1/1000,8,200,5",
                              "TAKEPIC,C9,+,0,CAM9", // gives nothing, moves nothing
                              "PLAY,C3,+,0,x.wav",   // nor does a cue
                              "TAKEPIC,LAST,+,10,CAM2", "SETEXP,C2,+,100,CAM3", "FOR,(VAR),1,1,2",
                              "TAKEPIC,LAST,+,1,CAM4", "ENDFOR"});
    EXPECT_THAT(offsets(script, c2), nearAll({1, 1.2, 1.4, 1.6, 1.8, 11, 101, 102}));
    EXPECT_THAT(script.cameras, ElementsAre("CAM1", "CAM2", "CAM3", "CAM4"));
    EXPECT_THAT(script.diagnostics, SizeIs(1));
    // A loop by time moves the line once more.
    EXPECT_THAT(offsets(carbondale().compile({"FOR,(INTERVALOMETER),0,10,3", "TAKEPIC,C2,+,0,CAM1",
                                              "TAKEPIC,LAST,+,1,CAM1", "ENDFOR"}),
                        c2),
                nearAll({0, 1, 10, 20, 21, 41}));
}

TEST(Compiler, framesAreSortedByTimeAndEqualOnesKeepTheOrderOfTheScript) {
    const CompiledScript script =
        carbondale().compile({"TAKEPIC,C3,+,0,CAM1", "TAKEPIC,C2,+,0,CAM2", "TAKEPIC,C3,+,0,CAM3",
                              "TAKEPIC,C2,+,0,CAM1", "PLAY,C3,+,0,late.wav", "PLAY,C2,+,0,early.wav"});
    std::vector<std::pair<int, int>> order;
    for (const Capture& capture : script.captures)
        order.emplace_back(capture.seq, capture.lineNo);
    EXPECT_THAT(order, ElementsAre(Pair(1, 2), Pair(2, 4), Pair(3, 1), Pair(4, 3)));
    EXPECT_EQ(script.audioCues[0].text, "early");
    EXPECT_EQ(script.audioCues[1].seq, 2);
}

TEST(Compiler, cuesSpeakOrRunCommands) {
    struct Case {
        std::string line;
        std::string text;
        std::string soundFile;
        std::string shell;
    };
    const std::string command = "COMMAND,C2,-,00:30, , , , , , , , ,";
    const std::vector<Case> cases{
        {"PLAY,C2,-,00:02:00.0,2_Minutes.wav, , , , , , , ,Two minutes, to go!", "Two minutes,to go",
         "2_Minutes.wav", ""},
        {"PLAY,C2,-,00:02:00.0, , , , , , , ,Two minutes", "Two minutes", "", ""},
        {"PLAY,C2,-,00:02:00.0,2_Min.WAV_x.wav", "2 Min x", "2_Min.WAV_x.wav", ""},
        {"PLAY,C2,-,2_Minutes.wav", "2_Minutes.wav", "", ""}, // the last field of a short line
        {"PLAY,C2,-,1,file_a.wav, , , , , , , ,\"!' ", "file a", "file_a.wav", ""},
        {command + "Label;say \"It's time\"", "It's time", "", ""},
        {command + "Dim;SAY dim", "dim", "", ""},
        {command + "Dim ; brightnessctl set 5%, now; true", "Dim", "", "brightnessctl set 5%,now; true"},
        {command + ";xset dpms force off", "xset dpms force off", "", "xset dpms force off"},
    };
    for (const Case& c : cases) {
        const CompiledScript script = carbondale().compile({c.line});
        ASSERT_THAT(script.audioCues, SizeIs(1)) << c.line;
        EXPECT_EQ(script.audioCues[0].text, c.text) << c.line;
        EXPECT_EQ(script.audioCues[0].soundFile, c.soundFile) << c.line;
        EXPECT_EQ(script.audioCues[0].shell, c.shell) << c.line;
    }
    const CompiledScript silent =
        carbondale().compile({command + "no semicolon", command + "Label; ", "PLAY,C2,-", "COMMAND,C2,-",
                              "PLAY", "LVSTART", "lvstop", "CHGCSSL,1"});
    EXPECT_THAT(silent.audioCues, IsEmpty());
    EXPECT_THAT(silent.diagnostics, IsEmpty());
    EXPECT_EQ(carbondale().compile({"PLAY,C2,-,00:02:00.0,a.wav"}).audioCues[0].refLabel, "C2 −2:00");
}

TEST(Compiler, cameraSettingsMerge) {
    const CompiledScript script = carbondale().compile(
        {"CAMSET,CAM1,Gap_Same=0.5,gap_change = 1,noise,=3,x=", "CAMSET,CAM1,gap_change=2=3,other=on",
         "camset,CAM2,a=b"});
    EXPECT_THAT(script.cameraSettings,
                ElementsAre(Pair("CAM1", ElementsAre(Pair("gap_change", "2=3"), Pair("gap_same", "0.5"),
                                                     Pair("other", "on"))),
                            Pair("CAM2", ElementsAre(Pair("a", "b")))));
    EXPECT_THAT(script.diagnostics, SizeIs(1)); // 2=3 are no seconds, and are kept all the same
    EXPECT_THAT(script.cameras, IsEmpty());
}

TEST(Compiler, everyNewlineCharacterEndsALine) {
    const CompiledScript script = ZenkaScript::compile(
        "#\r\n#\v#\f#\u0085#\u2028#\u2029TAKEPIC,C2,+,0,Ka\u0084mera \u2030\n", carbondale().context);
    ASSERT_THAT(script.captures, SizeIs(1));
    EXPECT_EQ(script.captures[0].lineNo, 8);
    EXPECT_EQ(script.captures[0].camera, "Ka\u0084mera \u2030");
}

TEST(Compiler, theVariableOfTheCallerServesTheWholeScript) {
    const char* text = "TAKEPIC,MAGPRE (VAR),+,0,CAM1";
    EXPECT_EQ(ZenkaScript::compile(text, carbondale().context, 12.5).captures.at(0).refLabel, "Pre 12.5%");
    EXPECT_THAT(ZenkaScript::compile(text, carbondale().context).captures, IsEmpty());
}

TEST(Compiler, everyCompileGivesFreshIdentifiers) {
    const CompiledScript one = carbondale().compile({"TAKEBST,C2,+,0,CAM1,1,8,200,2", "PLAY,C2,+,0,x"});
    const CompiledScript two = carbondale().compile({"TAKEBST,C2,+,0,CAM1,1,8,200,2", "PLAY,C2,+,0,x"});
    EXPECT_THAT((std::set{one.captures[0].id, one.captures[1].id, one.audioCues[0].id, two.captures[0].id,
                          two.captures[1].id, two.audioCues[0].id, base::Uuid{}}),
                SizeIs(7));
}

} // namespace
} // namespace zenka::script
