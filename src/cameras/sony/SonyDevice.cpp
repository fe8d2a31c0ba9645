#include "cameras/sony/SonyDevice.h"

#include "cameras/sony/SonyProperties.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <span>

namespace zenka::cameras {

namespace {

namespace Properties = SonyProperties;

constexpr int storeTries = 6;
constexpr int insistTries = 4;
constexpr base::Seconds betweenTries{0.3};
constexpr int candidateTries = 4;
constexpr std::uint32_t mostText = 255;

/// Hands each property that was read to a function; false when none could be.
template <typename Take>
bool readEach(const CrSDKTable& table, std::int64_t device, std::span<const std::uint32_t> codes, Take take) {
    const std::uint32_t error = table.readProperties(
        device, codes.data(), static_cast<std::uint32_t>(codes.size()),
        [](void* taker, const CrSDKProperty* property) {
            if (property)
                (*static_cast<Take*>(taker))(*property);
        },
        &take);
    return error == 0;
}

} // namespace

std::optional<std::uint64_t> SonyDevice::readProperty(std::uint32_t code) const {
    std::optional<std::uint64_t> value;
    const bool read =
        readEach(table_, device_, std::span(&code, 1), [&value, code](const CrSDKProperty& property) {
            if (property.code == code)
                value = property.value;
        });
    return read ? value : std::nullopt;
}

std::string SonyDevice::readText(std::uint32_t code) const {
    std::string text;
    readEach(table_, device_, std::span(&code, 1), [&text, code](const CrSDKProperty& property) {
        if (property.code != code || !property.text)
            return;
        constexpr std::uint16_t firstBeyondAscii = 128;
        const std::span units(property.text, std::min(property.textLength, mostText));
        for (const std::uint16_t unit : units) {
            if (unit == 0)
                break;
            text += unit < firstBeyondAscii ? static_cast<char>(unit) : '?';
        }
    });
    return text;
}

bool SonyDevice::setProperty(std::uint32_t code, std::uint32_t type, std::uint64_t value) const {
    return table_.setProperty(device_, code, type, value) == 0;
}

void SonyDevice::readCandidates(SonyCandidates& candidates) const {
    constexpr std::array bundle{Properties::fNumber, Properties::shutterSpeed, Properties::iso,
                                Properties::exposureBias};
    readEach(table_, device_, bundle, [&candidates](const CrSDKProperty& property) {
        const std::span values(property.values, property.values ? property.valuesSize : 0);
        if (auto* list = SonyExposure::listOf(candidates, property.code))
            *list = SonyExposure::offered(property.code, values);
    });
}

void SonyDevice::completeCandidates(SonyCandidates& candidates) const {
    if (candidates.complete() || candidates.readTries >= candidateTries)
        return;
    ++candidates.readTries;
    readCandidates(candidates);
}

std::string SonyDevice::stateDump() const {
    std::string dump;
    for (const auto& [label, code] : Properties::dumped) {
        if (const auto value = readProperty(code))
            dump += absl::StrFormat("%s%s=%x", dump.empty() ? "" : " ", label, *value);
    }
    return dump;
}

SonyDevice::BeforeAndAfter SonyDevice::insist(std::uint32_t code, std::uint32_t type,
                                              std::uint32_t wanted) const {
    const auto read = [this, code](std::uint32_t otherwise) {
        const auto value = readProperty(code);
        return value ? static_cast<std::uint32_t>(*value) : otherwise;
    };
    BeforeAndAfter seen;
    seen.before = read(0);
    seen.after = seen.before;
    for (int tries = 0; tries < insistTries && seen.after != wanted; ++tries) {
        setProperty(code, type, wanted);
        waits_.pause(betweenTries);
        seen.after = read(seen.after);
    }
    return seen;
}

SonyDevice::Handshake SonyDevice::takeControl() const {
    for (int tries = 0; tries < storeTries; ++tries) {
        if (tries > 0)
            waits_.pause(betweenTries);
        setProperty(Properties::storeDestination, Properties::uint16Type, Properties::toMemoryCard);
        if (readProperty(Properties::storeDestination) == Properties::toMemoryCard)
            break;
    }
    const auto priority = insist(Properties::priorityKey, Properties::uint32Array, Properties::fromComputer);
    const auto program =
        insist(Properties::exposureProgram, Properties::uint16Array, Properties::manualProgram);
    return {.prioBefore = priority.before,
            .prioAfter = priority.after,
            .expProgBefore = program.before,
            .expProgAfter = program.after};
}

} // namespace zenka::cameras
