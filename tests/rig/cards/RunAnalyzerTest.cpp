#include "base/CivilTime.h"
#include "support/ImageFiles.h"
#include "support/TempFolder.h"
#include "support/VirtualRig.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>

#include <limits>

using namespace zenka;
using Step = rig::AnalyzerState::Step;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

namespace fs = std::filesystem;

struct RunAnalyzerTest : testing::Test {
    test::TempFolder root;
    test::VirtualRig rig;
    rig::RunAnalyzer& analyzer = rig.model.analyzer();
    double clock = rig.model.site().contactTHours().at("MAX") * 3600;
    std::vector<fs::path> opened;

    void SetUp() override {
        rig.model.cards().start();
        analyzer.reportWritten().connect([this](const fs::path& report) { opened.push_back(report); });
    }
    const rig::AnalyzerState& state() const { return analyzer.state().get(); }

    /// Three frames a minute apart on each camera, as rig.frameAt() writes them.
    void loadScript(const std::vector<std::string>& cameras = {"CAM1"}) {
        std::string script;
        for (int frame = 0; frame < 3; ++frame)
            for (const std::string& camera : cameras)
                script += rig.frameAt(clock + 60 * frame, camera);
        rig.load(script);
    }
    fs::path card(const std::string& name) {
        fs::create_directories(root.path() / name / "DCIM/100");
        return root.path() / name;
    }
    /// A frame as the script wants it, or with another shutter, so many seconds after any evening.
    void put(const fs::path& card, const std::string& file, double seconds, double shutter = 0.002) {
        test::writeFile(card / "DCIM/100" / file, "x");
        const base::Instant evening{1786566543};
        rig.images.fields[file] = {.dateTimeOriginal =
                                       base::formatTime("%Y:%m:%d %H:%M:%S", evening + base::Seconds{seconds},
                                                        base::machineTimeZone()),
                                   .isoSpeedRatings = 200,
                                   .fNumber = 8,
                                   .exposureTime = shutter,
                                   .make = "NIKON",
                                   .model = "Z 8"};
    }
    fs::path fullCard(const std::string& name) {
        const fs::path volume = card(name);
        for (int frame = 0; frame < 3; ++frame)
            put(volume, absl::StrFormat("%s_%d.NEF", name, frame), 60 * frame);
        return volume;
    }
    /// Plays the script with a real body from shortly before it to the end of the timeline.
    void playThrough() {
        rig.playFrom(clock - 5);
        rig.run(3 * 3600);
        ASSERT_FALSE(rig.model.transport().runActive());
    }
};

} // namespace

TEST_F(RunAnalyzerTest, whatIsMissingIsToldBeforeAnythingIsRead) {
    rig.load("");
    analyzer.analyzeRun();
    EXPECT_EQ(state().title, "No script loaded");
    loadScript();
    analyzer.analyzeRun();
    rig.run(1);
    EXPECT_EQ(state().title, "No SD card found");
    analyzer.cancel();
    EXPECT_EQ(state(), rig::AnalyzerState());

    rig.volumes.plug(fullCard("CARD"));
    rig.model.transport().armRealEclipseTiming(true);
    analyzer.analyzeRun();
    rig.run(1);
    EXPECT_EQ(state().title, "A live run is on");
    EXPECT_THAT(rig.images.asked, IsEmpty());
}

TEST_F(RunAnalyzerTest, oneCardOfOneCameraWithOneRunGoesStraightToTheVerdict) {
    loadScript();
    rig.volumes.plug(fullCard("EOS_DIGITAL"));
    analyzer.analyzeRun();
    rig.run(1);
    ASSERT_EQ(state().step, Step::verdict);
    EXPECT_EQ(state().title, "✓ Simulation Analyzer: PASS");
    EXPECT_THAT(state().text, HasSubstr("3 landed · 0 dropped · 0 at a rounded ISO"));
    EXPECT_TRUE(state().pass);
    ASSERT_THAT(opened, SizeIs(1));
    EXPECT_EQ(opened[0].parent_path(), rig.folders.reports());
    EXPECT_THAT(opened[0].filename(), testing::AllOf(testing::StartsWith("Zenka Run Report 2026-08-12 "),
                                                     testing::EndsWith(".html")));
    EXPECT_THAT(rig.files.contents[opened[0]], HasSubstr("EOS_DIGITAL"));
    EXPECT_TRUE(rig.logged("Simulation Analyzer: reading “EOS_DIGITAL” for CAM1…"));

    analyzer.sendReport("first light");
    EXPECT_TRUE(rig.logged("no service is set up"));
    EXPECT_EQ(state().step, Step::idle);
    std::vector<std::string> notes;
    analyzer.toSend().connect([&](const auto& outgoing) { notes.push_back(outgoing.note); });
    analyzer.analyzeRun();
    rig.run(1);
    EXPECT_NE(opened.back(), opened.front()) << "two reports of one minute";
    analyzer.sendReport("second");
    EXPECT_THAT(notes, ElementsAre("second"));

    rig.disk.failFrom = 1; // it answers nothing any more, not even whether a name is free
    rig.disk.failures = std::numeric_limits<int>::max();
    analyzer.analyzeFolder(root.path() / "EOS_DIGITAL");
    rig.run(1);
    EXPECT_EQ(state().title, "✓ Simulation Analyzer: PASS");
    EXPECT_THAT(state().text, HasSubstr("could not be written"));
    EXPECT_THAT(opened, SizeIs(2));
    EXPECT_TRUE(rig.logged("the report could not be written to"));
}

TEST_F(RunAnalyzerTest, whatOnlyTheUserCanKnowIsAsked) {
    loadScript({"CAM1", "CAM2"});
    rig.volumes.plug(fullCard("A"));
    const fs::path second = fullCard("B");
    put(second, "TEST.NEF", -1000); // a test fire
    put(second, "LATE.MOV", 0);
    put(second, "BAD.NEF", 0);
    rig.images.fields.erase("BAD.NEF");
    rig.volumes.plug(second);

    analyzer.analyzeRun();
    rig.run(1);
    ASSERT_EQ(state().step, Step::pickCard);
    EXPECT_THAT(state().choices, ElementsAre("A", "B"));
    analyzer.choose(7); // nothing
    analyzer.choose(1);
    rig.run(1);
    ASSERT_EQ(state().step, Step::pickCamera);
    EXPECT_THAT(state().text, HasSubstr("This card reports “NIKON Z 8”."));
    EXPECT_THAT(state().choices, ElementsAre("CAM1", "CAM2"));
    analyzer.choose(1);
    rig.run(1);
    ASSERT_EQ(state().step, Step::pickRun);
    EXPECT_EQ(state().text,
              "This card holds 2 separate bursts (runs + test-fires). Pick the one to check against "
              "the loaded script (3 frames).");
    ASSERT_THAT(state().choices, SizeIs(2));
    EXPECT_THAT(state().choices[0], HasSubstr("Analyze 1 frame · "));
    EXPECT_EQ(state().recommended, 1);
    analyzer.choose(0);
    rig.run(1);
    ASSERT_EQ(state().step, Step::verdict);
    EXPECT_EQ(state().title, "Simulation Analyzer: review");
    EXPECT_THAT(state().text, HasSubstr("1 landed · 2 dropped"));
    EXPECT_THAT(state().text,
                HasSubstr("Left out: 1 image that is damaged or without a time; files that are no "
                          "images: mov ×1."));
    analyzer.keepLocal();
    EXPECT_TRUE(rig.logged("Analyzer: report kept local (not sent)."));
}

TEST_F(RunAnalyzerTest, anAnalysisThatIsGivenUpLeavesNothing) {
    loadScript();
    rig.volumes.plug(fullCard("A"));
    analyzer.analyzeRun();
    EXPECT_EQ(state().step, Step::working);
    analyzer.cancel();
    rig.run(1);
    EXPECT_EQ(state().step, Step::idle);
    analyzer.analyzeFolder(root.path() / "A");
    ASSERT_EQ(state().step, Step::working);
    analyzer.analyzeRun(); // one at a time
    analyzer.cancel();
    rig.run(5);
    EXPECT_EQ(state().step, Step::idle);
    EXPECT_EQ(rig.files.count(".html"), 0);
    EXPECT_THAT(rig.images.asked, IsEmpty());
}

TEST_F(RunAnalyzerTest, aCardWithoutReadableImagesSaysWhatItHolds) {
    loadScript();
    const fs::path volume = card("A");
    for (const char* name : {"1.MOV", "2.mov", "3.xyz", "4.b", "5.c", "6.d"})
        test::writeFile(volume / "DCIM" / name, "x");
    rig.volumes.plug(volume);
    analyzer.analyzeRun();
    rig.run(1);
    EXPECT_TRUE(rig.logged("it holds files I skipped (mov ×2, b ×1, c ×1, d ×1). If one of those is"));
    EXPECT_THAT(state().text, HasSubstr("0 landed · 3 dropped"));
}

TEST_F(RunAnalyzerTest, theRunsOwnLogTellsLostFramesFromDroppedOnes) {
    rig.addBody("CAM1")->outcomes = {{.ok = true, .responded = true},
                                     {.note = "dropped, busy", .responded = true}};
    loadScript();
    for (int run = 0; run < 3; ++run)
        playThrough();
    const std::vector<std::string> logs = rig.files.namesIn(rig.folders.runLogs());
    const fs::path volume = card("A");
    put(volume, "1.NEF", 120); // the last of three
    rig.volumes.plug(volume);
    rig.run(1);
    std::optional<analysis::AnalysisResult> sent;
    analyzer.toSend().connect([&](const auto& outgoing) { sent = outgoing.result; });
    analyzer.choose(0);
    rig.run(1);
    EXPECT_THAT(state().text, HasSubstr("Left out: 2 other run logs of the same shots."));
    analyzer.sendReport("");
    ASSERT_TRUE(sent);
    EXPECT_EQ(sent->matched, 1);
    EXPECT_EQ(sent->dropDetected.value_or(-1) + sent->dropSilent.value_or(-1), 2);
    EXPECT_EQ(sent->runLogName, logs[logs.size() - 2]) << "the newest";
}

TEST_F(RunAnalyzerTest, aCompletedRunOffersTheCardThatIsInOrTheNextOne) {
    rig.addBody("CAM1");
    loadScript();
    playThrough();
    ASSERT_EQ(state().step, Step::message);
    EXPECT_EQ(state().summary, "3 frames fired, 0 dropped.");
    rig.volumes.plug(fullCard("A"));
    rig.run(1);
    EXPECT_EQ(state().title, "Check what actually landed?");
    rig.playFrom(clock - 5);
    EXPECT_EQ(state().step, Step::idle) << "a run comes first";
    rig.model.transport().togglePlay();

    playThrough();
    EXPECT_EQ(state().step, Step::offer) << "it is still in";
    analyzer.choose(0);
    rig.run(1);
    EXPECT_EQ(state().step, Step::verdict);
    rig.playFrom(clock - 5);
    EXPECT_EQ(state().step, Step::verdict) << "it was asked for";
    rig.model.transport().armRealEclipseTiming(true);
    EXPECT_EQ(state().step, Step::idle);
    EXPECT_EQ(rig.files.count(".html"), 1);
}

TEST_F(RunAnalyzerTest, aCardIsNoticedAndDisturbsNobody) {
    loadScript();
    rig.volumes.plug(fullCard("A"));
    rig.run(1);
    EXPECT_TRUE(rig.logged("Card “A” is in."));
    EXPECT_EQ(state().step, Step::idle) << "nothing was fired";
    rig.addBody("CAM1");
    rig.playFrom(clock - 5);
    rig.run(70);
    rig.volumes.plug(fullCard("B"));
    rig.run(1);
    EXPECT_EQ(state().step, Step::idle) << "in a run";
    EXPECT_THAT(rig.model.cards().cards().get(), SizeIs(2));
}
