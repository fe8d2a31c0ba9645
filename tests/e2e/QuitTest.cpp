#include "support/Child.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using zenka::test::Child;

namespace {

/// The window of the program itself, without a screen.
struct Quit : testing::Test {
    zenka::test::TempFolder folder;
    const fs::path& home = folder.path();

    std::unique_ptr<Child> start() const {
        return std::make_unique<Child>(
            std::vector<std::string>{ZENKA_EXECUTABLE},
            std::vector<std::string>{"HOME=" + home.string(),
                                     "XDG_CONFIG_HOME=", "XDG_DATA_HOME=", "XDG_RUNTIME_DIR=" + home.string(),
                                     "QT_QPA_PLATFORM=offscreen", "QT_QUICK_BACKEND=software",
                                     "ZENKA_TIME_SERVER=", "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere",
                                     "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere"});
    }
    fs::path support() const { return home / ".local/share/ZenkaRig"; }
    static bool appears(const fs::path& file) {
        for (int i = 0; i < 600; ++i, std::this_thread::sleep_for(50ms)) {
            if (fs::exists(file))
                return true;
        }
        return false;
    }
};

} // namespace

TEST_F(Quit, theSystemsWishToEndIsMetInOrder) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        fs::remove_all(support());
        const auto child = start();
        ASSERT_TRUE(appears(support() / "sites.json")) << "the window never came up";
        ::kill(child->id(), signal);
        EXPECT_EQ(child->wait(), 0) << "ended by itself, signal " << signal;
    }
}

TEST_F(Quit, aSecondStartGoesToTheFirstOneAndAKilledOneLeavesNoLock) {
    const auto first = start();
    ASSERT_TRUE(appears(support() / "zenka.socket")) << "the window never came up";
    const auto begin = std::chrono::steady_clock::now();
    const auto second = start();
    EXPECT_EQ(second->wait(), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s) << "it did not stay";
    first->kill();
    fs::remove(support() / "zenka.socket");
    const auto third = start();
    EXPECT_TRUE(appears(support() / "zenka.socket")) << "nothing keeps it from starting";
    ::kill(third->id(), SIGSTOP); // it hangs
    EXPECT_EQ(start()->wait(), 1);
    ::kill(third->id(), SIGCONT);
    ::kill(third->id(), SIGTERM);
    EXPECT_EQ(third->wait(), 0);
}

TEST_F(Quit, aSimulationLeftBehindByACrashIsOfferedAndACleanQuitEndsIt) {
    fs::create_directories(support());
    const auto state = support() / "run-state.json";
    const double now =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    std::ofstream(state) << R"({"version":1,"eclipseId":"2026-08-12","lat":41.65,"lon":-0.88,"elev":200,)"
                            R"("tzId":"Europe/Madrid","siteLabel":"Zaragoza, ES","scriptText":"# none",)"
                            R"("armKind":"simulation","anchorClock":0,"tC1":-3600,"tC4":3600,)"
                         << "\"anchorWall\":" << now << ",\"armedAt\":" << now << ",\"lastSeen\":" << now
                         << R"(,"liveCameras":false,"cameras":[],"appVersion":"0.1.0"})";
    const auto child = start();
    ASSERT_TRUE(appears(support() / "sites.json"));
    EXPECT_TRUE(fs::exists(state)) << "it is kept for the offer";
    ::kill(child->id(), SIGTERM);
    EXPECT_EQ(child->wait(), 0);
    EXPECT_FALSE(fs::exists(state));
}
