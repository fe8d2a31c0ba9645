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
            if (line.find(",sim,") == std::string::npos)
                continue;
            const auto first = line.find(',', line.find(',') + 1) + 1;
            offsets.back().push_back(std::stod(line.substr(first)));
        }
    }
    return offsets;
}

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

// The row of a frame is handed over to the log's own thread when the operator reads its line, so a line
// that was read a moment before the kill must have its row. 50 frames a second come on two bodies.
TEST(Kill, noRowThatTheOperatorReadOfIsLost) {
    constexpr int kills = 50;
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
// still ahead: no frame twice, none late.
TEST(Kill, aKilledLiveRunGoesOnWhereTheClockIs) {
    std::mt19937 random(std::random_device{}());
    for (int i = 0; i < 3; ++i) {
        const TempFolder folder;
        const std::string name = folder.path();
        std::string before;
        {
            Child killed({ZENKA_LIVE_RUN_CHILD, name, "200", "0.05"});
            const double dies = now() + std::uniform_real_distribution(3.0, 5.0)(random);
            while (now() < dies)
                before += killed.readWithin(std::chrono::milliseconds(20));
        }
        std::string after;
        {
            Child again({ZENKA_LIVE_RUN_CHILD, name});
            const double enough = now() + 3;
            while (now() < enough)
                after += again.readWithin(std::chrono::milliseconds(20));
        }
        EXPECT_EQ(countLines(after, "offered"), 1) << after;
        EXPECT_EQ(countLines(after, "RESUMED real run"), 1);
        EXPECT_EQ(countLines(after, "SKIPPED"), 0);
        EXPECT_GT(countLines(after, "● "), 20);
        const auto runs = offsetsBelow(name);
        ASSERT_EQ(runs.size(), 2U) << "the old log stands, and a new one begins";
        ASSERT_FALSE(runs[0].empty() || runs[1].empty());
        EXPECT_GT(std::ranges::min(runs[1]), std::ranges::max(runs[0])) << "no frame twice";
    }
}
