#include "platform/LinuxClock.h"
#include "platform/QtHttpClient.h"
#include "platform/QtMainLoop.h"
#include "platform/Waiting.h"
#include "platform/virtual/VirtualPorts.h"
#include "rig/machine/TimeSources.h"
#include "support/Child.h"
#include "support/MemoryFiles.h"
#include "support/PortsBut.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace zenka::test {
namespace {

/// The check of the computer's clock against a real server on loopback.
class ClockCheckTest : public testing::Test {
protected:
    ClockCheckTest()
        : server({"python3", ZENKA_SOURCE_DIR "/tests/platform/http_server.py"}),
          host("http://127.0.0.1:" + server.readLine()) {}

    /// What is told of a server; empty for a check that came to something.
    std::string ask(const std::string& address) {
        time.setTimeServer(address.starts_with('/') ? host + address : address);
        const auto begun = std::chrono::steady_clock::now();
        time.checkClockSkew();
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(3))
            << "nothing waits for it";
        EXPECT_TRUE(serveUntil([this] { return !time.checking().get(); }));
        return time.checkFault();
    }
    double skew() { return time.clockSkewSeconds().get().value_or(1e9); }

    Child server;
    std::string host;
    platform::QtMainLoop loop;
    platform::QtHttpClient http{loop};
    MemoryFiles files;
    MemoryFolders folders;
    platform::LinuxClock clock;
    platform::VirtualPorts rest{base::Instant{0}, folders, files};
    const ports::Ports ports = portsBut(rest.all, clock, loop, http);
    rig::RigLog log{loop};
    rig::TimeSources time{ports, log};
};

TEST_F(ClockCheckTest, theDateTellsTheSkewAlsoBehindARedirectOrASlowServer) {
    EXPECT_EQ(ask("/date/right"), "");
    EXPECT_NEAR(skew(), 0, 3);
    EXPECT_EQ(ask("/date/hour"), "");
    EXPECT_NEAR(skew(), -3600, 3);
    EXPECT_EQ(ask("/date/moved"), "");
    EXPECT_NEAR(skew(), 0, 3);
    EXPECT_EQ(ask("/date/slow"), "");
    EXPECT_NEAR(skew(), -1.5, 3);
}

TEST_F(ClockCheckTest, aServerOfNoUseLeavesWhatIsKnown) {
    ask("/date/hour");
    const double known = skew();
    EXPECT_EQ(ask("/date/absent"), "The time server gave no date.");
    EXPECT_EQ(ask("/date/absurd"), "The time server gave no date.");
    EXPECT_EQ(ask("http://127.0.0.1:1"),
              "The time server could not be asked: the server refused the connection.");
    EXPECT_EQ(ask("/silent").substr(0, 39), "The time server could not be asked: the")
        << "after five seconds";
    EXPECT_NE(ask("/junk"), "");
    EXPECT_NE(ask("no address at all"), "");
    EXPECT_EQ(skew(), known);
}

} // namespace
} // namespace zenka::test
