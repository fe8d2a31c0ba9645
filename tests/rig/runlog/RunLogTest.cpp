#include "base/CivilTime.h"
#include "rig/runlog/DropAsymmetry.h"
#include "support/VirtualRig.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace zenka;
using rig::RunLogFormat::csvRow;
using test::VirtualRig;

namespace {

rig::RunLogEntry entry() {
    return {.scheduledWall = base::Instant{1786559343.1239},
            .firedWall = base::Instant{1786559343.9999},
            .offsetSec = -8.0004,
            .refLabel = "C2 −8s",
            .cameraToken = "CAM1",
            .cameraLabel = "Big, \"long\" lens",
            .serial = "123",
            .backend = "gphoto2",
            .iso = 200,
            .aperture = 6.3,
            .shutterSec = 0.00025,
            .result = "ok",
            .latencyMs = 211.6,
            .note = "first\nsecond",
            .sentShutter = "1/4000",
            .compEV = -1,
            .compNote = "−1: 1/500→1/1000"};
}

} // namespace

TEST(RunLogFormat, aRowQuotesWhatNeedsItAndCutsItsTimes) {
    EXPECT_EQ(
        csvRow(entry(), base::timeZoneOrUtc("Europe/Madrid")),
        "20:29:03.123,20:29:03.999,-8.000,C2 −8s,CAM1,\"Big, \"\"long\"\" lens\",123,gphoto2,200,6.3,1/4000,"
        "1/4000,0,ok,212,\"first\nsecond\",-1,−1: 1/500→1/1000\n");
    rig::RunLogEntry bulb = entry();
    bulb.scheduledWall.reset();
    bulb.bulb = true;
    EXPECT_TRUE(csvRow(bulb, absl::UTCTimeZone()).starts_with(",18:29:03.999,"));
    EXPECT_NE(csvRow(bulb, absl::UTCTimeZone()).find(",6.3,BULB,1/4000,1,ok,"), std::string::npos);
}

TEST(RunLogFormat, theHeadTellsWhereTheRunWasAndItsCommentsStayOnTheirLines) {
    const rig::RunLogMeta meta{.runKind = "real",
                               .eclipseId = "2026-08-12",
                               .eclipseName = "Total Solar Eclipse of 2026 August 12",
                               .site = "A\nhill",
                               .lat = 41.65,
                               .lon = -0.88,
                               .elev = 199.6,
                               .tz = "Europe/Madrid",
                               .appVersion = "9.9",
                               .startedAt = {1786559343}};
    EXPECT_EQ(
        rig::RunLogFormat::csvHead(meta),
        "# Zenka run log: real\n"
        "# eclipse: Total Solar Eclipse of 2026 August 12 (2026-08-12)\n"
        "# site: A hill  41.65000, -0.88000 @ 200 m  tz Europe/Madrid\n"
        "# started: 2026-08-12 20:29:03  app v9.9\n"
        "scheduled_local,fired_local,offset_sec,ref,camera_token,camera_label,serial,backend,iso,f_number,"
        "shutter,sent_shutter,bulb,result,latency_ms,note,comp_ev,comp_note\n");
    EXPECT_EQ(rig::RunLogFormat::baseName(meta, base::timeZoneOrUtc("Asia/Kathmandu")),
              "Zenka real run 2026-08-13 001403");
}

TEST(RunLog, aPausedRunHasItsRowsInBothFiles) {
    VirtualRig rig;
    rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(11) + rig.frameAt(90));
    rig.playFrom(0);
    rig.run(12);
    rig.model.transport().togglePlay();
    rig.run(0.1);
    EXPECT_TRUE(rig.logged("📝 Run log saved (Zenka Logs/)."));
    const auto json = nlohmann::json::parse(rig.files.only(".json"));
    EXPECT_EQ(json.size(), 14U);
    EXPECT_EQ(json["run_kind"], "simulated");
    EXPECT_EQ(json["shot_count"], 2);
    ASSERT_EQ(json["shots"].size(), 2U);
    EXPECT_EQ(json["shots"][0].size(), 17U);
    EXPECT_EQ(json["shots"][1]["serial"], "SN-id-CAM1");
    EXPECT_EQ(json["events"][0]["text"], "exposure compensation reset to 0 for every camera (new run)");
    EXPECT_EQ(json["contacts_t_hours"].size(), 5U);
    EXPECT_EQ(rig.rows().size(), 2U);
    EXPECT_FALSE(rig.model.logbook().pendingSurvey().get()) << "a paused run is not summed up";
}

TEST(RunLog, anEmptyRunLeavesNoFileAfterItsGrace) {
    VirtualRig rig;
    rig.load(rig.frameAt(100));
    rig.playFrom(0);
    rig.run(1);
    rig.model.transport().togglePlay();
    rig.run(4.9);
    EXPECT_EQ(rig.files.count(".csv"), 1);
    rig.run(0.2);
    EXPECT_TRUE(rig.files.contents.empty());
}

TEST(RunLog, aShotInFlightAtTheEndStillBringsItsRow) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(11) + rig.frameAt(90));
    rig.playFrom(0);
    rig.run(10.5);
    body->holdCompletions = true;
    rig.run(1);
    rig.model.transport().togglePlay();
    rig.run(20);
    EXPECT_EQ(rig.rows().size(), 1U);
    body->complete();
    rig.run(1);
    EXPECT_EQ(rig.rows().size(), 2U);
    EXPECT_EQ(nlohmann::json::parse(rig.files.only(".json"))["shot_count"], 2);
}

TEST(RunLog, aShotInFlightWhenTheProgramEndsIsARowAndNeverTwo) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(11) + rig.frameAt(90));
    rig.playFrom(0);
    rig.run(10.5);
    body->holdCompletions = true;
    rig.run(1);
    rig.model.handleAppWillTerminate();
    body->complete();
    rig.run(1);
    const auto rows = rig.rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1][13], "dropped");
    EXPECT_EQ(rows[1][15], "no answer before the program ended");
}

TEST(RunLog, theOnlyShotMayCompleteLongAfterAnEmptyLogWasRemoved) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    body->holdCompletions = true;
    rig.load(rig.frameAt(10));
    rig.playFrom(0);
    rig.run(10.5);
    rig.model.transport().togglePlay();
    rig.run(30);
    EXPECT_TRUE(rig.files.contents.empty());
    body->complete();
    rig.run(1);
    EXPECT_EQ(rig.rows().size(), 1U);
}

TEST(RunLog, twoRunsBegunInOneSecondKeepTheirOwnFiles) {
    VirtualRig rig;
    rig.addBody("CAM1");
    rig.load(rig.frameAt(10));
    rig.machine.time.setWall({1786559343.1});
    rig.playFrom(0); // no frame before it is paused,
    rig.model.transport().togglePlay();
    rig.playFrom(9.99); // and the next one has its frame within the same second
    rig.run(20);
    EXPECT_EQ(rig.rows().size(), 1U) << "discarding the empty log must not take the other's file";
    EXPECT_TRUE(rig.logged(" 2.csv"));
}

TEST(RunLog, aBrokenDiskNeverReachesTheRun) {
    VirtualRig rig;
    const auto body = rig.addBody("CAM1");
    rig.load(rig.frameAt(10) + rig.frameAt(11) + rig.frameAt(90));
    rig.files.broken = true;
    rig.playFrom(0);
    rig.run(12);
    EXPECT_EQ(body->shots.size(), 2U);
    rig.files.broken = false; // the JSON at the end still has what the CSV could not take
    rig.model.transport().togglePlay();
    rig.run(1);
    EXPECT_EQ(nlohmann::json::parse(rig.files.only(".json"))["shot_count"], 2);
}

TEST(RunLog, bytesThatAreNoUtf8CostNoLog) {
    VirtualRig rig;
    rig.load("TAKEPIC,MAX,-,00:10,K\xFFM,1/500,8,200,0,RAW,None,N,note \xC3\n");
    const double due = rig.model.script().captureOffsets().at(0);
    rig.playFrom(due - 1);
    rig.run(2);
    rig.model.handleAppWillTerminate();
    EXPECT_EQ(rig.rows().size(), 1U);
    EXPECT_TRUE(nlohmann::json::accept(rig.files.only(".json")));
}

TEST(DropAsymmetry, namesTheBodiesThatStandOut) {
    using Tallies = std::vector<rig::BodyTally>;
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 90, 0}, {"B", 40, 50}})) << "two bodies say nothing";
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 86, 14}, {"B", 90, 0}, {"C", 90, 0}}))
        << "under 15 drops";
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 60, 40}, {"B", 60, 40}, {"C", 60, 40}})) << "all alike";
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 60, 40}, {"B", 90, 0}, {"C", 9, 0}}))
        << "too few frames of C";
    const auto hint = rig::dropAsymmetryHint(Tallies{{"A", 60, 40}, {"B", 90, 0}, {"C", 90, 1}});
    ASSERT_TRUE(hint);
    EXPECT_TRUE(hint->starts_with("A dropped far more frames"));
    EXPECT_TRUE(hint->ends_with("Check those on A."));
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 60, 40}, {"B", 60, 30}, {"C", 90, 1}}))
        << "B is the middle, and A is not far from it";
    EXPECT_FALSE(rig::dropAsymmetryHint(Tallies{{"A", 60, 59}, {"B", 60, 40}, {"C", 60, 40}}))
        << "half as many again are needed";
    const auto two = rig::dropAsymmetryHint(
        Tallies{{"A", 60, 40}, {"B", 60, 30}, {"C", 90, 1}, {"D", 90, 0}, {"E", 90, 0}, {"F", 90, 2}});
    EXPECT_TRUE(two && two->starts_with("A and B dropped") && two->ends_with("on those bodies."));
}
