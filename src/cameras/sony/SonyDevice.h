#pragma once

#include "cameras/sony/CrSDKTable.h"
#include "cameras/sony/SonyExposure.h"
#include "cameras/sony/SonyWaits.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zenka::cameras {

/// The properties of one session, for whoever holds the lock of the SDK.
class SonyDevice {
public:
    SonyDevice(const CrSDKTable& table, std::int64_t device, const SonyWaits& waits)
        : table_(table), device_(device), waits_(waits) {}

    /// The current value; nothing for a property that cannot be read.
    std::optional<std::uint64_t> readProperty(std::uint32_t code) const;
    /// The current text, in ASCII with "?" for all else; empty when there is none.
    std::string readText(std::uint32_t code) const;
    bool setProperty(std::uint32_t code, std::uint32_t type, std::uint64_t value) const;

    /// Reads what the body offers for each setting, all at once. A list that it does not tell stays.
    void readCandidates(SonyCandidates& candidates) const;
    /// Reads them while one that every shot needs is empty, at four calls of a session.
    void completeCandidates(SonyCandidates& candidates) const;

    /// "fm=1 dm=10000 ...": the values that can be read, in hexadecimal.
    std::string stateDump() const;

    /// Gives the computer control of the body: pictures to its card, priority to the computer, program M.
    /// Each is tried several times; a body that refuses keeps what it has.
    struct Handshake {
        std::uint32_t prioBefore = 0;
        std::uint32_t prioAfter = 0;
        std::uint32_t expProgBefore = 0;
        std::uint32_t expProgAfter = 0;
    };
    Handshake takeControl() const;

    const CrSDKTable& table() const { return table_; }
    std::int64_t number() const { return device_; }
    const SonyWaits& waits() const { return waits_; }

private:
    struct BeforeAndAfter {
        std::uint32_t before = 0;
        std::uint32_t after = 0;
    };
    BeforeAndAfter insist(std::uint32_t code, std::uint32_t type, std::uint32_t wanted) const;

    const CrSDKTable& table_;
    const std::int64_t device_;
    const SonyWaits& waits_;
};

} // namespace zenka::cameras
