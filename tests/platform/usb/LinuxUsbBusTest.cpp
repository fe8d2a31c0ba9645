#include "platform/LinuxUsbBus.h"

#include "platform/Waiting.h"

#include <gmock/gmock.h>

#include <map>
#include <thread>
#include <umockdev.h>

namespace zenka::platform {
namespace {

using ports::UsbDevice;
using test::serveUntil;
using testing::ElementsAre;
using testing::Optional;

/// A machine whose USB tree the test makes up.
class LinuxUsbBusTest : public testing::Test {
protected:
    LinuxUsbBusTest() : bed_(umockdev_testbed_new()) {}
    ~LinuxUsbBusTest() override { g_object_unref(bed_); }

    void SetUp() override {
        ASSERT_TRUE(umockdev_in_mock_environment()) << "not linked before libudev and the C library";
        ASSERT_THAT(bus_.devices(), Optional(ElementsAre())) << "sees the devices of the machine";
    }

    /// Adds a device below another (empty: below none) and tells of it as the kernel does. The path.
    std::string add(const std::string& name, const std::string& below,
                    const std::map<std::string, std::string>& attributes,
                    const std::string& type = "usb_device") {
        std::vector<const char*> pairs;
        for (const auto& [key, value] : attributes)
            pairs.insert(pairs.end(), {key.c_str(), value.c_str()});
        pairs.push_back(nullptr);
        std::vector<const char*> properties{"DEVTYPE", type.c_str(), nullptr};
        char* made =
            umockdev_testbed_add_devicev(bed_, "usb", name.c_str(), below.empty() ? nullptr : below.c_str(),
                                         const_cast<char**>(pairs.data()),       // NOLINT
                                         const_cast<char**>(properties.data())); // NOLINT
        std::string path = made ? made : "";
        EXPECT_FALSE(path.empty());
        g_free(made);
        return path;
    }

    std::string addRootHub() {
        return add("usb2", "",
                   {{"busnum", "2\n"},
                    {"devnum", "1\n"},
                    {"idVendor", "1d6b\n"},
                    {"idProduct", "0002\n"},
                    {"product", "xHCI Host Controller\n"}});
    }

    std::string addCamera(const std::string& name, const std::string& hub, int address) {
        return add(name, hub,
                   {{"busnum", "2\n"},
                    {"devnum", std::to_string(address) + "\n"},
                    {"idVendor", "04b0\n"},
                    {"idProduct", "0453\n"},
                    {"manufacturer", "NIKON\n"},
                    {"product", " NIKON DSC Z 8 \n"},
                    {"serial", "000006001234\n"}});
    }

    UMockdevTestbed* bed_;
    LinuxUsbBus bus_;
};

TEST_F(LinuxUsbBusTest, aDeviceIsReadWithItsHubAndTheListIsByBusAndAddress) {
    const std::string root = addRootHub();
    const std::string camera = addCamera("2-1", root, 12);
    add("2-1:1.0", camera, {{"bInterfaceClass", "06\n"}}, "usb_interface");
    const std::string hub = add("2-2", root,
                                {{"busnum", "2\n"},
                                 {"devnum", "7\n"},
                                 {"idVendor", "05e3\n"},
                                 {"idProduct", "0610\n"},
                                 {"product", "USB2.1 Hub\n"}});
    addCamera("2-2.4", hub, 101);
    const UsbDevice expected{.product = "NIKON DSC Z 8",
                             .vendor = "NIKON",
                             .serial = "000006001234",
                             .vid = 0x04b0,
                             .pid = 0x0453,
                             .busNumber = 2,
                             .address = 12,
                             .hub = "usb2"};
    UsbDevice behindHub = expected;
    behindHub.address = 101;
    behindHub.hub = "2-2";
    EXPECT_THAT(
        bus_.devices(),
        Optional(ElementsAre(
            UsbDevice{
                .product = "xHCI Host Controller", .vid = 0x1d6b, .pid = 2, .busNumber = 2, .address = 1},
            UsbDevice{.product = "USB2.1 Hub",
                      .vid = 0x05e3,
                      .pid = 0x0610,
                      .busNumber = 2,
                      .address = 7,
                      .hub = "usb2"},
            expected, behindHub)));
}

TEST_F(LinuxUsbBusTest, aDeviceThatSaysNothingOfItselfIsListedAndOneWithoutAnAddressIsNot) {
    add("1-1", "", {{"busnum", "1\n"}, {"devnum", "3\n"}, {"idVendor", "04a9\n"}, {"idProduct", "32f5\n"}});
    add("1-2", "", {{"busnum", "1\n"}, {"devnum", "\n"}, {"idVendor", "04a9\n"}, {"idProduct", "32f5\n"}});
    add("1-3", "", {{"busnum", "1\n"}, {"devnum", "4\n"}, {"idVendor", "ffff0\x01"}, {"idProduct", "1\n"}});
    EXPECT_THAT(bus_.devices(),
                Optional(ElementsAre(UsbDevice{.vid = 0x04a9, .pid = 0x32f5, .busNumber = 1, .address = 3})));
}

TEST_F(LinuxUsbBusTest, comingAndGoingIsToldOnTheMainThreadUntilNoLongerWanted) {
    int told = 0;
    bus_.watch([&] { ++told; });
    const std::string camera = addCamera("2-1", "", 5);
    ASSERT_TRUE(serveUntil([&] { return told == 1; }));
    umockdev_testbed_uevent(bed_, camera.c_str(), "change");
    umockdev_testbed_uevent(bed_, camera.c_str(), "remove");
    ASSERT_TRUE(serveUntil([&] { return told == 2; }));
    umockdev_testbed_uevent(bed_, camera.c_str(), "change");
    EXPECT_FALSE(serveUntil([&] { return told != 2; }, std::chrono::milliseconds(100)))
        << "a change is neither";
    add("2-1:1.0", camera, {}, "usb_interface");
    EXPECT_FALSE(serveUntil([&] { return told != 2; }, std::chrono::milliseconds(100)))
        << "an interface is no device";

    bus_.watch({});
    umockdev_testbed_uevent(bed_, camera.c_str(), "add");
    EXPECT_FALSE(serveUntil([&] { return told != 2; }, std::chrono::milliseconds(100)));
    int toldAnew = 0;
    bus_.watch([&] {
        ++toldAnew;
        bus_.watch({}); // the function that is running is replaced
    });
    EXPECT_FALSE(serveUntil([&] { return toldAnew != 0; }, std::chrono::milliseconds(100)))
        << "what happened while nobody watched";
    umockdev_testbed_uevent(bed_, camera.c_str(), "add");
    EXPECT_TRUE(serveUntil([&] { return toldAnew == 1; }));
    umockdev_testbed_uevent(bed_, camera.c_str(), "remove");
    EXPECT_FALSE(serveUntil([&] { return toldAnew != 1; }, std::chrono::milliseconds(100)));
    EXPECT_EQ(told, 2);
}

TEST_F(LinuxUsbBusTest, devicesAreListedFromAnotherThreadWhileTheyComeAndGo) {
    int told = 0;
    bus_.watch([&] { ++told; });
    std::atomic<bool> listing = true;
    std::atomic<int> lists = 0;
    std::thread lister([&] {
        while (listing) {
            const auto devices = bus_.devices();
            EXPECT_TRUE(devices);
            ++lists;
        }
    });
    for (int round = 0; round < 20; ++round) {
        const std::string camera = addCamera("2-1", "", 5 + round);
        EXPECT_TRUE(serveUntil([&] { return told == 2 * round + 1; }));
        umockdev_testbed_uevent(bed_, camera.c_str(), "remove");
        umockdev_testbed_remove_device(bed_, camera.c_str());
        EXPECT_TRUE(serveUntil([&] { return told >= 2 * round + 2; }));
        told = 2 * round + 2;
    }
    EXPECT_TRUE(serveUntil([&] { return lists > 3; }));
    listing = false;
    lister.join();
    EXPECT_THAT(bus_.devices(), Optional(ElementsAre()));
}

} // namespace
} // namespace zenka::platform
