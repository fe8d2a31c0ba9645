#include "base/Text.h"

#include "base/CivilTime.h"
#include "base/Lifeline.h"
#include "base/Published.h"
#include "base/Uuid.h"

#include <gtest/gtest.h>

#include <optional>
#include <set>

using namespace zenka::base;

TEST(Text, aNumberIsAWholeTextAndFinite) {
    EXPECT_EQ(readNumber("-1.5e2"), -150);
    EXPECT_EQ(readNumber("+.5"), 0.5);
    for (const char* bad : {"", " 1", "1 ", "1,5", "0x10", "inf", "nan", "1e999", "+-1", "++1", "1.2.3", "-"})
        EXPECT_FALSE(readNumber(bad)) << bad;
    EXPECT_EQ(readInteger("+12"), 12);
    for (const char* bad : {"", "1.0", "2147483648", "+-1", " 1"})
        EXPECT_FALSE(readInteger(bad)) << bad;
}

TEST(Text, numbersAndArraysPrintPlainly) {
    EXPECT_EQ(plainNumber(100), "100.0");
    EXPECT_EQ(plainNumber(99.5), "99.5");
    EXPECT_EQ(plainNumber(-0.1), "-0.1");
    EXPECT_EQ(arrayText({}), "[]");
    EXPECT_EQ(arrayText({"CAM1", "a\"b"}), R"(["CAM1", "a\"b"])");
}

TEST(Text, piecesAndReplacements) {
    EXPECT_EQ(split("a,,b,", ',').size(), 4U);
    EXPECT_EQ(splitPieces(",a,,b,", ',').size(), 2U);
    EXPECT_EQ(replacedAll("aXXbX", "X", "yX"), "ayXyXbyX");
    EXPECT_EQ(trimmed(" \t a b \n"), "a b");
    EXPECT_TRUE(containsIgnoringCase("DC-G9M2", "g9m2"));
    EXPECT_EQ(uppered("é c1"), "é C1") << "only ASCII letters change";
}

TEST(Text, aTextFileIsUtf8WithoutItsByteOrderMark) {
    EXPECT_EQ(utf8Text("\xEF\xBB\xBF"
                       "C2 −8s é 𝄞"),
              "C2 −8s é 𝄞");
    EXPECT_EQ(utf8Text(""), "");
    for (const char* bad :
         {"caf\xE9", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\x80", "\xFF"})
        EXPECT_FALSE(utf8Text(bad)) << bad;
}

TEST(CivilTime, timesAreCutAndZonesAreNamesOnly) {
    const Instant instant{1786559343.9999};
    EXPECT_EQ(formatTime("%H:%M:%S", instant, timeZoneOrUtc("Europe/Madrid")), "20:29:03");
    EXPECT_EQ(formatTime("%E3S", instant, timeZoneOrUtc("UTC")), "03.999");
    EXPECT_EQ(formatTime("%E1S", Instant{0.1}, timeZoneOrUtc("UTC")), "00.1") << "no 0.0 by binary rounding";
    EXPECT_EQ(formatTime("%E3S", Instant{1786555857.1}, timeZoneOrUtc("UTC")), "57.100");
    EXPECT_EQ(formatTime("%H:%M", instant, timeZoneOrUtc("Asia/Kathmandu")), "00:14");
    for (const char* bad : {"", "Mars/Olympus", "/etc/passwd", "file:/etc/passwd", "../UTC"})
        EXPECT_FALSE(findTimeZone(bad)) << bad;
    // The zone's rules go on past 2037.
    EXPECT_EQ(formatTime("%H", Instant{4086028800}, timeZoneOrUtc("Europe/Madrid")),
              "02"); // 2099-06-25 00 UT
}

TEST(Published, tellsChangesOnly) {
    Published<int> value{1};
    int told = 0;
    value.changed().connect([&](int) { ++told; });
    value.set(1);
    value.set(2);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(value.get(), 2);
}

TEST(Lifeline, aGuardedFunctionDoesNothingOnceItsOwnerIsGone) {
    int calls = 0;
    std::function<void(int)> guarded;
    {
        const Lifeline lifeline;
        guarded = lifeline.guard([&](int by) { calls += by; });
        guarded(2);
    }
    guarded(40);
    EXPECT_EQ(calls, 2);
}

TEST(Uuid, isRandomAndWellFormed) {
    std::set<Uuid> seen;
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(seen.insert(Uuid::fresh()).second);
    const std::string text = Uuid::fresh().text();
    ASSERT_EQ(text.size(), 36U);
    EXPECT_EQ(text[14], '4');
    EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
}
