#include "rig/fire/FireScan.h"

#include <gtest/gtest.h>

using namespace zenka::rig;
using Indices = std::vector<std::size_t>;

TEST(FireScan, firesWhatTheClockHasReachedAndNothingTwice) {
    const std::vector<double> offsets{10, 10, 20, 30};
    const auto first = FireScan::scan(offsets, 0, 9.95, 10);
    EXPECT_EQ(first.due, (Indices{0, 1}));
    EXPECT_EQ(first.nextCursor, 2U);
    EXPECT_TRUE(FireScan::scan(offsets, first.nextCursor, 10, 10.05).due.empty());
    EXPECT_EQ(FireScan::scan(offsets, 99, 10, 40).nextCursor, 4U) << "a cursor behind the end stays there";
}

TEST(FireScan, aJumpOfExactlyThreeSecondsIsNoLeap) {
    const std::vector<double> offsets{1};
    EXPECT_EQ(FireScan::scan(offsets, 0, 0, 3).due, (Indices{0}));
    EXPECT_EQ(FireScan::scan(offsets, 0, 0, 3.001).late, 0U);
}

TEST(FireScan, afterALeapOnlyTheNewestStaleFrameGoesLate) {
    const double clock = 1000;
    const std::vector<double> offsets{clock - 4, clock - 2, clock - 0.5};
    const auto result = FireScan::scan(offsets, 0, clock - 5, clock);
    EXPECT_EQ(result.skipped, (Indices{0}));
    EXPECT_EQ(result.late, 1U);
    EXPECT_EQ(result.due, (Indices{2}));
    EXPECT_DOUBLE_EQ(result.jump, 5);
}

TEST(FireScan, aFrameOlderThanTwoMinutesIsNotWorthFiring) {
    const double clock = 1000;
    EXPECT_EQ(FireScan::scan(std::vector{clock - 120}, 0, 0, clock).late, 0U);
    const auto tooOld = FireScan::scan(std::vector{clock - 121}, 0, 0, clock);
    EXPECT_FALSE(tooOld.late);
    EXPECT_EQ(tooOld.skipped, (Indices{0}));
}

TEST(FireStaggers, keepLanesApartAndFramesInThem) {
    const std::vector<std::optional<int>> buses{std::nullopt, 3, std::nullopt, 3, 3, 3, 3, 3, 5,
                                                std::nullopt};
    const std::vector<double> expected{0, 0, 0.06, 0.35, 0.7, 1.05, 1.2, 1.2, 0, 0.12};
    const auto staggers = fireStaggers(buses, 0.35, 1.2, 0.06);
    ASSERT_EQ(staggers.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(staggers[i], expected[i], 1e-12) << "entry " << i;
}
