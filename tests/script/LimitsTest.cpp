#include "Sites.h"
#include "script/Compiler.h"

#include <gmock/gmock.h>

namespace zenka::script {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

CompiledScript compileSmall(const std::string& text) {
    static const Limits small{.frames = 200, .steps = 2000, .diagnostics = 10, .nesting = 4};
    return compileWithin(small, text, carbondale().context);
}

const std::string take = "TAKEPIC,MAX,+,0,CAM1\n";
const std::string endless = "FOR,(INTERVALOMETER),0,1,2000000000\n";

TEST(Limits, aRunawayLoopIsCutAndTheScriptGoesOn) {
    const CompiledScript script =
        compileSmall("FOR,(VAR),1,1,20000\n" + endless + take + "ENDFOR\nENDFOR\n" + take);
    EXPECT_THAT(script.captures, SizeIs(100 + 1));
    ASSERT_THAT(script.diagnostics, SizeIs(1));
    EXPECT_EQ(script.diagnostics[0].lineNo, 1);
    EXPECT_EQ(script.diagnostics[0].severity, "error");
    EXPECT_EQ(script.diagnostics[0].message,
              "FOR asks for more than 100 frames and cues, the rest of the loop is left out");
}

TEST(Limits, aLoopThatGivesNothingIsCutToo) {
    for (const char* body :
         {"SETEXP,C2,+,0,CAM1\n", "BKTDATA,3\n", "CAMSET,CAM1,a=b\n", "COMMAND,C2,+,0\n"}) {
        const CompiledScript script = compileSmall(endless + body);
        ASSERT_THAT(script.diagnostics, SizeIs(1)) << body;
        EXPECT_EQ(script.diagnostics[0].message,
                  "FOR asks for more than 1000 steps, the rest of the loop is left out");
    }
    EXPECT_THAT(compileSmall(endless + endless + endless).diagnostics,
                IsEmpty()); // empty bodies are passed over
}

TEST(Limits, aLongLineInALoopCostsMore) {
    const std::string note(6400, 'x');
    const CompiledScript script = compileSmall(endless + "TAKEPIC,MAX,+,0,CAM1,1,8,200,0,RAW,None,N," + note);
    EXPECT_LT(script.captures.size(), 6u);
    EXPECT_THAT(script.diagnostics, SizeIs(1));
}

TEST(Limits, everyLoopIsLeftItsShare) {
    const std::string three = "FOR,(VAR),1,1,3\n" + take + "ENDFOR\n";
    const std::string runaway = endless + take + "ENDFOR\n";
    const CompiledScript script = compileSmall(runaway + runaway + three);
    EXPECT_THAT(script.captures, SizeIs(100 + 50 + 3));
    EXPECT_THAT(script.diagnostics, SizeIs(2));
}

TEST(Limits, aBurstTooLongCostsItsLine) {
    const auto burst = [](const std::string& count) {
        return "TAKEBST,MAX,+,0,CAM1,1,8,200," + count + "\n";
    };
    const CompiledScript script =
        compileSmall(burst("2000000000") + burst("101") + burst("52") + take + burst("51"));
    EXPECT_THAT(script.captures, SizeIs(101 + 1 + 51)); // a line's own frame costs nothing
    ASSERT_THAT(script.diagnostics, SizeIs(2));
    EXPECT_EQ(script.diagnostics[0].message, "TAKEBST asks for too many frames (2000000000), line skipped");
    EXPECT_EQ(script.diagnostics[1].lineNo, 3);
}

TEST(Limits, diagnosticsEndWithOneThatSaysSo) {
    std::string text;
    for (int i = 0; i < 20; ++i)
        text += "nonsense\n";
    const CompiledScript script = compileSmall(text + take);
    ASSERT_THAT(script.diagnostics, SizeIs(11));
    EXPECT_EQ(script.diagnostics[10].message, "more than 10 diagnostics, the rest are not listed");
    EXPECT_EQ(script.diagnostics[10].severity, "error");
    EXPECT_THAT(script.captures, SizeIs(1));
}

TEST(Limits, loopsNestSoDeepAndNoDeeper) {
    std::string text;
    for (int i = 0; i < 5; ++i)
        text += "FOR,(VAR),1,1,1\n";
    text += take;
    for (int i = 0; i < 5; ++i)
        text += "ENDFOR\n" + take;
    const CompiledScript script = compileSmall(text);
    EXPECT_THAT(script.captures, SizeIs(5)); // all but the innermost
    ASSERT_THAT(script.diagnostics, SizeIs(1));
    EXPECT_EQ(script.diagnostics[0].lineNo, 5);
    EXPECT_EQ(script.diagnostics[0].message, "FOR loops nest at most 4 deep, loop skipped");
}

TEST(Limits, theRealOnesHoldAgainstTheWorst) {
    std::string deep;
    for (int i = 0; i < 200'000; ++i)
        deep += "FOR,(VAR),1,1,20000\n";
    EXPECT_THAT(ZenkaScript::compile(deep, carbondale().context).diagnostics, SizeIs(100'001));

    const CompiledScript wide = ZenkaScript::compile(
        "FOR,(VAR),0.004,0.004,80\nFOR,(VAR),1,1,20000\n" + take + "ENDFOR\nENDFOR\n", carbondale().context);
    EXPECT_GE(wide.captures.size(), 400'000u);
    EXPECT_LE(wide.captures.size(), 500'000u);
    EXPECT_THAT(wide.diagnostics, SizeIs(1));
}

} // namespace
} // namespace zenka::script
