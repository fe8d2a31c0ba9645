#include "analysis/RunLogTables.h"

#include "analysis/Runs.h"
#include "base/Text.h"
#include "rig/runlog/RunLogFormat.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

using namespace zenka;
using namespace zenka::analysis;
using namespace zenka::analysis::RunLogTables;

namespace {

std::string row(double offsetSec, const std::string& result, rig::RunLogEntry entry = {}) {
    entry.offsetSec = offsetSec;
    entry.result = result;
    if (entry.cameraToken.empty())
        entry.cameraToken = "CAM1";
    return rig::RunLogFormat::csvRow(entry, absl::UTCTimeZone());
}

std::string head() {
    return rig::RunLogFormat::csvHead(
        {.runKind = "real", .eclipseName = "Total, \"2026\"", .site = "A hill, ES"});
}

SoftwareOK verdict(const std::string& csv) {
    return parseRunLogVerdict(csv, "CAM1");
}

} // namespace

TEST(RunLogTables, whatTheRunWroteIsReadBack) {
    std::string csv = head() + row(-8, "ok", {.note = "a \"quoted\" word,\r\nand a line"});
    csv += rig::RunLogFormat::csvEvent({.text = "\"an, event"}, absl::UTCTimeZone());
    csv += row(1, "dropped") + row(2, "skipped") + row(3, "ok", {.cameraToken = "CAM2"});
    EXPECT_EQ(verdict(csv), (SoftwareOK{{-800, true}, {100, false}, {200, false}}));
    EXPECT_EQ(parseRunLogVerdict(csv, "CAM2"), (SoftwareOK{{300, true}}));
}

TEST(RunLogTables, aShotThatSucceededInTheEndIsGood) {
    EXPECT_EQ(verdict(head() + row(1, "dropped") + row(1, "ok") + row(2, "ok") + row(2, "dropped")),
              (SoftwareOK{{100, true}, {200, true}}));
}

TEST(RunLogTables, aLogWithAFaultGivesWhatIsSoundOfIt) {
    const SoftwareOK sound{{100, true}, {200, false}};
    const std::map<std::string, SoftwareOK> logs{
        {"killed.csv", sound},        {"quoted.csv", sound},       {"unclosed-quote.csv", sound},
        {"crlf.csv", sound},          {"other-camera.csv", sound}, {"no-header.csv", {}},
        {"no-result-column.csv", {}}, {"empty.csv", {}},
    };
    for (const auto& [name, expected] : logs) {
        std::ifstream file(ZENKA_SOURCE_DIR "/tests/data/run-logs/" + name, std::ios::binary);
        ASSERT_TRUE(file) << name;
        EXPECT_EQ(verdict({std::istreambuf_iterator<char>(file), {}}), expected) << name;
    }
}

TEST(RunLogTables, aDamagedRowCostsThatRowOnly) {
    const SoftwareOK both{{100, true}, {300, true}};
    const std::string whole = row(2, "ok", {.note = "a \"note\", long"});
    const std::size_t afterResult = whole.find("ok") + 3;
    // Cut off anywhere, with or without a line break behind it. Once the result is there the row may count.
    for (std::size_t length = 1; length < whole.size(); ++length) {
        SoftwareOK read = verdict(head() + row(1, "ok") + whole.substr(0, length) + "\n" + row(3, "ok"));
        if (length > afterResult)
            read.erase(200);
        EXPECT_EQ(read, both) << whole.substr(0, length);
        read = verdict(head() + row(1, "ok") + row(3, "ok") + whole.substr(0, length));
        if (length > afterResult)
            read.erase(200);
        EXPECT_EQ(read, both) << whole.substr(0, length);
    }
    for (const char* bad : {"\"\n", ",,,\n", "\"a\"b\n", "a\"b,\"\n", "\xff\xfe\n", "\"never closed, 1\n2\n"})
        EXPECT_EQ(verdict(head() + row(1, "ok") + bad + row(3, "ok")), both) << bad;
    EXPECT_EQ(verdict(head() + row(1, "ok") + "\"" + std::string(100'000, 'x') + "\n" + row(3, "ok") + "\""),
              both);

    // A quote that closes lines later: the rows it took in count for themselves.
    EXPECT_EQ(verdict(head() + "\"opened\n" + row(1, "ok") + row(3, "ok") + "closed\",\n"), both);

    std::string unreadable = row(2, "ok");
    unreadable.replace(unreadable.find("2.000"), 5, "2,000");
    EXPECT_EQ(verdict(head() + row(1, "ok") + unreadable + row(3, "ok")), both);
    unreadable.replace(unreadable.find("2,000"), 5, "1e999");
    EXPECT_EQ(verdict(head() + row(1, "ok") + unreadable + row(3, "ok")), both);
}

TEST(RunLogTables, linesMayEndAsOtherSystemsEndThem) {
    const std::string csv = head() + row(1, "ok", {.note = "a\nb"}) + "\n" + row(3, "dropped");
    EXPECT_EQ(verdict("\xEF\xBB\xBF" + base::replacedAll(csv, "\n", "\r\n")),
              (SoftwareOK{{100, true}, {300, false}}));
}

TEST(RunLogTables, columnsGoByTheirNamesAndAMissingOneGivesNothing) {
    EXPECT_EQ(verdict("result,offset_sec,camera_token\nok,1,CAM1\n"), (SoftwareOK{{100, true}}));
    EXPECT_TRUE(verdict("outcome,offset_sec,camera_token\nok,1,CAM1\n").empty());
    EXPECT_TRUE(verdict("").empty());
    EXPECT_TRUE(verdict("# nothing\n").empty());
    EXPECT_TRUE(
        parseRunLogCompensated("camera_token,offset_sec,iso,f_number,comp_ev\nCAM1,1,100,8,1\n", "CAM1")
            .empty());
}

TEST(RunLogTables, compensatedFramesAreComparedWithWhatWasSent) {
    const rig::RunLogEntry longer{.iso = 200, .aperture = 8, .shutterSec = 1 / 250.0, .compEV = 1};
    const rig::RunLogEntry bulb{.iso = 200, .bulb = true, .compEV = -2};
    const rig::RunLogEntry asPlanned{.iso = 100, .aperture = 8, .shutterSec = 0.002};
    std::string csv = head() + row(2, "ok", longer) + row(4, "ok", bulb) + row(6, "ok", asPlanned);
    csv += base::replacedAll(row(8, "ok", longer), "1/250", "1/x") +
           base::replacedAll(row(10, "ok", longer), ",1,\n", ",one,\n");
    const auto logged = parseRunLogCompensated(csv, "CAM1");
    EXPECT_EQ(logged, (std::map<int, LoggedExposure>{
                          {200, {.iso = 200, .aperture = 8, .shutterSec = 1 / 250.0}},
                          {400, {.iso = 200, .bulb = true}},
                      }));

    std::vector<script::Capture> captures;
    for (int i = 0; i < 20; ++i)
        captures.push_back(test::capture(2 * i));
    const auto sent = withLogged(captures, logged);
    auto frames = test::framesOf(sent);
    frames[2].shutterSec = 3;
    EXPECT_EQ(test::compare(captures, frames).misExposed, 2);
    EXPECT_TRUE(test::compare(sent, frames).pass());
    EXPECT_EQ(withLogged(captures, {}), captures);
}

TEST(RunLogTables, theLogThatKnowsMostIsTakenAndTheEarlierOfEquals) {
    const auto captures = test::plan(3, 1);
    RunLogMatcher matcher("CAM1", captures);
    matcher.look("foreign", head() + row(0, "ok", {.cameraToken = "CAM2"}) + row(99, "ok"));
    EXPECT_FALSE(matcher.best());
    matcher.look("half", head() + row(0, "ok") + row(0, "ok") + row(99, "ok"));
    matcher.look("good", head() + row(0, "ok") + row(1, "dropped", {.shutterSec = 0.5, .compEV = 1}));
    matcher.look("as good", head() + row(1, "ok") + row(2, "ok"));
    ASSERT_TRUE(matcher.best());
    EXPECT_EQ(matcher.best()->name, "good");
    EXPECT_EQ(matcher.best()->known, 2);
    EXPECT_EQ(matcher.best()->verdict, (SoftwareOK{{0, true}, {100, false}}));
    EXPECT_EQ(matcher.best()->compensated.size(), 1U);
    EXPECT_EQ(matcher.others(), (std::vector<std::string>{"half", "as good"}));
}
