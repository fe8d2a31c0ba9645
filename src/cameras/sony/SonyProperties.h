#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The device properties of Sony bodies that Zenka reads and writes, by their codes in the Camera Remote SDK.
namespace zenka::cameras::SonyProperties {

inline constexpr std::uint32_t fNumber = 0x100;      ///< f-number × 100
inline constexpr std::uint32_t exposureBias = 0x101; ///< signed, thousandths of a stop
inline constexpr std::uint32_t shutterSpeed =
    0x103;                                  ///< numerator in the top 16 bits, denominator below; 0 bulb
inline constexpr std::uint32_t iso = 0x104; ///< in the low 24 bits
inline constexpr std::uint32_t exposureProgram = 0x105; ///< 1 M, 2 P, 3 A, 4 S
inline constexpr std::uint32_t focusMode = 0x109;
inline constexpr std::uint32_t driveMode = 0x10E; ///< top 16 bits 1 or 4: continuous
inline constexpr std::uint32_t storeDestination = 0x119;
inline constexpr std::uint32_t priorityKey = 0x11A;
inline constexpr std::uint32_t firmwareVersion = 0x751; ///< a text

inline constexpr std::uint32_t toMemoryCard = 2;
inline constexpr std::uint32_t fromComputer = 2; ///< of the priority key
inline constexpr std::uint32_t manualProgram = 1;

/// The SDK's value types.
inline constexpr std::uint32_t uint16Type = 2;
inline constexpr std::uint32_t uint16Array = 8194;
inline constexpr std::uint32_t uint32Array = 8195;
inline constexpr std::uint32_t int16Array = 12290;

/// What the dump of a body's state lists, in its order.
struct Labelled {
    std::string_view label;
    std::uint32_t code;
};
inline constexpr std::array<Labelled, 9> dumped{{{"fm", focusMode},
                                                 {"dm", driveMode},
                                                 {"pk", priorityKey},
                                                 {"ep", exposureProgram},
                                                 {"sm", 0x1A5},
                                                 {"rwl", 0x250},
                                                 {"rwc", 0x251},
                                                 {"ir", 0x505},
                                                 {"sd", storeDestination}}};

} // namespace zenka::cameras::SonyProperties
