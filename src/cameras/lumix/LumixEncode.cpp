#include "cameras/lumix/LumixEncode.h"

#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::cameras {

namespace LumixPTP {

namespace {

void put(Bytes& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

} // namespace

Bytes ptpCommand(std::uint16_t code, const std::vector<std::uint32_t>& params) {
    constexpr std::uint16_t command = 1;
    constexpr std::size_t header = 12;
    Bytes bytes;
    put(bytes, static_cast<std::uint32_t>(header + 4 * params.size()), 4);
    put(bytes, command, 2);
    put(bytes, code, 2);
    put(bytes, 0, 4);
    for (const std::uint32_t param : params)
        put(bytes, param, 4);
    return bytes;
}

Bytes setPayload(std::uint32_t property, std::uint32_t value, bool uint16) {
    const int size = uint16 ? 2 : 4;
    Bytes bytes;
    put(bytes, property, 4);
    put(bytes, static_cast<std::uint32_t>(size), 4);
    put(bytes, value, size);
    return bytes;
}

std::uint16_t ptpResponseCode(const Bytes& data) {
    return data.size() < 8 ? std::uint16_t{0} : static_cast<std::uint16_t>(data[6] | data[7] << 8);
}

} // namespace LumixPTP

namespace LumixEncode {

namespace {

constexpr std::uint32_t secondsFlag = 0x80000000;

} // namespace

std::uint32_t iso(int iso) {
    return iso > 0 ? static_cast<std::uint32_t>(iso) : autoIso;
}

std::optional<std::uint32_t> shutter(double sec) {
    constexpr std::uint32_t unasked = 1000000;
    if (sec <= 0)
        return unasked;
    const bool fraction = 1 / sec >= 1;
    const double thousandths = std::round((fraction ? 1 / sec : sec) * 1000);
    if (!(thousandths < secondsFlag)) // what is no number neither
        return std::nullopt;
    return static_cast<std::uint32_t>(thousandths) | (fraction ? 0 : secondsFlag);
}

std::optional<std::uint16_t> aperture(double fNumber) {
    const double tenths = std::round(fNumber * 10);
    if (tenths >= 0 && tenths <= 0xFFFF)
        return static_cast<std::uint16_t>(tenths);
    return std::nullopt; // what is no number neither
}

std::string shutterText(double sec) {
    const auto code = shutter(sec);
    if (!(sec > 0) || !code)
        return {};
    const double value = (*code & ~secondsFlag) / 1000.0;
    if (*code & secondsFlag)
        return absl::StrFormat("%.9g", value);
    return value == 1 ? "1" : absl::StrFormat("1/%.9g", value);
}

std::vector<Setting> settings(int isoAsked, double apertureAsked, double shutterSec, bool bulb) {
    std::vector<Setting> list{{.property = LumixPTP::isoProperty, .value = iso(isoAsked)}};
    if (apertureAsked > 0) {
        if (const auto value = aperture(apertureAsked))
            list.push_back({.property = LumixPTP::apertureProperty, .value = *value, .uint16 = true});
    }
    if (shutterSec > 0 && !bulb) {
        if (const auto value = shutter(shutterSec))
            list.push_back({.property = LumixPTP::shutterProperty, .value = *value});
    }
    return list;
}

} // namespace LumixEncode

} // namespace zenka::cameras
