#include "support/Child.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <vector>

namespace fs = std::filesystem;
using zenka::test::Child;
using zenka::test::TempFolder;

namespace {

int countLines(const std::string& text, const std::string& part) {
    int count = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        count += line.find(part) != std::string::npos;
    return count;
}

std::string onlyCsvBelow(const fs::path& folder) {
    for (const auto& file : fs::recursive_directory_iterator(folder)) {
        if (file.path().extension() == ".csv") {
            std::ifstream stream(file.path());
            return {std::istreambuf_iterator<char>(stream), {}};
        }
    }
    return {};
}

/// The offsets of the frames in all CSVs below a folder, by file.
std::vector<std::vector<double>> offsetsBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& file : fs::recursive_directory_iterator(folder)) {
        if (file.path().extension() == ".csv")
            files.push_back(file.path());
    }
    std::ranges::sort(files, {}, [](const fs::path& file) { return fs::last_write_time(file); });
    std::vector<std::vector<double>> offsets;
    for (const fs::path& file : files) {
        offsets.emplace_back();
        std::ifstream stream(file);
        for (std::string line; std::getline(stream, line);) {
            if (line.find(",sim,") == std::string::npos || stream.eof()) // the kill may have cut the last one
                continue;
            const auto first = line.find(',', line.find(',') + 1) + 1;
            offsets.back().push_back(std::stod(line.substr(first)));
        }
    }
    return offsets;
}

/// How often to kill: more than in a usual test for who asks for it.
int killsWanted(int usual) {
    const char* wanted = std::getenv("ZENKA_KILLS");
    return wanted ? std::max(1, std::atoi(wanted)) : usual;
}

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

// The row of a frame is handed over to the log's own thread when the operator reads its line, so a line
// that was read a moment before the kill must have its row. 50 frames a second come on two bodies.
TEST(Kill, noRowThatTheOperatorReadOfIsLost) {
    const int kills = killsWanted(50);
    constexpr double graceSec = 0.1;
    std::mt19937 random(20260812); // NOLINT: the same moments in each run
    std::uniform_real_distribution<double> moment(2.2, 4.5);
    int rowsInAll = 0;
    int cutRows = 0;
    // Ten at a time, since most of the time goes in waiting for the runs to begin.
    for (int done = 0; done < kills;) {
        struct Victim {
            TempFolder folder; // goes after the run
            std::unique_ptr<Child> run;
            std::string output;
            double dies = 0;
            int linesBefore = 0; // read by the grace period before its end
            bool counted = false;
        };
        std::vector<Victim> victims(static_cast<std::size_t>(std::min(10, kills - done)));
        for (Victim& victim : victims) {
            victim.run = std::make_unique<Child>(
                std::vector<std::string>{ZENKA_LIVE_RUN_CHILD, victim.folder.path(), "400", "0.02"});
            victim.dies = now() + moment(random);
            ++done;
        }
        for (bool alive = true; alive;) {
            alive = false;
            for (Victim& victim : victims) {
                if (victim.dies == 0)
                    continue;
                alive = true;
                victim.output += victim.run->readWithin(std::chrono::milliseconds(2));
                if (!victim.counted && now() >= victim.dies - graceSec) {
                    victim.linesBefore = countLines(victim.output, "● ");
                    victim.counted = true;
                }
                if (now() >= victim.dies && victim.counted) {
                    victim.run->kill();
                    victim.dies = 0;
                }
            }
        }
        for (Victim& victim : victims) {
            std::string csv = onlyCsvBelow(victim.folder.path());
            // The kernel may break off even a small write where it crosses a page, so the row that is being
            // written at the kill may be cut. It counts for nothing.
            const auto whole = csv.rfind('\n') + 1;
            cutRows += whole < csv.size();
            csv.resize(whole);
            const int rows = countLines(csv, ",sim,");
            EXPECT_GE(rows, victim.linesBefore);
            EXPECT_EQ(rows, countLines(csv, ",ok,"));
            rowsInAll += rows;
        }
    }
    EXPECT_GT(rowsInAll, 20 * kills) << "the runs were really under way";
    EXPECT_LE(cutRows, kills / 10) << "a rare thing";
    std::printf("%d kills, %d rows, none lost, %d cut at the kill\n", kills, rowsInAll, cutRows);
}

// Started again after a kill, the program offers the run, takes the clock from real time, and fires what is
// still ahead: no frame twice, none late, and of those that the operator read of none without its row.
TEST(Kill, aKilledLiveRunGoesOnWhereTheClockIs) {
    std::mt19937 random(std::random_device{}());
    const int kills = killsWanted(3);
    std::size_t rows = 0;
    for (int done = 0; done < kills;) {
        struct Run {
            TempFolder folder;
            std::unique_ptr<Child> process;
            std::string before;
            std::string after;
            double dies = 0;
            int told = 0; ///< frames that the operator read of, a moment before the end
        };
        std::vector<Run> runs(static_cast<std::size_t>(std::min(5, kills - done)));
        const auto readAllUntil = [&runs](double end, std::string Run::*output) {
            while (now() < end)
                for (Run& run : runs)
                    if (run.process)
                        run.*output += run.process->readWithin(std::chrono::milliseconds(2));
        };
        std::vector<double> moments(runs.size());
        std::ranges::generate(moments,
                              [&random] { return std::uniform_real_distribution(3.0, 5.0)(random); });
        std::ranges::sort(moments);
        for (Run& run : runs) {
            run.process = std::make_unique<Child>(
                std::vector<std::string>{ZENKA_LIVE_RUN_CHILD, run.folder.path(), "400", "0.05"});
            run.dies = now() + moments[static_cast<std::size_t>(&run - runs.data())];
            ++done;
        }
        for (Run& run : runs) {
            readAllUntil(run.dies - 0.1, &Run::before);
            run.told = countLines(run.before, "● ");
            readAllUntil(run.dies, &Run::before);
            run.process->kill();
            run.process.reset();
        }
        for (Run& run : runs)
            run.process =
                std::make_unique<Child>(std::vector<std::string>{ZENKA_LIVE_RUN_CHILD, run.folder.path()});
        readAllUntil(now() + 3.5, &Run::after);
        for (Run& run : runs) {
            run.process.reset();
            EXPECT_EQ(countLines(run.after, "offered"), 1) << run.after;
            EXPECT_EQ(countLines(run.after, "RESUMED real run"), 1);
            EXPECT_EQ(countLines(run.after, "SKIPPED"), 0);
            EXPECT_GT(countLines(run.after, "● "), 20);
            const auto offsets = offsetsBelow(run.folder.path());
            ASSERT_EQ(offsets.size(), 2U) << "the old log stands, and a new one begins";
            ASSERT_FALSE(offsets[0].empty() || offsets[1].empty());
            EXPECT_GE(static_cast<int>(offsets[0].size()), run.told);
            EXPECT_GT(std::ranges::min(offsets[1]), std::ranges::max(offsets[0])) << "no frame twice";
            rows += offsets[0].size() + offsets[1].size();
        }
    }
    std::printf("%d kills with a restart each, %zu rows, no frame twice, no row lost\n", kills, rows);
}
