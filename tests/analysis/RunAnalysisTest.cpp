#include "analysis/RunAnalysis.h"

#include "analysis/Runs.h"

#include <absl/strings/str_format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

using namespace zenka;
using namespace zenka::analysis;
using test::capture;
using test::compare;
using test::frameOf;
using test::framesOf;
using test::plan;
using Lines = std::vector<std::string>;

TEST(RunAnalysis, aClockThreeHoursOffIsFound) {
    const auto captures = plan(300);
    for (const double ahead : {0.0, 3 * 3600.0, -3 * 3600.0}) {
        const AnalysisResult result = compare(captures, framesOf(captures, ahead));
        EXPECT_TRUE(result.pass());
        EXPECT_EQ(result.matched, 300);
        EXPECT_EQ(result.extras, 0);
        EXPECT_LT(result.jitterMaxMs, 0.01);
        EXPECT_EQ(result.durationStr(), "09m 58s");
    }
}

TEST(RunAnalysis, aClockThatDriftsByMoreThanItsReachIsFollowed) {
    const auto captures = plan(720, 10);
    std::vector<ExifFrame> frames;
    for (const auto& shot : captures)
        frames.push_back(frameOf(shot, shot.offsetSec / 60)); // two minutes in two hours
    const AnalysisResult result = compare(captures, frames);
    EXPECT_EQ(result.matched, 720);
    EXPECT_EQ(result.misExposed + result.extras, 0);
    EXPECT_EQ(result.durationStr(), "2h 01m 49s");
}

TEST(RunAnalysis, emptyListsGiveZerosAndNoPass) {
    const AnalysisResult none = compare({}, {});
    EXPECT_FALSE(none.pass());
    EXPECT_EQ(none.durationStr(), "?");
    EXPECT_EQ(none.missedPercent(), 0);
    EXPECT_FALSE(none.dropSilent || none.dropDetected || none.dropFalseAlarm);

    const AnalysisResult noFrames = compare(plan(10), {});
    EXPECT_FALSE(noFrames.pass());
    EXPECT_EQ(noFrames.missing(), 10);
    EXPECT_EQ(noFrames.landedStatus(), "red");
    EXPECT_EQ(noFrames.landed, std::vector<bool>(10, false));

    const AnalysisResult noPlan = compare({}, framesOf(plan(10)));
    EXPECT_FALSE(noPlan.pass());
    EXPECT_EQ(noPlan.extras, 10);
}

TEST(RunAnalysis, aTestBurstIsARunOfItsOwn) {
    const auto captures = plan(100);
    std::vector<ExifFrame> frames = framesOf(captures);
    for (int i = 0; i < 5; ++i)
        frames.push_back(frameOf(capture(i - 600)));
    const auto runs = RunAnalysis::segments(frames);
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].size(), 5U);
    EXPECT_EQ(RunAnalysis::bestSegment(frames, 100), runs[1]);
    EXPECT_EQ(RunAnalysis::bestSegment(frames, 6), runs[0]);
    EXPECT_TRUE(RunAnalysis::bestSegment({}, 6).empty());

    // Exactly 300 s is no gap; of two runs as good as each other the later is taken.
    EXPECT_EQ(RunAnalysis::segments({frameOf(capture(0)), frameOf(capture(300))}).size(), 1U);
    const std::vector<ExifFrame> pair{frameOf(capture(0)),   frameOf(capture(1)),   frameOf(capture(400)),
                                      frameOf(capture(401)), frameOf(capture(402)), frameOf(capture(403))};
    EXPECT_EQ(RunAnalysis::bestSegment(pair, 3).size(), 4U);
}

TEST(RunAnalysis, aRoundedISOIsNoFault) {
    auto captures = plan(60);
    for (std::size_t i = 0; i < 12; ++i)
        captures[i].iso = i < 8 ? 320 : 640;
    auto frames = framesOf(captures);
    for (std::size_t i = 0; i < 12; ++i)
        frames[i].iso = i < 8 ? 400 : 800;
    frames[20].iso = 0; // a file that does not tell its ISO
    const AnalysisResult result = compare(captures, frames);
    EXPECT_TRUE(result.pass());
    EXPECT_EQ(result.matched, 60);
    EXPECT_EQ(result.nearMiss, 12);
    EXPECT_EQ(result.nearMissNote, (Lines{"ISO 320→400 (×8)", "ISO 640→800 (×4)"}));
    EXPECT_EQ(result.groups[0].isoDisplay(), "ISO 320 → 400");
    EXPECT_EQ(result.groups[20].isoDisplay(), "ISO 100");
}

TEST(RunAnalysis, wrongSettingsAtTheRightMomentFailTheRun) {
    auto captures = plan(200);
    captures[10].comment = "Corona set 1";
    auto frames = framesOf(captures);
    frames[10].shutterSec *= 2;
    frames[11].iso = 200;
    frames[12].iso = 200;
    frames[13].aperture = 5.6;
    frames[13].iso = 0;
    frames[14].shutterSec = 0; // the file tells none, so there is nothing to quote
    const AnalysisResult result = compare(captures, frames);
    EXPECT_EQ(result.matched, 195);
    EXPECT_EQ(result.misExposed, 5);
    EXPECT_EQ(result.missing(), 0);
    EXPECT_EQ(result.extras, 0);
    EXPECT_FALSE(result.pass());
    EXPECT_EQ(result.misExposedNote,
              (Lines{"asked ISO 100, card says ISO 200 (x2)", "asked 1/1000, card says 1/500 (x1)",
                     "asked ISO 100, file carries no ISO tag, asked f/8, card says f/5.6 (x1)",
                     "settings differ from the script (x1)"}));
    EXPECT_EQ(result.groups[10].wrongCount, 1);
    EXPECT_EQ(result.mismatches.front(), "Corona set 1: 0/1 landed");
    EXPECT_EQ(result.mismatches[1], "ISO 100 f/8 1/250: 0/1 landed");
}

TEST(RunAnalysis, whatACaptureLeavesToTheCameraPasses) {
    auto captures = plan(20);
    captures[3] = {.offsetSec = 6, .camera = "CAM1", .bulb = true, .iso = 100};
    captures[4] = {.offsetSec = 8, .camera = "CAM1"};
    auto frames = framesOf(captures);
    frames[3].shutterSec = 4;
    frames[3].aperture = 2.8;
    frames[4] = {.date = frames[4].date, .iso = 6400, .aperture = 22, .shutterSec = 30};
    const AnalysisResult result = compare(captures, frames);
    EXPECT_TRUE(result.pass());
    EXPECT_EQ(result.groups[3].label, "ISO 100 BULB");
    EXPECT_EQ(result.groups[3].shutter, "-");
}

TEST(RunAnalysis, aRunPassesUpToItsLimits) {
    struct Case {
        int expected, matched, extras;
        bool pass;
        const char* status;
    };
    for (const Case& c : {Case{100, 100, 20, true, "green"}, Case{100, 100, 21, false, "green"},
                          Case{99, 99, 20, true, "green"}, Case{99, 99, 21, false, "green"},
                          Case{500, 500, 100, true, "green"}, Case{150, 147, 0, true, "green"},
                          Case{149, 146, 0, false, "yellow"}, Case{150, 135, 0, false, "yellow"},
                          Case{150, 134, 0, false, "red"}}) {
        const AnalysisResult result{.expectedTotal = c.expected, .matched = c.matched, .extras = c.extras};
        SCOPED_TRACE(absl::StrFormat("%d of %d, %d extras", c.matched, c.expected, c.extras));
        EXPECT_EQ(result.pass(), c.pass);
        EXPECT_EQ(result.landedStatus(), c.status);
    }
}

TEST(RunAnalysis, garbageInTheFilesBreaksNothing) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const auto captures = plan(100);
    auto frames = framesOf(captures);
    for (const double odd : {inf, -inf, std::nan(""), -1.0, 1e308}) {
        for (int i = 0; i < 3; ++i)
            frames.push_back(
                {.date = {test::cardZero + 7 * i}, .iso = -7, .aperture = odd, .shutterSec = odd});
        frames.push_back({.date = {odd}, .iso = std::numeric_limits<int>::max()});
    }
    const AnalysisResult result = compare(captures, frames);
    EXPECT_EQ(result.matched, 100);
    EXPECT_EQ(result.actualTotal, 120);
    EXPECT_EQ(result.extras, 20);
    EXPECT_FALSE(RunAnalysis::bestSegment(frames, 100).empty());
}

TEST(RunAnalysis, theLogTellsThreeKindsOfLossApart) {
    auto captures = plan(100);
    captures[41].offsetSec = captures[40].offsetSec; // these two share one key
    auto frames = framesOf(captures);
    for (const int lost : {80, 60, 50, 41, 40})
        frames.erase(frames.begin() + lost);
    SoftwareOK log;
    for (const auto& shot : captures)
        log[RunAnalysis::timeKey(shot.offsetSec)] = true;
    log[RunAnalysis::timeKey(captures[40].offsetSec)] = false; // lost, and the software knew
    log[RunAnalysis::timeKey(captures[10].offsetSec)] = false; // a false alarm
    log.erase(RunAnalysis::timeKey(captures[50].offsetSec));   // lost, and the log does not know it
    const AnalysisResult result = RunAnalysis::compare(captures, frames, {}, log, "run.csv");
    EXPECT_EQ(result.missing(), 5);
    EXPECT_EQ(result.dropDetected, 2);
    EXPECT_EQ(result.dropSilent, 2);
    EXPECT_EQ(result.dropFalseAlarm, 1);
    EXPECT_EQ(result.runLogName, "run.csv");
}

TEST(RunAnalysis, jitterIsMeasuredInShortIntervalsOnly) {
    std::vector<script::Capture> captures;
    for (const double at : {0.0, 1.0, 2.0, 2.0, 12.5, 22.5})
        captures.push_back(capture(at));
    auto frames = framesOf(captures);
    frames[1].date = frames[1].date + base::Seconds(0.25); // +250, then −250 ms
    frames[5].date = frames[5].date - base::Seconds(0.1);
    const AnalysisResult result = compare(captures, frames);
    EXPECT_EQ(result.jitterCount, 3); // neither the double instant nor the 10.5 s
    EXPECT_NEAR(result.jitterMeanMs, 200, 0.01);
    EXPECT_NEAR(result.jitterMaxMs, 250, 0.01);
}

TEST(RunAnalysis, theWorstGroupsAreNamedFirstAndAtMostForty) {
    std::vector<script::Capture> captures;
    std::vector<ExifFrame> frames;
    for (int group = 0; group < 100; ++group)
        for (int i = 0; i < 3; ++i) {
            captures.push_back(capture(300 * group + i, group % 2 == 0 ? 0.001 : 0.1));
            captures.back().comment = i == 0 ? absl::StrFormat("Set %d", group) : "not the first";
            if (i >= (group == 77 ? 3 : group % 2))
                frames.push_back(frameOf(captures.back()));
        }
    const AnalysisResult result = compare(captures, frames);
    ASSERT_EQ(result.groups.size(), 100U);
    ASSERT_EQ(result.mismatches.size(), 40U);
    EXPECT_EQ(result.mismatches[0], "Set 77: 0/3 landed");
    EXPECT_EQ(result.mismatches[1], "Set 1: 2/3 landed");
}

TEST(RunAnalysis, aCaptureAndItsRowHaveOneTimeKey) {
    EXPECT_EQ(RunAnalysis::timeKey(12.3446), 1235);
    EXPECT_EQ(RunAnalysis::timeKey(12.345), 1235);
    EXPECT_EQ(RunAnalysis::timeKey(-12.345), -1235);
    EXPECT_EQ(RunAnalysis::timeKey(1e10), std::numeric_limits<int>::max());
    std::mt19937 engine(1);
    for (int i = 0; i < 100'000; ++i) {
        double offset = std::uniform_real_distribution(-20'000.0, 20'000.0)(engine);
        if (i % 2 == 0) // a half of a millisecond, or the number next to it
            offset = (std::floor(offset * 1000) + 0.5) / 1000;
        if (i % 4 == 0)
            offset = std::floor(offset * 16) / 16;
        ASSERT_EQ(RunAnalysis::timeKey(offset),
                  RunAnalysis::timeKey(std::strtod(absl::StrFormat("%.3f", offset).c_str(), nullptr)))
            << absl::StrFormat("%.17g", offset);
    }
}
