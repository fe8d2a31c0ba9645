#include "platform/LinuxProcessTable.h"

#include "platform/ChildJobs.h"
#include "platform/LinuxChildProcesses.h"
#include "platform/LinuxFiles.h"
#include "platform/Waiting.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;
using ports::RunningProcess;
using test::Child;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;

class LinuxProcessTableTest : public testing::Test {
protected:
    fs::path file(const std::string& name, const std::string& content = {}) {
        const fs::path path = scratch_.path() / name;
        EXPECT_TRUE(LinuxFiles().writeAtomically(path, content));
        return path;
    }

    /// A process that holds a file open, as "sleep" or under another name.
    std::unique_ptr<Child> holder(const fs::path& held, const std::string& program = "sleep") {
        auto child = std::make_unique<Child>(std::vector<std::string>{
            "sh", "-c", "exec 3<\"$1\"; echo held; exec \"$2\" 1000", "sh", held.string(), program});
        EXPECT_EQ(child->readLine(), "held");
        // it still has to become the program
        EXPECT_TRUE(test::serveUntil([&] {
            const std::string name = LinuxFiles().read(procOf(child->id()) / "comm").value_or("");
            return !name.starts_with("sh");
        }));
        return child;
    }

    static fs::path procOf(int id) { return "/proc/" + std::to_string(id); }

    test::TempFolder scratch_;
    LinuxProcessTable table_;
};

TEST_F(LinuxProcessTableTest, holdersAreFoundByTheFileAndNotByItsName) {
    const fs::path camera = file("a camera's node");
    const fs::path other = file("other");
    const auto first = holder(camera);
    fs::create_hard_link(camera, scratch_.path() / "another name");
    const auto second = holder(scratch_.path() / "another name");
    const auto bystander = holder(other);
    const auto own = LinuxFiles().create(scratch_.path() / "own", "");
    auto expected = std::vector<RunningProcess>{{first->id(), "sleep", true}, {second->id(), "sleep", true}};
    std::ranges::sort(expected, {}, &RunningProcess::id);
    EXPECT_EQ(table_.holdersOf(camera), expected);
    EXPECT_THAT(table_.holdersOf(scratch_.path() / "own"), Optional(IsEmpty())) << "this process is left out";
    fs::remove(camera);
    file("a camera's node");
    EXPECT_THAT(table_.holdersOf(camera), Optional(IsEmpty())) << "a new file under the old name";
    EXPECT_THAT(table_.holdersOf(scratch_.path() / "unplugged"), Optional(IsEmpty()));
    first->kill();
    second->kill();
    EXPECT_THAT(table_.holdersOf(scratch_.path() / "another name"), Optional(IsEmpty()));
}

TEST_F(LinuxProcessTableTest, aDeviceIsItsNumberAndNotItsNode) {
    const fs::path node = scratch_.path() / "full";
    if (::mknod(node.c_str(), S_IFCHR | 0600, makedev(1, 7)) != 0)
        GTEST_SKIP() << "only root makes device nodes";
    const auto child = holder("/dev/full");
    EXPECT_THAT(table_.holdersOf(node), Optional(Contains(Field(&RunningProcess::id, child->id()))));
    EXPECT_THAT(table_.holdersOf("/dev/zero"),
                Optional(Not(Contains(Field(&RunningProcess::id, child->id())))));
}

TEST_F(LinuxProcessTableTest, aNameIsTheWholeNameOfAProgramOrScript) {
    const std::string name = "gvfs-gphoto2-volume-monitor"; // longer than what the kernel keeps
    fs::copy_file("/bin/sleep", scratch_.path() / name);
    const fs::path script = file("script of a long name.sh", "#!/bin/sh\nread word < \"$1\"\n");
    ::chmod(script.c_str(), 0755);
    const fs::path pipe = scratch_.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const fs::path held = file("held");
    const auto program = holder(held, scratch_.path() / name);
    const Child scripted({script, pipe});
    const auto listed = [&](int id, const std::string& expected) {
        return test::serveUntil([&] {
            return testing::Value(table_.running(), Optional(Contains(RunningProcess{id, expected, true})));
        });
    };
    EXPECT_TRUE(listed(program->id(), name));
    EXPECT_TRUE(listed(scripted.id(), "script of a long name.sh"));
    EXPECT_TRUE(listed(::getpid(), "platform_tests"));
    fs::remove(scratch_.path() / name);
    EXPECT_TRUE(listed(program->id(), name)) << "after an update replaced its file";
    EXPECT_EQ(table_.holdersOf(held), std::vector({RunningProcess{program->id(), name, true}}));
}

TEST_F(LinuxProcessTableTest, onlyALivingProcessOfThisUserIsEnded) {
    Child child({"sleep", "1000"});
    // the same process, said to be another user's
    const fs::path other = scratch_.path() / "proc" / std::to_string(child.id());
    ASSERT_TRUE(LinuxFiles().writeAtomically(
        other / "status", "Name:\tsleep\nState:\tS (sleeping)\nUid:\t4242\t4242\t4242\t4242\n"));
    LinuxProcessTable others(scratch_.path() / "proc");
    EXPECT_EQ(others.running(), std::vector({RunningProcess{child.id(), "sleep", false}}));
    EXPECT_FALSE(others.end(child.id()));
    EXPECT_FALSE(table_.end(::getpid()));
    EXPECT_FALSE(table_.end(0));
    EXPECT_FALSE(table_.end(-child.id()));
    EXPECT_THAT(table_.running(), Optional(Contains(RunningProcess{child.id(), "sleep", true})));

    EXPECT_TRUE(table_.end(child.id()));
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.id()), &info, WEXITED | WNOWAIT), 0);
    EXPECT_EQ(info.si_status, SIGKILL);
    EXPECT_FALSE(table_.end(child.id())) << "an ended one that nobody has waited for";
    EXPECT_THAT(table_.running(), Optional(Not(Contains(Field(&RunningProcess::id, child.id())))));
    child.wait();
    EXPECT_FALSE(table_.end(child.id())) << "gone";
}

TEST_F(LinuxProcessTableTest, aTableThatCannotBeReadIsToldSo) {
    LinuxProcessTable none(scratch_.path() / "no proc here");
    EXPECT_EQ(none.running(), std::nullopt);
    EXPECT_EQ(none.holdersOf("/dev/null"), std::nullopt);
}

} // namespace
} // namespace zenka::platform
