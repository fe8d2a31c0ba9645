#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zenka::cameras {

/// What a session has sent and the body has taken; a value without its flag is not known to be on the body.
struct SonyExpoCache {
    bool hasAperture = false;
    bool hasShutter = false;
    bool hasIso = false;
    bool hasExpComp = false;
    double aperture = 0; ///< f-number, as asked
    double shutter = 0;  ///< seconds, as asked; 0 bulb
    double expComp = 0;  ///< stops
    std::int32_t iso = 0;
    /// Seconds of the code that went out; negative of the asked ones where the body offered none near; 0
    /// where none was sent.
    double lastSentShutter = 0;

    friend bool operator==(const SonyExpoCache&, const SonyExpoCache&) = default;
};

/// The codes that a body offers for each setting, in its order.
struct SonyCandidates {
    std::vector<std::int64_t> aperture;
    std::vector<std::int64_t> shutter;
    std::vector<std::int64_t> iso;
    std::vector<std::int64_t> expComp;
    std::int32_t readTries = 0;
    std::int32_t snapRereads = 0; ///< because a request was far from all of them

    bool complete() const { return !aperture.empty() && !shutter.empty() && !iso.empty(); }
};

/// From requests to the codes that a body offers. Pure.
namespace SonyExposure {

/// The list of `candidates` that a property fills; null for a property that fills none.
std::vector<std::int64_t>* listOf(SonyCandidates& candidates, std::uint32_t code);

/// The codes in the packed values of a property, without those that are no settings (auto, closed, none).
std::vector<std::int64_t> offered(std::uint32_t code, std::span<const std::uint8_t> values);

/// The seconds of a shutter code; nothing for bulb and for one without a time.
std::optional<double> shutterSeconds(std::int64_t code);

/// The offered code that is nearest in log distance, the first of equals; nothing when none is near: within
/// e^0.4 for the aperture, e^0.7 for shutter and ISO.
std::optional<std::int64_t> snapAperture(double fNumber, const SonyCandidates& candidates);
std::optional<std::int64_t> snapShutter(double seconds, const SonyCandidates& candidates);
std::optional<std::int64_t> snapIso(double iso, const SonyCandidates& candidates);
/// The nearest in thousandths of a stop, or the request itself where nothing is offered.
std::int64_t snapExpComp(double stops, const SonyCandidates& candidates);

/// The codes of requests that nothing offered is near to.
std::int64_t apertureCode(double fNumber);
std::int64_t shutterCode(double seconds);

} // namespace SonyExposure

} // namespace zenka::cameras
