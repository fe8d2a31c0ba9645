#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;
using test::VirtualRig;

TEST(FireClock, beatsTwentyTimesASecondInARunAndTwiceWhenIdle) {
    VirtualRig rig;
    rig.run(1);
    EXPECT_DOUBLE_EQ(rig.machine.fireTimer.period().count(), 0.5);
    rig.playFrom(0);
    EXPECT_DOUBLE_EQ(rig.machine.fireTimer.period().count(), 0.05);
    rig.model.transport().togglePlay();
    EXPECT_DOUBLE_EQ(rig.machine.fireTimer.period().count(), 0.5);
}

TEST(FireClock, aStallDoesNotThrowASimulatedClockForward) {
    VirtualRig rig;
    rig.playFrom(0);
    rig.run(1);
    const double before = rig.model.transport().clock();
    rig.machine.time.stallMainFor(base::Seconds{10});
    rig.run(10);
    EXPECT_NEAR(rig.model.transport().clock(), before + 0.25, 0.06) << "one tick, not a burst";
}

TEST(FireClock, aStallInARunIsWarnedOfOnceAndAFinishedTickRearmsTheWarning) {
    VirtualRig rig;
    rig.model.fireClock().stallContext().setOccluded(true);
    rig.playFrom(0);
    rig.run(1);
    rig.machine.time.stallMainFor(base::Seconds{20});
    rig.run(21);
    EXPECT_EQ(rig.countLines("⚠︎ Fire loop blocked: main thread hasn't serviced a tick for 5s (window "
                             "OCCLUDED/hidden, app active). Frames due in this window are at risk."),
              1);
    rig.machine.time.stallMainFor(base::Seconds{6});
    rig.run(7);
    EXPECT_EQ(rig.countLines("Fire loop blocked"), 2);
}

TEST(FireClock, anIdleApplicationsStallIsNobodysConcern) {
    VirtualRig rig;
    rig.run(1);
    rig.machine.time.stallMainFor(base::Seconds{20});
    rig.run(30);
    EXPECT_EQ(rig.countLines("Fire loop blocked"), 0);
}

TEST(FireClock, threeHoursWithFourBodiesFireEveryFrameOnTime) {
    VirtualRig rig;
    std::string script;
    for (int i = 0; i < 500; ++i) {
        for (int camera = 1; camera <= 4; ++camera)
            script += rig.frameAt(i * 21.6, "CAM" + std::to_string(camera));
    }
    for (int camera = 1; camera <= 4; ++camera)
        rig.addBody("CAM" + std::to_string(camera));
    rig.load(script);
    rig.playFrom(-30);
    rig.run(3 * 3600 + 60);
    EXPECT_FALSE(rig.model.transport().playing().get());
    EXPECT_EQ(rig.rows().size(), 2000U);
    const double largest = rig.model.logbook().lateness().largest();
    EXPECT_LT(largest, 0.01) << "ms";
    RecordProperty("largest_lateness_ms", std::to_string(largest) + " (ceiling 0.01)");
}
