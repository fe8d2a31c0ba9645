#include "analysis/CsvRows.h"
#include "base/Text.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>

namespace zenka::test {

namespace {

constexpr int firstIso = 1001;

/// A day with a crash in it: a rig that was never used opens a script, keeps a site, arms a live run on two
/// bodies and is killed in the middle; the next process resumes the run and ends it.
class Day {
public:
    /// The operations of the disk that fail, over both processes.
    Day(int failFrom, int failures) {
        VirtualRig first;
        first.files.contents["/home/day.zenka"] = scriptOf(first);
        first.disk.failFrom = failFrom;
        first.disk.failures = failures;
        begin(first);
        first.model.script().openFile("/home/day.zenka", [this](const std::string& fault) {
            if (!fault.empty())
                said.push_back(fault);
        });
        first.run(1);
        if (!said.empty()) {
            note(first);
            return; // the script could not be opened, and that was said
        }
        opened = true;
        first.model.sites().saveCurrentSite("Hill");
        first.model.transport().armRealEclipseTiming(false);
        first.run(31);
        torn =
            count(first, "The run log cannot be written") > count(first, "The run log can be written again");
        note(first);

        VirtualRig next;
        next.files.contents = first.files.contents;
        next.machine.settings = first.machine.settings;
        next.machine.time.setWall(first.machine.time.now());
        const int left = failFrom - first.disk.operations; // those before it are behind us
        next.disk.failFrom = std::max(1, left);
        next.disk.failures = left >= 1 ? failures : std::max(0, failures + left - 1);
        begin(next);
        resumed = next.model.keeper().resumableRun().get().has_value();
        if (resumed)
            next.model.keeper().resumeRun();
        next.run(40);
        next.model.transport().useSimulatedTiming();
        next.run(10);
        next.model.handleAppWillTerminate();
        note(next);
        readRows(next.files);
    }

    std::map<int, int> fired;      ///< how often each frame was, by its ISO, which no two have in common
    std::map<int, int> rows;       ///< in the CSVs, read as the analyzer reads them
    std::vector<std::string> said; ///< the operator's log, and the answers to what he did
    std::vector<FaultyFiles::Fault> faults;
    int operations = 0;
    bool opened = false;
    bool resumed = false;
    bool torn = false; ///< killed while rows waited for the disk, which had been told

    bool warned() const {
        return std::ranges::any_of(said, [](const std::string& line) {
            return line.find("⚠️") != std::string::npos || line.find("cannot be") != std::string::npos;
        });
    }

private:
    static std::string scriptOf(VirtualRig& rig) {
        const double now = rig.model.site().clockAt(rig.machine.time.now());
        std::string script;
        for (int i = 0; i < 30; ++i)
            script += base::replacedAll(rig.frameAt(now + 5 + 2 * i, i % 3 == 0 ? "CAM2" : "CAM1"), ",200,",
                                        "," + std::to_string(firstIso + i) + ",");
        return script;
    }
    static int count(const VirtualRig& rig, const std::string& words) { return rig.countLines(words); }
    void begin(VirtualRig& rig) {
        for (const char* label : {"CAM1", "CAM2"}) {
            const auto body = rig.addBody(label);
            body->onCapture = [this](const ScriptedCamera& camera) { ++fired[camera.shots.back().iso]; };
        }
        rig.model.bootstrap();
    }
    void note(const VirtualRig& rig) {
        std::ranges::copy(rig.lines, std::back_inserter(said));
        operations += rig.disk.operations;
        std::ranges::copy(rig.disk.faults, std::back_inserter(faults));
    }
    void readRows(const MemoryFiles& files) {
        for (const auto& [path, content] : files.contents) {
            if (path.extension() != ".csv")
                continue;
            analysis::CsvRows table(content);
            const auto column = [&table](const char* name) { return table.column(name).value(); };
            while (const auto* row = table.next())
                if (row->at(column("result")) == "ok")
                    ++rows[std::stoi(row->at(column("iso")))];
        }
    }
};

/// A fault after which the day is just as it would have been: of what was not there nothing can be read, what
/// is removed or written again soon is nothing to tell.
bool isNothing(const Day& day, const FaultyFiles::Fault& fault) {
    return (!fault.there && (fault.operation == "read" || fault.operation == "exists")) ||
           fault.operation == "remove" ||
           // the text itself stands in the settings
           (fault.file == "day.zenka" && fault.operation == "read" && day.opened) ||
           (fault.file == "run-state.json" && fault.operation == "writeAtomically");
}

TEST(DiskFault, eachOperationOfADayMayFailAndNothingIsLostUnsaid) {
    const Day good(0, 0);
    ASSERT_EQ(good.fired.size(), 30U);
    ASSERT_EQ(good.rows.size(), 30U);
    ASSERT_TRUE(good.resumed);
    int torn = 0;
    for (int number = 1; number <= good.operations; ++number) {
        const Day day(number, 1);
        ASSERT_EQ(day.faults.size(), 1U) << number;
        const FaultyFiles::Fault& fault = day.faults.front();
        SCOPED_TRACE("operation " + std::to_string(number) + ": " + fault.operation + " " + fault.file);
        EXPECT_TRUE(day.warned() || isNothing(day, fault)) << testing::PrintToString(day.said);
        for (const auto& [iso, times] : day.fired)
            EXPECT_EQ(times, 1) << "a frame is fired once";
        for (const auto& [iso, times] : day.rows)
            EXPECT_EQ(times, 1) << "and has one row";
        EXPECT_EQ(day.fired.size(), !day.opened ? 0U : day.resumed ? 30U : 14U);
        // Only what waits in memory goes with the process, and that it waits was said.
        EXPECT_GE(day.rows.size() + (day.torn ? 1 : 0), day.fired.size());
        torn += day.torn;
    }
    std::printf("%d operations, each failed once; killed with a row waiting: %d\n", good.operations, torn);
}

TEST(DiskFault, aDiskThatIsGoneForAWhileOrForGoodStopsNoFrame) {
    const Day good(0, 0);
    for (int number = 9; number <= good.operations; number += 3) {
        for (const int failures : {4, 10'000}) {
            const Day day(number, failures);
            SCOPED_TRACE("from operation " + std::to_string(number) + " on, " + std::to_string(failures));
            EXPECT_TRUE(day.warned() || std::ranges::all_of(day.faults, [&](const auto& fault) {
                            return isNothing(day, fault);
                        }));
            if (!day.opened)
                continue;
            EXPECT_GE(day.fired.size(), day.resumed ? 29U : 14U);
            for (const auto& [iso, times] : day.fired)
                EXPECT_EQ(times, 1);
            for (const auto& [iso, times] : day.rows)
                EXPECT_EQ(times, 1) << iso;
            EXPECT_TRUE(day.rows.size() == day.fired.size() || failures > 4 || day.torn)
                << "the rows that waited come with the next one";
        }
    }
}

} // namespace
} // namespace zenka::test
