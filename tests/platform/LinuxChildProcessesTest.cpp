#include "platform/LinuxChildProcesses.h"

#include "base/Text.h"
#include "platform/ChildJobs.h"
#include "platform/LinuxFiles.h"
#include "platform/LinuxProcessTable.h"
#include "platform/Waiting.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;
using ports::ChildProcess;
using ports::ChildStart;
using test::childless;
using test::serveUntil;

constexpr base::Seconds childPatience{30};
constexpr base::Seconds shortly{0.2};

std::unique_ptr<ChildProcess> start(const ChildStart& wanted) {
    auto started = LinuxChildProcesses().start(wanted);
    EXPECT_TRUE(started.child) << started.fault;
    EXPECT_EQ(started.fault, "");
    return std::move(started.child);
}

std::unique_ptr<ChildProcess> shell(const std::string& script) {
    return start({.program = "sh", .arguments = {"-c", script}});
}

/// One line of its output.
std::string line(ChildProcess& child) {
    std::string text;
    while (!text.ends_with('\n')) {
        const auto piece = child.read(childPatience);
        EXPECT_FALSE(piece.out.empty()) << "no line: " << text << piece.err;
        if (piece.out.empty())
            break;
        text += piece.out;
    }
    return text.substr(0, text.find('\n'));
}

ChildProcess::Output rest(ChildProcess& child) {
    ChildProcess::Output all;
    while (!all.ended) {
        const auto piece = child.read(childPatience);
        EXPECT_TRUE(piece.ended || !piece.out.empty() || !piece.err.empty()) << "nothing came";
        if (!piece.ended && piece.out.empty() && piece.err.empty())
            break;
        all.out += piece.out;
        all.err += piece.err;
        all.ended = piece.ended;
    }
    return all;
}

bool lives(int id) {
    const auto all = LinuxProcessTable().running().value();
    return std::ranges::find(all, id, &ports::RunningProcess::id) != all.end();
}

std::size_t entries(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

class LinuxChildProcessesTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(childless()); }
};

TEST_F(LinuxChildProcessesTest, whatAChildSaysArrivesWhileItStillRunsAndItsEndIsTold) {
    const auto child = shell("echo one; read word; echo got $word; echo fault >&2; exit 7");
    EXPECT_EQ(child->read(childPatience).out, "one\n"); // and it waits for its word
    EXPECT_TRUE(child->running());
    EXPECT_EQ(child->waitForEnd(shortly), std::nullopt);
    const auto nothing = child->read(shortly);
    EXPECT_EQ(nothing.out + nothing.err, "");
    EXPECT_FALSE(nothing.ended);
    EXPECT_TRUE(child->write("a word\n", childPatience));
    const auto last = rest(*child);
    EXPECT_EQ(last.out, "got a word\n");
    EXPECT_EQ(last.err, "fault\n");
    EXPECT_EQ(child->waitForEnd(childPatience), 7);
    EXPECT_EQ(child->waitForEnd(base::Seconds(0)), 7);
    EXPECT_FALSE(child->running());
    EXPECT_TRUE(child->read(childPatience).ended);
}

TEST_F(LinuxChildProcessesTest, mergedErrorsStandWhereTheyWerePrinted) {
    const auto child = start({.program = "/bin/sh",
                              .arguments = {"-c", "echo a; echo b >&2; echo \"$0 $1\"", "it's", "c  d"},
                              .mergeErrors = true});
    const auto all = rest(*child);
    EXPECT_EQ(all.out, "a\nb\nit's c  d\n");
    EXPECT_EQ(all.err, "");
}

TEST_F(LinuxChildProcessesTest, tenMegabytesComeWholeReadOrNot) {
    constexpr std::size_t length = 10'000'000;
    const ChildStart flood{.program = "head", .arguments = {"-c", std::to_string(length), "/dev/zero"}};
    EXPECT_EQ(rest(*start(flood)).out, std::string(length, '\0'));
    const auto waitedFor = start(flood);
    EXPECT_EQ(waitedFor->waitForEnd(childPatience), 0); // its pipe takes but a little of it
    EXPECT_EQ(rest(*waitedFor).out.size(), length);
}

TEST_F(LinuxChildProcessesTest, aMegabyteGoesThroughAChildThatAnswersAsItReads) {
    const auto child = start({.program = "cat"});
    std::string text;
    while (text.size() < 1'000'000)
        text += "line " + std::to_string(text.size()) + "\n";
    EXPECT_TRUE(child->write(text, childPatience));
    std::string back;
    while (back.size() < text.size()) {
        const auto piece = child->read(childPatience);
        ASSERT_FALSE(piece.out.empty());
        back += piece.out;
    }
    EXPECT_EQ(back, text);
}

TEST_F(LinuxChildProcessesTest, aWriteToAChildThatDoesNotReadEndsAtItsLimit) {
    const auto child = start({.program = "sleep", .arguments = {"1000"}});
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(child->write(std::string(1'000'000, 'x'), shortly));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, shortly);
    EXPECT_TRUE(child->running());
}

TEST_F(LinuxChildProcessesTest, aWriteToAClosedInputFailsAndRaisesNoSignal) {
    const auto before = std::signal(SIGPIPE, SIG_DFL); // which would end this program
    const auto deaf = shell("exec 0<&-; echo closed; exec sleep 1000");
    EXPECT_EQ(line(*deaf), "closed");
    EXPECT_FALSE(deaf->write("x", childPatience));
    EXPECT_TRUE(deaf->running());
    const auto ended = start({.program = "true"});
    EXPECT_EQ(ended->waitForEnd(childPatience), 0);
    EXPECT_FALSE(ended->write("x", childPatience));
    EXPECT_FALSE(ended->write("", childPatience));
    std::signal(SIGPIPE, before);
}

TEST_F(LinuxChildProcessesTest, aChildEndsWhenAskedOrIsKilled) {
    const auto obedient = start({.program = "sleep", .arguments = {"1000"}});
    obedient->terminate();
    EXPECT_EQ(obedient->waitForEnd(childPatience), -SIGTERM);
    const auto stopped = shell("kill -s STOP $$; sleep 1000");
    stopped->terminate();
    EXPECT_EQ(stopped->waitForEnd(childPatience), -SIGTERM);
    const auto stubborn = shell("trap '' TERM; echo ready; while :; do sleep 0.01; done");
    EXPECT_EQ(line(*stubborn), "ready");
    stubborn->terminate();
    EXPECT_EQ(stubborn->waitForEnd(shortly), std::nullopt);
    stubborn->kill();
    EXPECT_EQ(stubborn->waitForEnd(childPatience), -SIGKILL);
    stubborn->kill(); // and nothing else
}

TEST_F(LinuxChildProcessesTest, theWholeGroupGoesWithItsObject) {
    auto child = shell("sleep 1000 & echo $!; exit 3");
    const int grandchild = base::readInteger(line(*child)).value();
    EXPECT_EQ(child->waitForEnd(childPatience), 3);
    EXPECT_FALSE(child->read(shortly).ended) << "the grandchild may still say something";
    EXPECT_TRUE(lives(grandchild));
    child.reset();
    EXPECT_TRUE(serveUntil([&] { return !lives(grandchild); }));
}

TEST_F(LinuxChildProcessesTest, aKillFromAnotherThreadEndsAWait) {
    const auto child = start({.program = "sleep", .arguments = {"1000"}});
    std::thread other([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        child->kill();
    });
    EXPECT_TRUE(child->read(base::Seconds(1e12)).ended);
    other.join();
    EXPECT_EQ(child->waitForEnd(childPatience), -SIGKILL);
}

TEST_F(LinuxChildProcessesTest, whatCannotBeStartedIsToldInTheSystemsWords) {
    const test::TempFolder scratch;
    const fs::path file = scratch.path() / "no program";
    ASSERT_TRUE(LinuxFiles().writeAtomically(file, "text"));
    const auto fault = [](const std::string& program, const std::string& argument = {}) {
        const auto started = LinuxChildProcesses().start({.program = program, .arguments = {argument}});
        EXPECT_FALSE(started.child);
        return started.fault;
    };
    const std::string path = std::getenv("PATH"); // may have a folder that is closed to us, which is told too
    ::setenv("PATH", "/usr/bin:/bin", 1);
    EXPECT_EQ(fault("zenka-no-such-program"), "No such file or directory");
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(fault("/zenka-no-such-folder/program"), "No such file or directory");
    EXPECT_EQ(fault(""), "No such file or directory");
    EXPECT_EQ(fault(file), "Permission denied");
    EXPECT_EQ(fault("true", std::string(10'000'000, 'x')), "Argument list too long");
}

TEST_F(LinuxChildProcessesTest, aChildHasTheUsualSignalsItsOwnGroupAndThisEnvironmentWithChanges) {
    ASSERT_EQ(::setenv("ZENKA_TEST_KEPT", "kept", 1), 0);
    ASSERT_EQ(::setenv("ZENKA_TEST_CHANGED", "before", 1), 0);
    const auto before = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigset_t mask;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &mask);
    const std::string script = "grep -E 'Sig(Blk|Ign)' /proc/self/status; ls /proc/self/fd | wc -l\n"
                               "echo $ZENKA_TEST_KEPT $ZENKA_TEST_CHANGED $ZENKA_TEST_NEW\n"
                               "ps -o pgid= $$ 2>/dev/null || cut -d' ' -f5 /proc/$$/stat; echo $$";
    const auto child = start({.program = "bash",
                              .arguments = {"-c", script},
                              .environment = {{"ZENKA_TEST_CHANGED", "a=b c"}, {"ZENKA_TEST_NEW", "new"}}});
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    std::signal(SIGPIPE, before);
    const std::string told = rest(*child).out;
    const auto lines = base::splitPieces(told, '\n');
    ASSERT_EQ(lines.size(), 6U) << told;
    EXPECT_EQ(lines[0], "SigBlk:\t0000000000000000");
    EXPECT_TRUE(lines[1].ends_with("0000000")) << lines[1]; // the C library ignores two of its own, 32 and 33
    EXPECT_EQ(base::trimmed(lines[2]), "4") << "its three, and the folder itself";
    EXPECT_EQ(lines[3], "kept a=b c new");
    EXPECT_EQ(base::trimmed(lines[4]), lines[5]) << "it leads its group";
}

TEST_F(LinuxChildProcessesTest, aThousandStartsAndKillsLeaveNothingBehind) {
    const auto count = [] { return std::pair(entries("/proc/self/fd"), entries("/proc/self/task")); };
    const auto before = count();
    for (int round = 0; round < 1000; ++round) {
        const auto child = start({.program = "sleep", .arguments = {"1000"}, .mergeErrors = round % 2 == 0});
        if (round % 3 == 0)
            child->kill();
        if (round % 100 == 0) {
            EXPECT_FALSE(LinuxChildProcesses().start({.program = "zenka-no-such-program"}).child);
        }
    }
    EXPECT_EQ(count(), before);
    EXPECT_TRUE(childless());
}

} // namespace
} // namespace zenka::platform
