#include "base/TimeWords.h"

#include "base/CivilTime.h"

#include <gtest/gtest.h>

using namespace zenka::base;

namespace {

Instant at(int month, int hour, int minute = 0, int second = 0) {
    return instantOf(absl::CivilSecond(2026, month, 12, hour, minute, second), absl::UTCTimeZone());
}

} // namespace

TEST(TimeWords, theTimeOfDayIsThatOfTheZoneAndIsCut) {
    const Instant nearlyMidnight = at(8, 21, 59, 59) + Seconds{0.999};
    EXPECT_EQ(localHMS(nearlyMidnight, "Europe/Madrid"), "23:59:59");
    EXPECT_EQ(localHMS(nearlyMidnight, "Asia/Kathmandu"), "03:44:59");
    EXPECT_EQ(localHMS(nearlyMidnight, "Nowhere/At all"), "21:59:59") << "UTC";
}

TEST(TimeWords, aZoneGoesByItsNameOfTheSeasonOrByItsCity) {
    const Instant summer = at(8, 18);
    const Instant winter = at(1, 18);
    EXPECT_EQ(tzAbbr("Europe/Madrid", summer), "CEST");
    EXPECT_EQ(tzAbbr("Europe/Madrid", winter), "CET");
    EXPECT_EQ(tzAbbr("Atlantic/Reykjavik", summer), "GMT");
    EXPECT_EQ(tzAbbr("UTC", summer), "UTC");
    EXPECT_EQ(tzAbbr("America/Argentina/Buenos_Aires", summer), "Buenos Aires") << "its own is -03";
    EXPECT_EQ(tzAbbr("Etc/GMT+6", summer), "UTC−6") << "which lies in the west";
    EXPECT_EQ(tzAbbr("Etc/GMT-11", summer), "UTC+11");
    EXPECT_EQ(tzAbbr("Etc/GMT", summer), "UTC");
    EXPECT_EQ(tzAbbr("Nowhere/At all", summer), "UTC");
}

TEST(TimeWords, aDurationOfDaysTellsThem) {
    EXPECT_EQ(durHMS(0), "00:00:00");
    EXPECT_EQ(durHMS(59.999), "00:00:59");
    EXPECT_EQ(durHMS(-701), "00:11:41");
    EXPECT_EQ(durHMS(86399.5), "23:59:59");
    EXPECT_EQ(durHMS(86400), "1d 00:00:00");
    EXPECT_EQ(durHMS(8 * 86400 + 23 * 3600 + 184), "8d 23:03:04");
}

TEST(TimeWords, aTimeOfDayIsNudgedAroundMidnight) {
    const auto later = [](const char* text, int seconds) {
        const auto time = readTimeOfDay(text);
        return time ? laterTimeOfDay(*time, seconds) : std::string("no time");
    };
    EXPECT_EQ(later("20:29", 1), "20:29:01");
    EXPECT_EQ(later(" 23:59:30 ", 60), "00:00:30");
    EXPECT_EQ(later("0:0", -1), "23:59:59");
    for (const char* bad : {"", "20", "24:00", "20:60", "20:00:60", "+1:00", "1:2:3:4", "ab:cd", "-1:00"})
        EXPECT_EQ(later(bad, 0), "no time") << bad;
}
