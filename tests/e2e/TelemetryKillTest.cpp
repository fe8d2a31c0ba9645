#include "base/Text.h"
#include "support/Child.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using zenka::test::Child;
using zenka::test::TempFolder;
using Clock = std::chrono::steady_clock;

namespace {

std::string contentOf(const fs::path& path) {
    std::ifstream stream(path);
    return {std::istreambuf_iterator<char>(stream), {}};
}

fs::path fileBelow(const fs::path& folder, const std::string& name) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().filename() == name)
            return entry.path();
    }
    return {};
}

void addNumbers(const std::string& text, std::set<int>& numbers) {
    for (const std::string_view line : zenka::base::splitPieces(text, '\n'))
        numbers.insert(zenka::base::readInteger(line).value_or(-1));
}

/// Nothing but the very last line may be cut. Adds the numbers of the test's events.
void expectWhole(const fs::path& spool, std::set<int>& numbers) {
    const std::string text = spool.empty() ? "" : contentOf(spool);
    std::vector<std::string_view> lines = zenka::base::split(text, '\n');
    lines.pop_back(); // what stands behind the last line end
    for (const std::string_view line : lines) {
        const auto record = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(record.is_object() && record["id"].is_string() && record["body"].is_object()) << line;
        numbers.insert(record["body"]["events"][0]["props"].value("number", 0));
    }
}

} // namespace

// An event is handed to the spool's own thread when its number is printed, so a kill may take the last ones
// with it, as many as the disk is behind; but none out of the middle, and none that stands on the disk.
TEST(TelemetryKill, noEventIsLostByKillsAndABadServiceAndNoneStaysOnceTheServiceHasIt) {
    constexpr int kills = 10;
    const TempFolder folder;
    const fs::path good = folder.path() / "good";
    Child server({"python3", ZENKA_SOURCE_DIR "/tests/e2e/telemetry_server.py", good.string()});
    const std::string host = "http://127.0.0.1:" + server.readLine();
    std::vector<std::set<int>> tracked; // by life
    std::set<int> spooled;
    std::set<int> taken;
    std::string told;              // by the server
    std::mt19937 random(20260812); // NOLINT: the same moments in each run
    std::uniform_int_distribution<int> lifeMs(400, 1200);
    const auto listen = [&] {
        for (std::string piece; !(piece = server.readWithin(0ms)).empty();)
            told += piece;
    };
    for (int i = 0; i < kills; ++i) {
        Child child({ZENKA_TELEMETRY_CHILD, folder.path(), host, std::to_string(i * 10000)});
        std::string printed;
        const auto end = Clock::now() + std::chrono::milliseconds(lifeMs(random));
        while (Clock::now() < end) {
            printed += child.readWithin(5ms);
            listen();
        }
        printed.resize(printed.rfind('\n') + 1);
        addNumbers(printed, tracked.emplace_back());
        child.kill();
        listen();
        expectWhole(fileBelow(folder.path(), "telemetry-spool.jsonl"), spooled);
    }
    EXPECT_GT(spooled.size(), 5U * kills) << "they were really at it";
    const fs::path spool = fileBelow(folder.path(), "telemetry-spool.jsonl");
    EXPECT_FALSE(spool.empty()) << "some are left to be sent";

    std::ofstream(good) << "good";
    Child last({ZENKA_TELEMETRY_CHILD, folder.path(), host});
    const auto limit = Clock::now() + 60s;
    while (fs::exists(spool) && Clock::now() < limit) {
        std::this_thread::sleep_for(20ms);
        listen();
    }
    EXPECT_FALSE(fs::exists(spool)) << "all are gone";
    listen();
    addNumbers(told, taken);
    const auto lost = [&](int number) { return !taken.contains(number); };
    EXPECT_EQ(std::ranges::count_if(spooled, lost), 0) << "of those that stood on the disk";
    constexpr int outOfOrder = 10; // two threads track
    std::size_t events = 0;
    for (const std::set<int>& life : tracked) {
        const int next = life.empty() ? 0 : *life.begin() / 10000 * 10000 + 10000;
        const auto behind = taken.lower_bound(next);
        const int latest = behind == taken.begin() ? 0 : *std::prev(behind);
        const auto early = [&](int number) { return number < latest - outOfOrder && lost(number); };
        EXPECT_EQ(std::ranges::count_if(life, early), 0) << "out of the middle, up to " << latest;
        events += life.size();
    }
    std::printf("%d kills, %zu events, %zu seen on the disk\n", kills, events, spooled.size());
    const fs::path outbox = spool.parent_path() / "telemetry-outbox";
    for (int i = 0; i < 100 && !fs::is_empty(outbox); ++i)
        std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(fs::is_empty(outbox));
}

// The program itself, without a screen: what it has to tell while there is no network goes out at a later
// start.
TEST(TelemetryKill, aStartWithoutANetworkIsToldAtTheNextOne) {
    const TempFolder folder;
    const fs::path home = folder.path();
    const fs::path good = home / "good";
    std::ofstream(good) << "good";
    fs::create_directories(home / ".config/ZenkaRig");
    std::ofstream(home / ".config/ZenkaRig/zenka.conf") << "[General]\nzenka.telemetryAllowed=true\n";
    const fs::path support = home / ".local/share/ZenkaRig";
    const fs::path spool = support / "telemetry-spool.jsonl";
    const auto start = [&](const std::string& host) {
        return std::make_unique<Child>(
            std::vector<std::string>{ZENKA_EXECUTABLE},
            std::vector<std::string>{"HOME=" + home.string(),
                                     "XDG_CONFIG_HOME=", "XDG_DATA_HOME=", "XDG_RUNTIME_DIR=" + home.string(),
                                     "QT_QPA_PLATFORM=offscreen", "QT_QUICK_BACKEND=software",
                                     "ZENKA_TIME_SERVER=", "ZENKA_SERVICE_HOST=" + host,
                                     "DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere",
                                     "DBUS_SYSTEM_BUS_ADDRESS=unix:path=/nowhere"});
    };
    const auto comesTo = [](const std::function<bool()>& holds) {
        const auto limit = Clock::now() + 60s;
        while (!holds() && Clock::now() < limit)
            std::this_thread::sleep_for(20ms);
        return holds();
    };
    {
        const auto offline = start("http://127.0.0.1:1");
        ASSERT_TRUE(comesTo([&] { return contentOf(spool).ends_with('\n'); }));
        offline->kill();
    }
    std::set<int> none;
    expectWhole(spool, none);
    Child server({"python3", ZENKA_SOURCE_DIR "/tests/e2e/telemetry_server.py", good.string()});
    const auto online = start("http://127.0.0.1:" + server.readLine());
    EXPECT_EQ(server.readLine(), "launch");
    EXPECT_EQ(server.readLine(), "launch") << "that of this start";
    EXPECT_TRUE(comesTo([&] { return !fs::exists(spool) && fs::is_empty(support / "telemetry-outbox"); }));
    ::kill(online->id(), SIGTERM);
    EXPECT_EQ(online->wait(), 0);
}
