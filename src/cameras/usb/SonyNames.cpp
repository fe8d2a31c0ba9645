#include "cameras/usb/SonyNames.h"

#include "base/Text.h"
#include "cameras/usb/USBCameraNames.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace zenka::cameras::SonyNames {

namespace {

constexpr int sonyVendor = 0x054C;

/// Longer ones before those that they contain.
constexpr std::array<std::string_view, 7> noise{"(pc control)", "(control)", "pc control", "control",
                                                "sony",         "alpha",     "mark"};

/// Generations as the shops write them, and as the model codes do.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> generations{
    {{"ii", "m2"}, {"iii", "m3"}, {"iv", "m4"}, {"v", "m5"}, {"vi", "m6"}, {"vii", "m7"}}};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> words(1);
    for (const char c : text) {
        if (isDigit(c) || (c >= 'a' && c <= 'z'))
            words.back() += c;
        else if (!words.back().empty())
            words.emplace_back();
    }
    if (words.back().empty())
        words.pop_back();
    return words;
}

} // namespace

std::string sonyModelKey(std::string_view text) {
    std::string model = base::lowered(text);
    for (const std::string_view word : noise)
        model = base::replacedAll(model, word, " ");
    std::string key;
    for (std::string& word : wordsOf(model)) {
        // "ilce" and "ilme" stand for the line, as "a" does: ILCE-7M4 is the a7 IV.
        for (const std::string_view line : {"ilce", "ilme", "a"})
            if (key.empty() && word.starts_with(line) &&
                (word.size() == line.size() || line != "a" || isDigit(word[line.size()]))) {
                word.erase(0, line.size());
                break;
            }
        const auto generation =
            std::ranges::find(generations, word, &decltype(generations)::value_type::first);
        key += generation == generations.end() || key.empty() ? word : std::string(generation->second);
    }
    return key;
}

bool gphotoBodyIsSony(ports::UsbBus& bus, std::string_view model, std::string_view port) {
    if (const auto device = USBCameraNames::lookup(bus, port)) {
        if (USBCameraNames::isNonCameraProduct(device->product))
            return false;
        if (device->vid == sonyVendor)
            return true;
        if (USBCameraNames::canonicalBrand(device->vendor.value_or("")))
            return false; // of another maker, as the list of brands has no Sony
    }
    return base::containsIgnoringCase(model, "sony");
}

} // namespace zenka::cameras::SonyNames
