#include "platform/LinuxFiles.h"

#include "base/Text.h"
#include "platform/ChildJobs.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;
using test::Child;

class LinuxFilesTest : public testing::Test {
protected:
    std::size_t entries(const fs::path& folder) {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
    }

    test::TempFolder scratch_;
    LinuxFiles files_;
};

TEST_F(LinuxFilesTest, anAtomicWriteMakesFoldersAndLeavesNothingElse) {
    const fs::path folder = scratch_.path() / "new" / "sub folder";
    const fs::path path = folder / (std::string(251, 'n') + ".csv"); // the longest name a disk takes
    const std::string binary("zero \0 and \r\n", 13);
    ASSERT_TRUE(files_.writeAtomically(path, binary));
    EXPECT_EQ(files_.read(path), binary);
    ASSERT_TRUE(files_.writeAtomically(path, ""));
    EXPECT_EQ(files_.read(path), "");
    EXPECT_EQ(entries(folder), 1U);
}

TEST_F(LinuxFilesTest, othersReadDocumentsAlone) {
    const mode_t usual = ::umask(022);
    const auto rights = [&](const char* name) { return fs::status(scratch_.path() / name).permissions(); };
    ASSERT_TRUE(files_.writeAtomically(scratch_.path() / "sites.json", "here"));
    EXPECT_EQ(rights("sites.json"), fs::perms(0600));
    ASSERT_EQ(::chmod((scratch_.path() / "sites.json").c_str(), 0755), 0);
    ASSERT_TRUE(files_.writeAtomically(scratch_.path() / "sites.json", "there"));
    EXPECT_EQ(rights("sites.json"), fs::perms(0700)) << "also when it could be read before";
    ASSERT_TRUE(files_.create(scratch_.path() / "log.csv", "row"));
    EXPECT_EQ(rights("log.csv"), fs::perms(0600));
    ASSERT_TRUE(files_.writeDocument(scratch_.path() / "new.zenka", "script"));
    EXPECT_EQ(rights("new.zenka"), fs::perms(0644));
    ASSERT_EQ(::chmod((scratch_.path() / "new.zenka").c_str(), 0664), 0);
    ASSERT_TRUE(files_.writeDocument(scratch_.path() / "new.zenka", "another"));
    EXPECT_EQ(rights("new.zenka"), fs::perms(0664)) << "its rights are the user's own affair";
    ::umask(usual);
}

TEST_F(LinuxFilesTest, anAtomicWriteGoesThroughASymbolicLink) {
    const fs::path target = scratch_.path() / "target";
    const fs::path link = scratch_.path() / "link";
    ASSERT_TRUE(files_.writeAtomically(target, "old"));
    fs::create_symlink("target", link);
    ASSERT_TRUE(files_.writeAtomically(link, "new"));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(files_.read(target), "new");
}

TEST_F(LinuxFilesTest, aReaderSeesAnAtomicWriteWhole) {
    const fs::path path = scratch_.path() / "state.json";
    ASSERT_TRUE(files_.writeAtomically(path, std::string(200'000, 'a')));
    std::atomic<bool> writing = true;
    std::thread writer([&] {
        for (int round = 0; round < 60; ++round)
            EXPECT_TRUE(files_.writeAtomically(path, std::string(200'000, round % 2 ? 'a' : 'b')));
        writing = false;
    });
    int torn = 0;
    while (writing) {
        const auto content = files_.read(path);
        torn += !content || content->size() != 200'000 ||
                content->find_first_not_of(content->front()) != std::string::npos;
    }
    writer.join();
    EXPECT_EQ(torn, 0);
}

TEST_F(LinuxFilesTest, createTakesNoNameThatIsTakenAndAppendsToItsOwn) {
    const fs::path path = scratch_.path() / "logs" / "run \"1\".csv";
    const auto file = files_.create(path, "head\n");
    ASSERT_TRUE(file);
    EXPECT_EQ(files_.read(path), "head\n");
    EXPECT_FALSE(files_.create(path, "other\n"));
    EXPECT_TRUE(file->append("one\n"));
    EXPECT_TRUE(file->append(""));
    std::ofstream(path, std::ios::app) << "of another\n";
    EXPECT_TRUE(file->append("two\n"));
    EXPECT_EQ(files_.read(path), "head\none\nof another\ntwo\n");
    EXPECT_EQ(entries(path.parent_path()), 1U);
    EXPECT_TRUE(files_.exists(path));
    files_.remove(path);
    files_.remove(path);
    EXPECT_FALSE(files_.exists(path));
}

TEST_F(LinuxFilesTest, ofManyThatCreateOneNameOneWins) {
    std::atomic<int> winners = 0;
    std::vector<std::thread> rivals;
    for (int rival = 0; rival < 8; ++rival)
        rivals.emplace_back([&, rival] {
            if (const auto file = files_.create(scratch_.path() / "one", std::to_string(rival)))
                winners += file->append("!");
        });
    for (auto& rival : rivals)
        rival.join();
    EXPECT_EQ(winners, 1);
    EXPECT_EQ(files_.read(scratch_.path() / "one")->size(), 2U);
}

TEST_F(LinuxFilesTest, whatCannotBeReadOrWrittenIsSaidSoAndLeavesNothing) {
    const fs::path blocker = scratch_.path() / "file";
    ASSERT_TRUE(files_.writeAtomically(blocker, "x"));
    EXPECT_FALSE(files_.writeAtomically(blocker / "below a file", "y"));
    EXPECT_FALSE(files_.create(blocker / "below a file", "y"));
    EXPECT_FALSE(files_.writeAtomically(scratch_.path(), "over a folder"));
    EXPECT_FALSE(files_.create(scratch_.path() / std::string(300, 'n'), "too long a name"));
    EXPECT_FALSE(files_.read(scratch_.path()));
    EXPECT_FALSE(files_.read(scratch_.path() / "missing"));
    ASSERT_EQ(::mkfifo((scratch_.path() / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(files_.read(scratch_.path() / "pipe"));
    EXPECT_EQ(entries(scratch_.path()), 2U);
    // a full disk: the device that takes nothing
    EXPECT_FALSE(files_.writeAtomically("/dev/full/x", "y"));
}

TEST_F(LinuxFilesTest, aFileOpenedForAppendingGoesOnAndANewOneIsForTheUserAlone) {
    const fs::path path = scratch_.path() / "new folder" / "spool";
    for (const char* line : {"one\n", "two\n"}) {
        const auto file = files_.openForAppending(path);
        ASSERT_TRUE(file);
        EXPECT_TRUE(file->append(line));
    }
    EXPECT_EQ(files_.read(path), "one\ntwo\n");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600));
    ASSERT_TRUE(files_.writeAtomically(path, "two\n"));
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0600)) << "also when it is written anew";
    EXPECT_FALSE(files_.openForAppending(scratch_.path()));
    EXPECT_FALSE(files_.openForAppending(path / "below a file"));
    ASSERT_EQ(::mkfifo((scratch_.path() / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(files_.openForAppending(scratch_.path() / "pipe")) << "nobody reads it";
}

TEST_F(LinuxFilesTest, aKilledProcessKeepsEveryRowItAppended) {
    const fs::path path = scratch_.path() / "rows";
    Child child(test::childJob({"append-rows", path.string()}));
    int last = -1;
    while (last < 2000)
        last = base::readInteger(child.readLine()).value();
    child.kill();
    const std::string rest = child.readRest();
    for (const std::string_view told : base::splitPieces(rest, '\n'))
        last = std::max(last, base::readInteger(told).value_or(-1)); // the last one may be cut

    const std::string content = files_.read(path).value();
    const auto lines = base::split(content, '\n');
    ASSERT_GE(static_cast<int>(lines.size()), last + 3); // the head, and the empty piece at the end
    EXPECT_EQ(lines.front(), "head");
    EXPECT_EQ(lines.back(), "");
    for (std::size_t row = 0; row + 2 < lines.size(); ++row)
        ASSERT_EQ(lines[row + 1], "row " + std::to_string(row) + " of a run");
}

TEST_F(LinuxFilesTest, aProcessKilledInAnAtomicWriteLeavesTheOldFileOrTheNewOne) {
    const fs::path path = scratch_.path() / "state";
    for (int round = 0; round < 12; ++round) {
        Child child(test::childJob({"rewrite-file", path.string()}));
        std::string told = child.readLine();
        std::this_thread::sleep_for(std::chrono::microseconds(2500 * round));
        child.kill();
        const std::string rest = child.readRest();
        for (const std::string_view letter : base::splitPieces(rest, '\n'))
            told = letter;
        const std::string content = files_.read(path).value();
        ASSERT_EQ(content.size(), 300'000U);
        ASSERT_EQ(content.find_first_not_of(content.front()), std::string::npos);
        const char next = told[0] == 'z' ? 'a' : static_cast<char>(told[0] + 1);
        EXPECT_TRUE(content[0] == told[0] || content[0] == next) << content[0] << " after " << told;
    }
}

} // namespace
} // namespace zenka::platform
