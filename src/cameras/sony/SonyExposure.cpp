#include "cameras/sony/SonyExposure.h"

#include "cameras/sony/SonyProperties.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace zenka::cameras::SonyExposure {

namespace {

constexpr double apertureReach = 0.4; ///< natural logarithm
constexpr double shutterReach = 0.7;
constexpr double isoReach = 0.7;
constexpr double fractionsBelowSec = 0.34;

constexpr std::uint64_t lastAperture = 65532; ///< codes above stand for no aperture
constexpr std::uint64_t noShutter = 0xFFFFFFFF;
constexpr std::int64_t isoBits = 0xFFFFFF;
constexpr double most16 = 0xFFFF;

std::uint64_t lowestByteFirst(std::span<const std::uint8_t> bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = (value << 8U) | bytes[i];
    return value;
}

std::optional<std::int64_t> settingOf(std::uint32_t code, std::uint64_t value) {
    const auto plain = static_cast<std::int64_t>(value);
    switch (code) {
    case SonyProperties::fNumber: return value > lastAperture ? std::nullopt : std::optional(plain);
    case SonyProperties::exposureBias: return static_cast<std::int16_t>(static_cast<std::uint16_t>(value));
    case SonyProperties::shutterSpeed: return value == noShutter ? std::nullopt : std::optional(plain);
    case SonyProperties::iso: return (plain & isoBits) == isoBits ? std::nullopt : std::optional(plain);
    default: return std::nullopt;
    }
}

/// `measure` gives what a code stands for, nothing for one that cannot be meant.
template <typename Measure>
std::optional<std::int64_t> nearestCode(const std::vector<std::int64_t>& codes, double target, double reach,
                                        Measure measure) {
    std::optional<std::int64_t> best;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (const std::int64_t code : codes) {
        const std::optional<double> value = measure(code);
        if (!value)
            continue;
        const double distance = std::abs(std::log(*value / target));
        if (distance < bestDistance) {
            bestDistance = distance;
            best = code;
        }
    }
    return bestDistance <= reach ? best : std::nullopt;
}

std::optional<double> countOf(std::int64_t code) {
    return code >= 1 ? std::optional(static_cast<double>(code)) : std::nullopt;
}

/// Rounded and held to what 16 bits take.
std::int64_t in16Bits(double value) {
    return std::llround(std::clamp(value, 0.0, most16));
}

} // namespace

std::vector<std::int64_t>* listOf(SonyCandidates& candidates, std::uint32_t code) {
    switch (code) {
    case SonyProperties::fNumber: return &candidates.aperture;
    case SonyProperties::exposureBias: return &candidates.expComp;
    case SonyProperties::shutterSpeed: return &candidates.shutter;
    case SonyProperties::iso: return &candidates.iso;
    default: return nullptr;
    }
}

std::vector<std::int64_t> offered(std::uint32_t code, std::span<const std::uint8_t> values) {
    const bool narrow = code == SonyProperties::fNumber || code == SonyProperties::exposureBias;
    const std::size_t width = narrow ? 2 : 4;
    std::vector<std::int64_t> settings;
    settings.reserve(values.size() / width);
    for (; values.size() >= width; values = values.subspan(width)) {
        if (const auto setting = settingOf(code, lowestByteFirst(values.first(width))))
            settings.push_back(*setting);
    }
    return settings;
}

std::optional<double> shutterSeconds(std::int64_t code) {
    const auto numerator = static_cast<double>((code >> 16) & 0xFFFF);
    const auto denominator = static_cast<double>(code & 0xFFFF);
    if (numerator == 0 || denominator == 0)
        return std::nullopt;
    return numerator / denominator;
}

std::optional<std::int64_t> snapAperture(double fNumber, const SonyCandidates& candidates) {
    return nearestCode(candidates.aperture, fNumber * 100, apertureReach, countOf);
}

std::optional<std::int64_t> snapShutter(double seconds, const SonyCandidates& candidates) {
    return nearestCode(candidates.shutter, seconds, shutterReach, shutterSeconds);
}

std::optional<std::int64_t> snapIso(double iso, const SonyCandidates& candidates) {
    return nearestCode(candidates.iso, iso, isoReach,
                       [](std::int64_t code) { return countOf(code & isoBits); });
}

std::int64_t snapExpComp(double stops, const SonyCandidates& candidates) {
    constexpr double mostThousandths = 32767;
    const std::int64_t target = std::llround(std::clamp(stops * 1000, -mostThousandths, mostThousandths));
    const auto nearest = std::ranges::min_element(
        candidates.expComp, {}, [target](std::int64_t code) { return std::abs(code - target); });
    return nearest == candidates.expComp.end() ? target : *nearest;
}

std::int64_t apertureCode(double fNumber) {
    return in16Bits(fNumber * 100);
}

std::int64_t shutterCode(double seconds) {
    if (seconds < fractionsBelowSec)
        return 0x10000 + std::max<std::int64_t>(1, in16Bits(1 / seconds));
    return (in16Bits(seconds * 10) << 16) + 10;
}

} // namespace zenka::cameras::SonyExposure
