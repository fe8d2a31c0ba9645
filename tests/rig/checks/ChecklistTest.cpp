#include "rig/checks/Checklist.h"

#include "support/VirtualRig.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>

namespace zenka::test {

namespace {

using base::PrintedSection;

class ChecklistTest : public testing::Test {
protected:
    base::PrintedList make() {
        const rig::FramingBook framings(rig.machine.settings, rig.model.library());
        return rig::checklist({.site = rig.model.site(),
                               .horizons = rig.model.horizons(),
                               .script = rig.model.script(),
                               .roster = rig.model.roster(),
                               .library = rig.model.library(),
                               .framings = framings,
                               .cadence = rig.model.cadence(),
                               .floors = rig.model.floors(),
                               .appVersion = "9.9",
                               .now = rig.machine.all.clock.now()});
    }
    static PrintedSection section(const base::PrintedList& list, const std::string& begin) {
        const auto found = std::ranges::find_if(
            list.sections, [&](const auto& each) { return each.title.starts_with(begin); });
        EXPECT_NE(found, list.sections.end()) << begin;
        return found == list.sections.end() ? PrintedSection{} : *found;
    }

    VirtualRig rig;
};

TEST_F(ChecklistTest, contactsStandInSiteTimeAndUtcWithWhatIsAboveTheTerrain) {
    rig::KnownHorizon hills{.lat = 41.65, .lon = -0.88, .result = {}};
    hills.result.samples.assign(360, 5);
    rig.model.horizons().merge({hills});
    const PrintedSection contacts = section(make(), "Contacts");
    ASSERT_EQ(contacts.table.rows.size(), rig.model.site().circ()->events.size());
    const auto* c2 = rig.model.site().circ()->event("C2");
    ASSERT_NE(c2, nullptr);
    const auto row = std::ranges::find(contacts.table.rows, "C2", [](const auto& each) { return each[0]; });
    ASSERT_NE(row, contacts.table.rows.end());
    EXPECT_EQ((*row)[1].substr(0, 8), rig.model.site().fmtClock(c2->tHours * 3600));
    EXPECT_EQ((*row)[1].substr(2), (*row)[2].substr(2)) << "two hours apart in August";
    const double over = std::stod((*row)[5]);
    EXPECT_NEAR(over, c2->sunAltDeg - 5, 0.051);
    EXPECT_THAT(contacts.lines.front(),
                testing::AllOf(testing::HasSubstr("Totality 1 m "), testing::HasSubstr("sunset ")));
}

TEST_F(ChecklistTest, whatIsSaidAndTheFiltersStandInOrderAndTheFiltersAreNeverLeftOut) {
    std::string script = "COMMAND,C2,-,01:00, , , , , , , , ,Dim;dim\n";
    for (int i = 0; i < 60; ++i)
        script += "PLAY,C1,+,00:" + std::to_string(10 + i % 50) + ",word" + std::to_string(i) +
                  ".wav,,,,,,,,say " + std::to_string(i) + "\n";
    rig.load(script);
    ASSERT_GT(rig.model.script().audioCues().size(), 50U);
    const PrintedSection hand = section(make(), "By hand");
    std::vector<std::string> times;
    int filters = 0;
    for (const auto& row : hand.table.rows) {
        times.push_back(row[0]);
        filters += row[2].starts_with("FILTERS ") ? 1 : 0;
        EXPECT_EQ(row[2].find("Dim"), std::string::npos) << "the computer does it";
    }
    EXPECT_TRUE(std::ranges::is_sorted(times));
    EXPECT_EQ(filters, 2);
    EXPECT_THAT(hand.lines, testing::ElementsAre(testing::HasSubstr("and 36 more")));
}

TEST_F(ChecklistTest, eachBodyHasItsFramesFloorAndFramingAndAMissingOneIsTold) {
    rig.model.library().merge({{.serial = "77",
                                .model = "Z9",
                                .label = "CAM2",
                                .lens = "800 mm f/6.3",
                                .framing = cameras::FramingRecord{.focalMm = 800}}});
    rig.addBody("CAM1");
    rig.model.floors().saveMeasuredFloor("Z8", 1.7, false);
    rig.load(rig.frameAt(0) + rig.frameAt(2) + rig.frameAt(0, "CAM2") + rig.frameAt(0, "CAM9"));
    const auto list = make();
    const PrintedSection here = section(list, "CAM1");
    EXPECT_THAT(here.title, testing::HasSubstr("no. SN-id-CAM1"));
    EXPECT_THAT(here.lines, testing::ElementsAre("2 frames, tightest 2.0 s, body 2210ms measured",
                                                 "Exposures 1/500 · f/8 · ISO 200"));
    EXPECT_GE(here.boxes.size(), 7U);
    const PrintedSection away = section(list, "CAM2");
    EXPECT_THAT(away.title, testing::AllOf(testing::HasSubstr("Z9"), testing::HasSubstr("800 mm f/6.3"),
                                           testing::HasSubstr("not connected")));
    EXPECT_THAT(away.lines.back(), testing::HasSubstr("Framing 800 mm, fixed"));
    EXPECT_THAT(section(list, "CAM9").title, testing::HasSubstr("no body yet"));
}

TEST_F(ChecklistTest, aSiteOutsideThePathNeedsNoScriptAndKeepsItsFilters) {
    rig.load("");
    rig.model.site().choose(
        "2026-08-12",
        {.lat = 52.5, .lon = 13.4, .elev = 40, .label = "Berlin/Mitte", .tzId = "Europe/Berlin"});
    rig.model.site().recompute();
    const auto list = make();
    EXPECT_THAT(section(list, "By hand").lines, testing::ElementsAre(testing::HasSubstr("filters stay on")));
    EXPECT_TRUE(section(list, "By hand").table.rows.empty());
    rig.model.site().choose("2026-08-12", {.lat = -33.9, .lon = 151.2, .label = "Sydney", .tzId = "x"});
    rig.model.site().recompute();
    EXPECT_THAT(section(make(), "Contacts").lines, testing::ElementsAre(testing::HasSubstr("not seen")));
    EXPECT_EQ(rig::checklistName("2026-08-12", "Berlin/Mitte\n"), "Zenka Checklist 2026-08-12 Berlin Mitte");
    EXPECT_EQ(rig::checklistName("x", std::string(79, 'a') + "é").size(), 18U + 79U);
}

} // namespace

} // namespace zenka::test
