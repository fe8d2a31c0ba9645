// The scripts that a photographer is given: they have to work as they stand.
#include "Sites.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace zenka::script {
namespace {

using testing::IsEmpty;

std::string read(const std::string& path) {
    std::ifstream file(ZENKA_SOURCE_DIR "/" + path);
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_FALSE(text.str().empty()) << path;
    return text.str();
}

/// Compiles an example: no diagnostic, and no body asked for a frame before it can be done with the last.
CompiledScript compileExample(const std::string& name, const Site& site) {
    constexpr double leastPauseSec = 0.5;
    CompiledScript script = ZenkaScript::compile(read("examples/" + name), site.context);
    for (const ScriptDiag& diag : script.diagnostics)
        ADD_FAILURE() << name << " line " << diag.lineNo << ": " << diag.message;
    std::map<std::string, const Capture*> before;
    for (const Capture& frame : script.captures) {
        if (const Capture* last = before[frame.camera]) {
            EXPECT_GE(frame.offsetSec, last->offsetSec + last->shutterSec + leastPauseSec)
                << name << " line " << frame.lineNo << " after line " << last->lineNo;
        }
        before[frame.camera] = &frame;
    }
    return script;
}

void expectSunUp(const CompiledScript& script, const Site& site) {
    for (const Capture& frame : script.captures) {
        const bool meantForDusk = frame.comment.starts_with("Dusk");
        EXPECT_EQ(site.sunAltDeg(frame.offsetSec) > 0, !meantForDusk) << "line " << frame.lineNo;
    }
}

TEST(Examples, theTotalEclipseFitsItsSiteAndOthers) {
    const CompiledScript script = compileExample("total-two-bodies.zenka", zaragoza());
    expectSunUp(script, zaragoza());
    EXPECT_THAT(script.cameras, testing::ElementsAre("CAM1", "CAM2"));
    compileExample("total-two-bodies.zenka", carbondale());
    compileExample("total-two-bodies.zenka", Site("2027-08-02", {25.69, 32.64, 80}, "Africa/Cairo"));
}

TEST(Examples, theLongLensIsBareOnlyBetweenTheFilterCues) {
    const CompiledScript script = compileExample("total-two-bodies.zenka", zaragoza());
    const auto cue = [&](const std::string& words) {
        for (const AudioCue& candidate : script.audioCues)
            if (candidate.text == words)
                return candidate.offsetSec;
        ADD_FAILURE() << words;
        return 0.0;
    };
    const double off = cue("Filter off the long lens now");
    const double on = cue("Filter on the long lens now");
    for (const Capture& frame : script.captures) {
        if (frame.camera != "CAM1")
            continue;
        const bool filtered = frame.comment.starts_with("Partial") || frame.comment == "Full Sun" ||
                              frame.comment == "First contact";
        EXPECT_EQ(filtered, frame.offsetSec < off || frame.offsetSec > on) << "line " << frame.lineNo;
    }
}

TEST(Examples, theAnnularEclipseFitsItsSiteAndOthers) {
    const Site balcarce("2027-02-06", {-37.85, -58.26, 100}, "America/Argentina/Buenos_Aires");
    expectSunUp(compileExample("annular-solar-filter.zenka", balcarce), balcarce);
    compileExample("annular-solar-filter.zenka", Site("2028-01-26", {3.12, -51.36, 10}, "America/Cayenne"));
}

TEST(Examples, thePartialTimeLapseFitsItsSiteAndOthers) {
    expectSunUp(compileExample("partial-timelapse.zenka", paris()), paris());
    compileExample("partial-timelapse.zenka", Site("2024-04-08", {40.71, -74.01, 10}, "America/New_York"));
}

TEST(Examples, everyScriptOfTheGuideCompiles) {
    const std::string guide = read("docs/script-language.md");
    const std::string fence = "```zenka\n";
    int blocks = 0;
    for (auto at = guide.find(fence); at != guide.npos; at = guide.find(fence, at)) {
        at += fence.size();
        const std::string block = guide.substr(at, guide.find("```", at) - at);
        const CompiledScript script = ZenkaScript::compile(block, carbondale().context);
        for (const ScriptDiag& diag : script.diagnostics)
            ADD_FAILURE() << "line " << diag.lineNo << " of\n" << block << diag.message;
        EXPECT_FALSE(script.captures.empty() && script.audioCues.empty()) << block;
        ++blocks;
    }
    EXPECT_GE(blocks, 5);
}

} // namespace
} // namespace zenka::script
