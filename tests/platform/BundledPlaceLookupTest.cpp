#include "platform/BundledPlaceLookup.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zenka::platform {
namespace {

TEST(BundledPlaceLookup, answersWithoutANetwork) {
    const BundledPlaceLookup lookup;
    EXPECT_EQ(lookup.zoneAt(41.65, -0.88), "Europe/Madrid");
    EXPECT_EQ(lookup.zoneAt(30, -45), std::nullopt);
    const auto found = lookup.search("zaragoza", 3);
    ASSERT_THAT(found, ::testing::SizeIs(3));
    EXPECT_EQ(found[0].label, "Zaragoza, ES");
    EXPECT_NEAR(found[0].lat, 41.65, 0.02);
    EXPECT_NEAR(found[0].lon, -0.88, 0.02);
}

TEST(BundledPlaceLookup, namesAPlaceOnlyWithinThirtyKilometres) {
    const BundledPlaceLookup lookup;
    EXPECT_EQ(lookup.placeAt(41.65, -0.88), "Zaragoza, ES");
    // East of Longyearbyen the next place is across the sea; a degree of longitude is 22.7 km there.
    EXPECT_EQ(lookup.placeAt(78.22, 15.64 + 29 / 22.7), "Longyearbyen, SJ");
    EXPECT_EQ(lookup.placeAt(78.22, 15.64 + 31 / 22.7), std::nullopt);
}

} // namespace
} // namespace zenka::platform
