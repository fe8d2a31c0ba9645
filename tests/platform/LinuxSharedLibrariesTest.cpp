#include "platform/LinuxSharedLibraries.h"

#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;

TEST(LinuxSharedLibraries, aLibraryBesideTheProgramComesBeforeTheLoadersAndADamagedOneIsTold) {
    const test::TempFolder folder;
    LinuxSharedLibraries libraries(folder.path());
    const auto missing = libraries.open("libEDSDK.so");
    EXPECT_FALSE(missing.library);
    EXPECT_THAT(missing.fault, testing::HasSubstr("libEDSDK.so"));

    std::ofstream(folder.path() / "libEDSDK.so") << "no library";
    const auto damaged = libraries.open("libEDSDK.so");
    EXPECT_FALSE(damaged.library);
    EXPECT_THAT(damaged.fault, testing::HasSubstr((folder.path() / "libEDSDK.so").string()));

    fs::copy_file(ZENKA_FAKE_EDSDK, folder.path() / "libEDSDK.so", fs::copy_options::overwrite_existing);
    const auto opened = libraries.open("libEDSDK.so");
    ASSERT_TRUE(opened.library) << opened.fault;
    EXPECT_TRUE(opened.library->symbol("EdsGetEvent"));
    EXPECT_FALSE(opened.library->symbol("EdsNoSuchCall"));
    EXPECT_TRUE(libraries.open("libc.so.6").library) << "what only the loader finds";
}

} // namespace
} // namespace zenka::platform
