#include "cameras/usb/USBCameraNames.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zenka::cameras::USBCameraNames {

namespace {

/// In lower case, with the spelling to show.
constexpr std::array<std::pair<std::string_view, std::string_view>, 13> brands{{
    {"nikon", "Nikon"},
    {"canon", "Canon"},
    {"panasonic", "Panasonic"},
    {"lumix", "Panasonic"},
    {"olympus", "Olympus"},
    {"om digital", "OM System"},
    {"om system", "OM System"},
    {"fujifilm", "Fujifilm"},
    {"pentax", "Pentax"},
    {"ricoh", "Ricoh"},
    {"leica", "Leica"},
    {"sigma", "Sigma"},
    {"hasselblad", "Hasselblad"},
}};

/// Words of product strings and of gphoto2's own list, in lower case.
constexpr auto nonCameraWords = std::to_array<std::string_view>({
    // phones, tablets and readers, which speak the cameras' protocol
    "iphone",
    "ipad",
    "ipod",
    "android",
    "phone",
    "smartphone",
    "tablet",
    "galaxy",
    "pixel",
    "nexus",
    "xperia",
    "oneplus",
    "xiaomi",
    "redmi",
    "poco",
    "huawei",
    "honor",
    "oppo",
    "realme",
    "vivo",
    "motorola",
    "moto",
    "nokia",
    "lumia",
    "blackberry",
    "htc",
    "fairphone",
    "kindle",
    "kobo",
    "garmin",
    // players, which do too
    "walkman",
    "zune",
    "sansa",
    "creative zen",
    "iriver",
    "cowon",
    "mp3",
    "player",
    // storage
    "card reader",
    "cardreader",
    "flash drive",
    "flash disk",
    "disk",
    "ssd",
    "mass storage",
    // what people type and point with
    "keyboard",
    "mouse",
    "trackpad",
    "touchpad",
    "trackball",
    "touchscreen",
    "gamepad",
    "joystick",
    "receiver",
    // sound and pictures that are no stills
    "audio",
    "headset",
    "headphones",
    "earphones",
    "microphone",
    "speaker",
    "speakers",
    "webcam",
    "facetime",
    "integrated camera",
    "capture card",
    // the bus and what else hangs on it
    "hub",
    "host controller",
    "dock",
    "docking station",
    "billboard",
    "bluetooth",
    "ethernet",
    "lan",
    "wlan",
    "modem",
    "serial",
    "uart",
    "gps",
    "gnss",
    "fingerprint",
    "smart card",
    "smartcard",
    "security key",
    "printer",
    "scanner",
    "display",
    "monitor",
    "ups",
    "charger",
});

/// Beginnings of what gphoto2 says of a body that it does not know, in lower case.
constexpr auto placeholders = std::to_array<std::string_view>({"unknown ", "ptp ", "usb ptp", "ptp class"});

bool isLetter(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

/// Whether a text in lower case has a word, or several, with no further letter at either end: "hub" is in
/// "usb3 hub" and not in "hubble".
bool hasWord(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        const std::size_t behind = at + word.size();
        if ((at == 0 || !isLetter(text[at - 1])) && (behind == text.size() || !isLetter(text[behind])))
            return true;
    }
    return false;
}

bool isPlaceholder(std::string_view gphotoModel) {
    const std::string model = base::lowered(base::trimmed(gphotoModel));
    return model.empty() || model == "camera" ||
           std::ranges::any_of(placeholders, [&](auto beginning) { return model.starts_with(beginning); });
}

std::optional<int> decimal(std::string_view text) {
    const bool digits = std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; });
    return digits ? base::readInteger(text) : std::nullopt;
}

} // namespace

std::vector<Device> all(ports::UsbBus& bus) {
    std::vector<Device> devices = bus.devices().value_or(std::vector<Device>());
    std::erase_if(devices, [](const Device& device) { return device.product.empty(); });
    return devices;
}

std::optional<Device> lookup(ports::UsbBus& bus, std::string_view gphotoPort) {
    constexpr std::string_view kind = "usb:";
    if (!gphotoPort.starts_with(kind))
        return std::nullopt;
    const auto numbers = base::split(gphotoPort.substr(kind.size()), ',');
    const auto busNumber = decimal(numbers[0]);
    const auto address = numbers.size() == 2 ? decimal(numbers[1]) : std::nullopt;
    if (!busNumber || !address)
        return std::nullopt;
    for (Device& device : bus.devices().value_or(std::vector<Device>()))
        if (device.busNumber == *busNumber && device.address == *address)
            return std::move(device);
    return std::nullopt;
}

std::string gphotoPort(const Device& device) {
    return absl::StrFormat("usb:%03d,%03d", device.busNumber, device.address);
}

std::optional<std::string_view> canonicalBrand(std::string_view text) {
    const std::string lowered = base::lowered(text);
    for (const auto& [word, brand] : brands)
        if (hasWord(lowered, word))
            return brand;
    return std::nullopt;
}

std::string displayName(ports::UsbBus& bus, const std::string& gphotoModel, std::string_view port) {
    if (!isPlaceholder(gphotoModel))
        return gphotoModel;
    const auto device = lookup(bus, port);
    if (!device || device->product.empty())
        return gphotoModel;
    // a maker's older brand may live on in the product alone
    auto brand = canonicalBrand(device->product);
    if (!brand)
        brand = canonicalBrand(device->vendor.value_or(""));
    if (!brand)
        return device->product;
    std::string_view product = device->product;
    if (base::equalIgnoringCase(product.substr(0, brand->size()), *brand))
        product = base::trimmed(product.substr(brand->size()));
    return product.empty() ? std::string(*brand) : absl::StrFormat("%s %s", *brand, product);
}

bool isNonCameraProduct(std::string_view name) {
    const std::string lowered = base::lowered(name);
    return std::ranges::any_of(nonCameraWords, [&](auto word) { return hasWord(lowered, word); });
}

} // namespace zenka::cameras::USBCameraNames
