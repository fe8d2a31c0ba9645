#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zenka::cameras {

/// What a Lumix body is told over PTP by its maker's own operations. Everything on the wire is little-endian.
namespace LumixPTP {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::uint16_t setProperty = 0x9403;      ///< one parameter: the property; data: its payload
inline constexpr std::uint16_t captureOperation = 0x9404; ///< one parameter: the action
inline constexpr std::uint32_t singleShot = 0x03000011;
inline constexpr std::uint32_t bulbStart = 0x03000012;
inline constexpr std::uint32_t bulbStop = 0x03000013;

inline constexpr std::uint32_t isoProperty = 0x02000021;
inline constexpr std::uint32_t shutterProperty = 0x02000031;
inline constexpr std::uint32_t apertureProperty = 0x02000041;

inline constexpr std::uint16_t success = 0x2001;

/// A command container with the transaction id 0, which whoever sends it replaces.
Bytes ptpCommand(std::uint16_t code, const std::vector<std::uint32_t>& params);

/// The data of setProperty: the property, the size of the value in bytes, the value in 2 or 4 bytes.
Bytes setPayload(std::uint32_t property, std::uint32_t value, bool uint16);

/// The code of a response container; 0 for what is too short to be one.
std::uint16_t ptpResponseCode(const Bytes& data);

} // namespace LumixPTP

namespace LumixEncode {

inline constexpr std::uint32_t autoIso = 0x10000064;

/// 0 or less asks for none, and the body chooses.
std::uint32_t iso(int iso);

/// Thousandths: of the denominator up to a second (1/250 s is 250000), of seconds with the top bit set
/// beyond (2.5 s is 0x800009C4). Nothing where that does not fit.
std::optional<std::uint32_t> shutter(double sec);

/// Tenths of the f-number; nothing where that does not fit 16 bits.
std::optional<std::uint16_t> aperture(double fNumber);

/// The shutter that a body makes of what it is sent, for people: "1/250", "2.5"; empty where nothing is sent.
std::string shutterText(double sec);

/// One value that a body is told.
struct Setting {
    std::uint32_t property = 0;
    std::uint32_t value = 0;
    bool uint16 = false;

    friend bool operator==(const Setting&, const Setting&) = default;
};

/// What a body is told before a frame, in order: always the ISO, the aperture when one is asked, the shutter
/// when one is asked and the frame is no bulb. A value that does not fit is left out.
std::vector<Setting> settings(int iso, double aperture, double shutterSec, bool bulb);

} // namespace LumixEncode

} // namespace zenka::cameras
