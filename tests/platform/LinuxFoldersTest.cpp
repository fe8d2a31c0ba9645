#include "platform/LinuxFolders.h"

#include "platform/LinuxClock.h"
#include "platform/LinuxFiles.h"
#include "platform/QtSettings.h"
#include "platform/ThreadWorkQueues.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;

/// Puts variables of the environment back where they were.
class Environment {
public:
    void set(const std::string& name, const std::string& value) {
        const char* old = std::getenv(name.c_str());
        old_.try_emplace(name, old ? std::optional<std::string>(old) : std::nullopt);
        ::setenv(name.c_str(), value.c_str(), 1);
    }
    ~Environment() {
        for (const auto& [name, value] : old_)
            value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }

private:
    std::map<std::string, std::optional<std::string>> old_;
};

TEST(LinuxFolders, theyFollowTheUsersXdgSettings) {
    const test::TempFolder scratch;
    const fs::path home = scratch.path();
    Environment environment;
    environment.set("HOME", home);
    environment.set("XDG_DATA_HOME", "");
    environment.set("XDG_CONFIG_HOME", home / "config");
    environment.set("TMPDIR", home / "temporary");
    ASSERT_TRUE(LinuxFiles().writeAtomically(home / "config" / "user-dirs.dirs",
                                             "# comment\nXDG_DOCUMENTS_DIR=\"$HOME/Meine Dokumente\"\n"));
    const LinuxFolders folders;
    EXPECT_EQ(folders.applicationSupport(), home / ".local/share/ZenkaRig");
    EXPECT_EQ(folders.documents(), home / "Meine Dokumente");
    EXPECT_EQ(folders.runLogs(), home / "Meine Dokumente" / "Zenka Logs");
    EXPECT_EQ(folders.temporary(), home / "temporary");

    environment.set("XDG_DATA_HOME", home / "Daten");
    LinuxFiles().remove(home / "config" / "user-dirs.dirs");
    const LinuxFolders moved;
    EXPECT_EQ(moved.applicationSupport(), home / "Daten" / "ZenkaRig");
    EXPECT_EQ(moved.documents(), home / "Documents");

    environment.set("XDG_DATA_HOME", "not/absolute");
    EXPECT_EQ(LinuxFolders().applicationSupport(), home / ".local/share/ZenkaRig");
}

TEST(LinuxFolders, theSettingsStandInTheUsersConfigurationFolder) {
    const test::TempFolder scratch;
    Environment environment;
    environment.set("XDG_CONFIG_HOME", scratch.path());
    ThreadWorkQueues queues;
    QtSettings settings(queues);
    settings.setFlag("zenka.welcomeSeen", true);
    EXPECT_TRUE(settings.flush(base::Seconds(30)));
    EXPECT_TRUE(fs::exists(scratch.path() / "ZenkaRig" / "zenka.conf"));
}

TEST(LinuxClock, theClocksAgreeWithTheSystemAndRunOn) {
    const LinuxClock clock;
    const double wall =
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    EXPECT_NEAR(clock.now().epochSec, wall, 5);
    const double continuous = clock.continuousSeconds();
    const double uptime = clock.uptimeSeconds();
    EXPECT_GE(continuous, uptime - 1e-3); // sleep counts in the first only
    timespec pause{.tv_sec = 0, .tv_nsec = 2'000'000};
    ::nanosleep(&pause, nullptr);
    EXPECT_GE(clock.continuousSeconds() - continuous, 0.002);
    EXPECT_GE(clock.uptimeSeconds() - uptime, 0.002);
}

} // namespace
} // namespace zenka::platform
