#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zenka::base {

/// The words and directories of a TIFF structure, read with distrust: nothing is read past the bytes given,
/// which must outlive this.
class TiffBytes {
public:
    /// Nothing unless the bytes begin with "II" (little-endian) or "MM" (big-endian).
    static std::optional<TiffBytes> in(std::string_view bytes);

    std::optional<std::uint16_t> word(std::size_t offset) const;
    std::optional<std::uint32_t> longWord(std::size_t offset) const;

    /// The word behind the byte order: 42, or a maker's own.
    std::optional<std::uint16_t> magic() const { return word(2); }
    std::optional<std::uint32_t> firstDirectory() const { return longWord(4); }

    /// How many entries of a directory are looked at: what it says, but not more than this.
    static constexpr std::size_t mostEntries = 512;
    static constexpr std::size_t entrySize = 12;

    /// The offset of the first entry with this tag.
    std::optional<std::size_t> findTag(std::size_t directory, std::uint16_t tag) const;

    // of an entry
    std::optional<std::uint16_t> typeAt(std::size_t entry) const { return word(entry + 2); }
    /// The value itself where it has four bytes or less, else its offset.
    std::optional<std::uint32_t> valueAt(std::size_t entry) const { return longWord(entry + 8); }

private:
    TiffBytes(std::string_view bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

    std::optional<std::uint32_t> number(std::size_t offset, std::size_t size) const;

    std::string_view bytes_;
    bool bigEndian_;
};

namespace TiffTags {

inline constexpr std::uint16_t make = 0x010F;
inline constexpr std::uint16_t model = 0x0110;
inline constexpr std::uint16_t exifDirectory = 0x8769;
inline constexpr std::uint16_t exposureTime = 0x829A;
inline constexpr std::uint16_t fNumber = 0x829D;
inline constexpr std::uint16_t isoSpeedRatings = 0x8827;
inline constexpr std::uint16_t isoSpeed = 0x8833;
inline constexpr std::uint16_t dateTimeOriginal = 0x9003;
inline constexpr std::uint16_t subSecTimeOriginal = 0x9291;

} // namespace TiffTags

} // namespace zenka::base
