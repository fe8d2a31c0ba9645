#pragma once

#include "lumix-helper/PtpTransport.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zenka::lumixHelper {

/// PTP as USB carries it (ISO 15740, USB Still Image Capture Device 1.0), as far as this helper needs it.
namespace ptp {

enum ContainerType : std::uint16_t { command = 1, data = 2, response = 3, event = 4 };

inline constexpr std::uint16_t getDeviceInfo = 0x1001;
inline constexpr std::uint16_t openSession = 0x1002;
inline constexpr std::uint16_t closeSession = 0x1003;
inline constexpr std::uint16_t getDevicePropValue = 0x1015;

inline constexpr std::uint16_t ok = 0x2001;
inline constexpr std::uint16_t deviceBusy = 0x2019;
inline constexpr std::uint16_t sessionAlreadyOpen = 0x201E;

inline constexpr std::uint16_t objectAdded = 0x4002;
inline constexpr std::uint16_t devicePropChanged = 0x4006;
inline constexpr std::uint16_t captureComplete = 0x400D;

inline constexpr std::uint16_t batteryLevel = 0x5001;
inline constexpr std::uint16_t fNumber = 0x5007;
inline constexpr std::uint16_t exposureProgram = 0x500E;
inline constexpr std::uint16_t exposureIndex = 0x500F;
inline constexpr std::uint16_t stillCaptureMode = 0x5013;

inline constexpr std::size_t headerSize = 12;

struct Container {
    std::uint16_t type = 0;
    std::uint16_t code = 0;
    std::uint32_t transaction = 0;
    Bytes payload;

    /// The parameters of a command, response or event; a part of one at the end is left out.
    std::vector<std::uint32_t> params() const;

    friend bool operator==(const Container&, const Container&) = default;
};

Bytes pack(const Container& container);
Bytes packParams(const std::vector<std::uint32_t>& params);

/// The length that a container claims for itself; nothing where there is no header.
std::optional<std::uint32_t> claimedLength(const Bytes& bytes);
/// A whole container; nothing where the length claimed is not that of the bytes.
std::optional<Container> parse(const Bytes& bytes);

/// A number in little-endian bytes of a size of 1, 2 or 4; nothing for another size.
std::optional<std::uint32_t> number(const Bytes& bytes);

/// What a device says of itself.
struct DeviceInfo {
    std::vector<std::uint16_t> operations;
    std::vector<std::uint16_t> events;
    std::vector<std::uint16_t> properties;

    friend bool operator==(const DeviceInfo&, const DeviceInfo&) = default;
};
/// Nothing when it ends before the end of the properties.
std::optional<DeviceInfo> parseDeviceInfo(const Bytes& bytes);

} // namespace ptp

} // namespace zenka::lumixHelper
