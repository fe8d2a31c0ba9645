#include "platform/LinuxVolumes.h"

#include "platform/Waiting.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sys/mount.h>

using namespace zenka;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

TEST(LinuxVolumes, theFoldersBelowTheDesktopsMountRootsAreVolumes) {
    const test::TempFolder root;
    fs::create_directories(root.path() / "run/media/ann/EOS DIGITAL");
    fs::create_directories(root.path() / "mnt/card");
    fs::create_directory_symlink(root.path() / "mnt/card", root.path() / "mnt/link");
    std::ofstream(root.path() / "mnt/file") << "x";
    platform::LinuxVolumes volumes(
        {root.path() / "run/media/ann", root.path() / "mnt", root.path() / "missing"});
    EXPECT_THAT(volumes.mounted(), UnorderedElementsAre(root.path() / "run/media/ann/EOS DIGITAL",
                                                        root.path() / "mnt/card", root.path() / "mnt/link"));
}

TEST(LinuxVolumes, networkDrivesAreNotLookedAt) {
    const test::TempFolder root;
    for (const char* name : {"my card", "my server", "back\\slash"})
        fs::create_directories(root.path() / name);
    const fs::path table = root.path() / "table";
    const std::string there = root.path().parent_path().string() + "/zenka\\040o'test\\040" +
                              root.path().filename().string().substr(std::string("zenka o'test ").size());
    std::ofstream(table) << "36 35 8:1 / " << there << "/my\\040card rw shared:1 - vfat /dev/sdb1 rw\n"
                         << "37 35 0:45 / " << there << "/my\\040server rw - nfs4 host:/x rw\n"
                         << "38 35 0:46 / " << there << "/back\\134slash rw - cifs //host/x rw\n"
                         << "a line that is none\n39 35 0:47 / -\n";
    platform::LinuxVolumes volumes({root.path()}, table);
    EXPECT_THAT(volumes.mounted(), UnorderedElementsAre(root.path() / "my card"));
}

TEST(LinuxVolumes, aVolumeThatComesOrGoesIsTold) {
    const test::TempFolder root;
    const fs::path card = root.path() / "CARD";
    fs::create_directory(card);
    platform::LinuxVolumes volumes({root.path()});
    int told = 0;
    volumes.watch([&] { ++told; });
    if (::mount("card", card.c_str(), "tmpfs", 0, nullptr) != 0)
        GTEST_SKIP() << "not allowed to mount here";
    EXPECT_TRUE(test::serveUntil([&] { return told == 1; }));
    EXPECT_EQ(::umount(card.c_str()), 0);
    EXPECT_TRUE(test::serveUntil([&] { return told == 2; }));
    volumes.watch({});
}
