#include "platform/LinuxMachineNames.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace zenka::platform {
namespace {

namespace fs = std::filesystem;

class LinuxMachineNamesTest : public testing::Test {
protected:
    void put(const std::string& file, const std::string& text) {
        fs::create_directories((root.path() / file).parent_path());
        std::ofstream(root.path() / file) << text;
    }
    ports::MachineName read() { return LinuxMachineNames(root.path()).read(); }

    const test::TempFolder root;
};

TEST_F(LinuxMachineNamesTest, theFirmwareNamesTheMachineAndOsReleaseTheSystem) {
    EXPECT_EQ(read(), ports::MachineName{});
    put("sys/firmware/devicetree/base/model", std::string("Raspberry Pi 4 Model B\0", 23));
    put("usr/lib/os-release", "ID=debian\nPRETTY_NAME='Plain'\n");
    EXPECT_EQ(read(), (ports::MachineName{.product = "Raspberry Pi 4 Model B", .system = "Plain"}));
    put("sys/class/dmi/id/product_name", "ThinkPad T480\n");
    put("etc/os-release", "NAME=x\nPRETTY_NAME=\"Debian \\\"GNU\\\"/Linux 12 (bookworm)\"\n");
    EXPECT_EQ(read(), (ports::MachineName{.product = "ThinkPad T480",
                                          .system = "Debian \"GNU\"/Linux 12 (bookworm)"}));
}

TEST_F(LinuxMachineNamesTest, whatIsNoNameIsPassedOver) {
    put("sys/class/dmi/id/product_name", "Think\x01Pad");
    put("etc/os-release", "PRETTY_NAME=" + std::string(5000, 'x'));
    EXPECT_EQ(read(), ports::MachineName{});
    put("sys/class/dmi/id/product_name", "\xFF\xFE");
    put("etc/os-release", "PRETTY_NAME=\"");
    EXPECT_EQ(read().product, "");
}

} // namespace
} // namespace zenka::platform
