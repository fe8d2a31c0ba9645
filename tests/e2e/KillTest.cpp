#include "support/Child.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace fs = std::filesystem;
using zenka::test::Child;

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
    // Ten at a time, since most of the time goes in waiting for the runs to begin.
    for (int done = 0; done < kills;) {
        struct Victim {
            std::unique_ptr<Child> run;
            std::string output;
            fs::path folder;
            double dies = 0;
            int linesBefore = 0; // read by the grace period before its end
            bool counted = false;
        };
        std::vector<Victim> victims(static_cast<std::size_t>(std::min(10, kills - done)));
        for (Victim& victim : victims) {
            std::string name = fs::temp_directory_path() / "zenka o'kill XXXXXX";
            ASSERT_NE(mkdtemp(name.data()), nullptr);
            victim.folder = name;
            victim.run =
                std::make_unique<Child>(std::vector<std::string>{ZENKA_LIVE_RUN_CHILD, name, "400", "0.02"});
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
            const std::string csv = onlyCsvBelow(victim.folder);
            const int rows = countLines(csv, ",sim,");
            EXPECT_GE(rows, victim.linesBefore);
            EXPECT_TRUE(csv.ends_with("\n")) << "no half row";
            EXPECT_EQ(rows, countLines(csv, ",ok,"));
            rowsInAll += rows;
            fs::remove_all(victim.folder);
        }
    }
    EXPECT_GT(rowsInAll, 20 * kills) << "the runs were really under way";
    std::printf("%d kills, %d rows, none lost\n", kills, rowsInAll);
}
