#include "cameras/CameraCatalog.h"
#include "cameras/usb/SonyNames.h"
#include "cameras/usb/USBCameraNames.h"
#include "cameras/usb/USBHolders.h"
#include "support/ScriptedUsb.h"

#include <gmock/gmock.h>

#include <set>

using namespace zenka;
using cameras::USBCameraNames::Device;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
namespace names = cameras::USBCameraNames;
namespace holding = cameras::USBHolders;

namespace {

Device device(int busNumber, int address, const std::string& product, std::optional<std::string> vendor = {},
              int vid = 0x04b0) {
    return {.product = product,
            .vendor = std::move(vendor),
            .vid = vid,
            .pid = 1,
            .busNumber = busNumber,
            .address = address};
}

} // namespace

TEST(USBCameraNames, aPortIsReadAsDecimalNumbersWhateverTheirWidth) {
    test::ScriptedUsbBus bus;
    bus.plugged = {device(2, 7, "other"), device(20, 7, "body"), device(20, 1, "")};
    for (const char* port : {"usb:020,007", "usb:20,7", "usb:0020,0007"})
        EXPECT_EQ(names::lookup(bus, port), device(20, 7, "body")) << port;
    EXPECT_EQ(names::lookup(bus, "usb:020,001"), device(20, 1, "")) << "also one that says nothing of itself";
    for (const char* port :
         {"", "usb:", "usb:20", "usb:20,", "usb:,7", "usb:20,7,1", "usb:20,8", "usb:-20,7", "usb:+20,7",
          "usb: 20,7", "usb:20,7x", "USB:20,7", "ptpip:20,7", "usb:99999999999,7", "disk:/media/card"})
        EXPECT_EQ(names::lookup(bus, port), std::nullopt) << port;
    EXPECT_EQ(names::gphotoPort(device(20, 7, "")), "usb:020,007");
    EXPECT_THAT(names::all(bus), ElementsAre(device(2, 7, "other"), device(20, 7, "body")));
    bus.plugged.reset();
    EXPECT_THAT(names::all(bus), IsEmpty());
    EXPECT_EQ(names::lookup(bus, "usb:020,007"), std::nullopt);
}

TEST(USBCameraNames, aPlaceholderGivesWayToTheProductWithItsBrandInFront) {
    test::ScriptedUsbBus bus;
    const auto shown = [&](const std::string& product, std::optional<std::string> vendor,
                           const std::string& gphotoModel = "PTP camera") {
        bus.plugged = {device(1, 5, product, std::move(vendor))};
        return names::displayName(bus, gphotoModel, "usb:001,005");
    };
    EXPECT_EQ(shown("NIKON DSC Z 8", "NIKON"), "Nikon DSC Z 8");
    EXPECT_EQ(shown("Canon Digital Camera", "Canon Inc."), "Canon Digital Camera");
    EXPECT_EQ(shown("DC-S9", "Panasonic"), "Panasonic DC-S9");
    EXPECT_EQ(shown("LUMIX DC-S9", {}), "Panasonic LUMIX DC-S9");
    EXPECT_EQ(shown("OM-1MarkII", "OM Digital Solutions Corporation"), "OM System OM-1MarkII");
    EXPECT_EQ(shown("PENTAX K-1", "RICOH IMAGING COMPANY, LTD."), "Pentax K-1");
    EXPECT_EQ(shown("USB PTP Camera", "FUJIFILM"), "Fujifilm USB PTP Camera");
    EXPECT_EQ(shown("NIKON", {}), "Nikon");
    EXPECT_EQ(shown("ILCE-7M4", "Sony"), "ILCE-7M4") << "no brand known";
    EXPECT_EQ(shown("gadget", "Canonical"), "gadget") << "a word that only begins like a brand";
    for (const char* model :
         {"Camera", "camera", "Unknown camera", "PTP Camera", "ptp class camera", "USB PTP Class Camera", ""})
        EXPECT_EQ(shown("NIKON DSC Z 8", {}, model), "Nikon DSC Z 8") << model;
    for (const char* model : {"Nikon DSC Z8 (PTP mode)", "Camera 3000", "Sony Alpha-A7 III (PC Control)"})
        EXPECT_EQ(shown("something else", {}, model), model);
    EXPECT_EQ(shown("", "NIKON"), "PTP camera");
    EXPECT_EQ(names::displayName(bus, "PTP camera", "usb:001,006"), "PTP camera");
}

TEST(USBCameraNames, whatIsNoCameraIsToldFromEveryModelOfTheCatalogue) {
    for (const char* product :
         {"xHCI Host Controller", "USB2.1 Hub", "4-Port USB 3.0 Hub", "Logitech USB Keyboard",
          "USB Optical Mouse", "USB Receiver", "Yeti Stereo Microphone", "USB Audio Device",
          "USB3.0 Card Reader", "Apple iPhone (PTP mode)", "SAMSUNG_Android", "Samsung Galaxy models (MTP)",
          "Google Inc Pixel 7 (MTP)", "u-blox GNSS receiver", "USB-Serial Controller", "HD Webcam C920",
          "Creative ZEN (MTP mode)", "Bluetooth Radio", "USB 10/100/1000 LAN"})
        EXPECT_TRUE(names::isNonCameraProduct(product)) << product;
    for (const char* product :
         {"NIKON DSC Z 8", "Canon Digital Camera", "ILCE-7M4", "DC-S9", "OM-1MarkII", "USB PTP Camera",
          "PENTAX K-1", "Hasselblad X2D 100C", "LEICA SL3", "Sigma fp", "Hubble", ""})
        EXPECT_FALSE(names::isNonCameraProduct(product)) << product;
    for (const auto& brand : cameras::CameraCatalog::byBrand()) {
        EXPECT_FALSE(names::isNonCameraProduct(brand.name));
        for (const auto model : brand.models)
            EXPECT_FALSE(names::isNonCameraProduct(model)) << model;
    }
}

TEST(USBHolders, theHoldersOfAVendorsDevicesAreNamedOnceAndSorted) {
    test::ScriptedUsbBus bus;
    bus.plugged = {device(3, 12, "one", {}, holding::sonyVendorID), device(3, 120, "other"),
                   device(4, 1, "two", {}, holding::sonyVendorID)};
    test::ScriptedProcessTable processes;
    processes.processes = {{40, "gvfsd-gphoto2", true},
                           {41, "/opt/Imaging Edge/Remote", true},
                           {42, "stranger", false},
                           {43, "gvfsd-gphoto2", true},
                           {44, "idle", true}};
    processes.holderIds = {{"/dev/bus/usb/003/012", {40, 41}},
                           {"/dev/bus/usb/003/120", {42}},
                           {"/dev/bus/usb/004/001", {43, 41}}};
    EXPECT_THAT(holding::sonyHolders(bus, processes), Optional(ElementsAre("Remote", "gvfsd-gphoto2")));
    EXPECT_THAT(holding::holders(bus, processes, 0x04b0), Optional(ElementsAre("stranger")));
    EXPECT_THAT(holding::holders(bus, processes, holding::canonVendorID), Optional(IsEmpty()));
    processes.holderIds.clear();
    EXPECT_THAT(holding::sonyHolders(bus, processes), Optional(IsEmpty())) << "none is not a failed scan";
    processes.processes.reset();
    EXPECT_EQ(holding::sonyHolders(bus, processes), std::nullopt);
    EXPECT_THAT(holding::holders(bus, processes, holding::canonVendorID), Optional(IsEmpty()))
        << "no device, nobody to ask for";
    bus.plugged.reset();
    EXPECT_EQ(holding::sonyHolders(bus, processes), std::nullopt);
    EXPECT_EQ(holding::prettify("/usr/lib/gvfs/"), "gvfs");
}

TEST(SonyNames, allNamesOfABodyHaveOneKeyAndNoTwoBodiesHave) {
    using cameras::SonyNames::sonyModelKey;
    const std::vector<std::vector<std::string>> bodies{
        {"Sony Alpha-A7R III (PC Control)", "Sony Alpha-A7R III (Control)", "ILCE-7RM3", "a7R III", "7RM3"},
        {"Sony Alpha-A7 III (PC Control)", "ILCE-7M3", "Sony ILCE-7M3 (Control)", "a7 III"},
        {"Sony Alpha-A7 IV (Control)", "ILCE-7M4", "a7 IV"},
        {"ILCE-7RM5", "a7R V", "Sony ILCE-7RM5 PC Control"},
        {"ILCE-7CM2", "a7C II"},
        {"ILCE-1", "a1", "Sony Alpha-A1 (PC Control)"},
        {"ILCE-1M2", "a1 II"},
        {"ILCE-9M3", "a9 III"},
        {"ILCE-6700", "a6700"},
        {"ILME-FX3", "FX3", "Sony ILME-FX3 (PC Control)"},
        {"ZV-E10", "Sony ZV-E10 (Control)"},
    };
    std::set<std::string> keys;
    for (const auto& names : bodies) {
        const std::string key = sonyModelKey(names[0]);
        EXPECT_FALSE(key.empty());
        EXPECT_TRUE(keys.insert(key).second) << names[0] << " has the key of another body, " << key;
        for (const std::string& name : names)
            EXPECT_EQ(sonyModelKey(name), key) << name;
    }
    for (const char* nothing : {"", "Sony", "Sony Alpha (PC Control)", "\xff\xfe"})
        EXPECT_EQ(sonyModelKey(nothing), "") << nothing;
}

TEST(SonyNames, theBusHasTheFirstSayOnWhoseABodyIs) {
    using cameras::SonyNames::gphotoBodyIsSony;
    test::ScriptedUsbBus bus;
    bus.plugged = {device(1, 1, "ILCE-7M4", "Sony", 0x054c), device(1, 2, "WALKMAN", "Sony", 0x054c),
                   device(1, 3, "NIKON DSC Z 8", "NIKON"), device(1, 4, "Camera", "ACME")};
    EXPECT_TRUE(gphotoBodyIsSony(bus, "PTP camera", "usb:001,001"));
    EXPECT_FALSE(gphotoBodyIsSony(bus, "Sony player", "usb:001,002"));
    EXPECT_FALSE(gphotoBodyIsSony(bus, "Sony something", "usb:001,003"));
    EXPECT_TRUE(gphotoBodyIsSony(bus, "SONY something", "usb:001,004"));
    EXPECT_FALSE(gphotoBodyIsSony(bus, "PTP camera", "usb:001,004"));
    EXPECT_TRUE(gphotoBodyIsSony(bus, "Sony Alpha-A7 III", "usb:009,009"));
}
