#include "platform/LinuxStallSampler.h"

#include "base/Text.h"
#include "platform/ChildJobs.h"
#include "platform/LinuxFiles.h"
#include "platform/Waiting.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <sys/stat.h>
#include <unistd.h>

/// The function that the sample must show; with a name no other can have.
__attribute__((noinline)) void zenkaTestStalledThread(const std::atomic<bool>& stalled) {
    while (stalled)
        ::usleep(1000);
    asm volatile(""); // so that the call above is no last one
}

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;
using test::childless;
using test::serveUntil;
using testing::HasSubstr;

class LinuxStallSamplerTest : public testing::Test {
protected:
    /// A program in eu-stack's place.
    fs::path program(const std::string& body) {
        const fs::path path = scratch_.path() / "sampler program";
        EXPECT_TRUE(LinuxFiles().writeAtomically(path, "#!/bin/sh\n" + body));
        ::chmod(path.c_str(), 0755);
        return path;
    }
    std::string content(const fs::path& path) { return LinuxFiles().read(path).value_or(""); }

    test::TempFolder scratch_;
};

TEST_F(LinuxStallSamplerTest, aSampleShowsWhatAStalledThreadIsDoingAndLeavesNoChild) {
    std::atomic<bool> stalled = true;
    std::thread thread([&] { zenkaTestStalledThread(stalled); });
    LinuxStallSampler sampler;
    const fs::path file = scratch_.path() / "logs" / "Zenka stall sample.txt";
    EXPECT_TRUE(sampler.sampleTo(file));
    EXPECT_TRUE(serveUntil(childless));
    stalled = false;
    thread.join();
    EXPECT_THAT(content(file), HasSubstr("zenkaTestStalledThread"));
    EXPECT_THAT(content(file), HasSubstr("TID " + std::to_string(::getpid())));
}

TEST_F(LinuxStallSamplerTest, aSampleIsNotWaitedForAndASecondOneMustWaitForTheFirst) {
    const fs::path go = scratch_.path() / "go";
    LinuxStallSampler sampler(program("while [ ! -e '" + base::replacedAll(go.string(), "'", "'\\''") +
                                      "' ]; do sleep 0.05; done; echo \"$@\"\n"));
    EXPECT_TRUE(sampler.sampleTo(scratch_.path() / "first"));
    EXPECT_FALSE(childless());
    EXPECT_FALSE(sampler.sampleTo(scratch_.path() / "second"));
    ASSERT_TRUE(LinuxFiles().writeAtomically(go, ""));
    EXPECT_TRUE(serveUntil(childless));
    EXPECT_EQ(content(scratch_.path() / "first"), "-p " + std::to_string(::getpid()) + "\n");
    // the name is taken, which is told; then a new one
    EXPECT_TRUE(serveUntil([&] { return sampler.sampleTo(scratch_.path() / "third"); }));
    EXPECT_TRUE(serveUntil(childless));
    EXPECT_FALSE(serveUntil([&] { return sampler.sampleTo(scratch_.path() / "first"); },
                            std::chrono::milliseconds(50)));
}

TEST_F(LinuxStallSamplerTest, aTracerThatHangsWithTheProcessStoppedIsEndedAndTheProcessGoesOn) {
    const fs::path sample = scratch_.path() / "hanging";
    const fs::path hanging = program("echo begun; kill -s STOP \"$2\"; exec sleep 3600\n");
    // in a process of its own, as it stands still for the ten seconds that a tracer is given
    test::Child child(test::childJob({"sample-with", hanging.string(), sample.string()}));
    EXPECT_EQ(child.readLine(), "went on");
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(content(sample), HasSubstr("begun"));
}

TEST_F(LinuxStallSamplerTest, withoutTheProgramOrAFileNoSampleIsStarted) {
    EXPECT_FALSE(LinuxStallSampler("").sampleTo(scratch_.path() / "none"));
    EXPECT_FALSE(fs::exists(scratch_.path() / "none"));
    LinuxStallSampler sampler;
    EXPECT_FALSE(sampler.sampleTo("/proc/no such folder/file"));
    EXPECT_FALSE(sampler.sampleTo("/proc/no such folder/file")); // and is not taken for one under way
    EXPECT_TRUE(sampler.sampleTo(scratch_.path() / "at last"));
    EXPECT_TRUE(serveUntil(childless));
}

} // namespace
} // namespace zenka::platform
