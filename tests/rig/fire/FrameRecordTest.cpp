#include "rig/fire/FrameRecord.h"

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using rig::FrameRecord;
using rig::FrameResult;
using test::VirtualRig;

TEST(FrameRecord, theWorstOfSeveralBodiesStandsAndARewindForgetsWhatIsToComeAgain) {
    FrameRecord record;
    EXPECT_TRUE(record.note("CAM1", 7, FrameResult::dropped));
    EXPECT_FALSE(record.note("CAM1", 7, FrameResult::fired));
    EXPECT_TRUE(record.note("CAM1", 3, FrameResult::fired));
    EXPECT_EQ(record.of("CAM1", 7), FrameResult::dropped);
    EXPECT_EQ(record.of("CAM1", 5), FrameResult::none);
    EXPECT_EQ(record.of("CAM2", 7), FrameResult::none);
    EXPECT_EQ(record.of("CAM1", -1), FrameResult::none);
    record.forgetFrom(4);
    EXPECT_EQ(record.of("CAM1", 7), FrameResult::none);
    EXPECT_EQ(record.of("CAM1", 3), FrameResult::fired);
}

TEST(FrameRecord, aRunNotesEachFrameOnceAndTheNextRunBeginsWithNone) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(20) + rig.frameAt(30, "NOBODY"));
    body->outcomes = {test::refusal()};
    int noted = 0;
    rig.model.outcomes().resultNoted().connect([&](const std::string&, int) { ++noted; });
    rig.playFrom(0);
    rig.run(35);
    const FrameRecord& record = rig.model.outcomes().results();
    EXPECT_EQ(record.of("CAM1", 1), FrameResult::dropped);
    EXPECT_EQ(record.of("CAM1", 2), FrameResult::fired);
    EXPECT_EQ(record.of("NOBODY", 3), FrameResult::noCamera);
    EXPECT_EQ(noted, 3);

    rig.model.transport().togglePlay();
    EXPECT_EQ(record.of("CAM1", 2), FrameResult::fired) << "a pause keeps them";
    rig.model.transport().togglePlay();
    EXPECT_EQ(record.of("CAM1", 2), FrameResult::none);
}

TEST(FrameRecord, anAnswerThatComesAfterTheScriptChangedIsNotTheNewScripts) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    body->holdCompletions = true;
    rig.load(rig.frameAt(10));
    rig.playFrom(0);
    rig.run(11);
    rig.load(rig.frameAt(5) + rig.frameAt(20));
    body->complete();
    EXPECT_EQ(rig.model.outcomes().results().of("CAM1", 1), FrameResult::none);
    EXPECT_EQ(rig.model.outcomes().shotCounts().at(body->id()), 1) << "it still counts";
}
