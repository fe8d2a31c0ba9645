#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zenka::geo {

/// Little-endian numbers at a place of a text of bytes; 0 beyond its end.
std::uint32_t u16At(std::string_view bytes, std::size_t at);
std::uint32_t u32At(std::string_view bytes, std::size_t at);

/// Bytes [from, to) as far as they exist.
std::string_view slice(std::string_view bytes, std::size_t from, std::size_t to);

/// Reads numbers one behind the other. After an end or a number too large all is 0 and `ok` is false.
class ByteCursor {
public:
    explicit ByteCursor(std::string_view bytes) : bytes_(bytes) {}

    /// Seven bits a byte, low ones first, the top bit set on all bytes but the last; 32 bits at most.
    std::uint32_t varint() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 35 && at_ < bytes_.size(); shift += 7) {
            const auto byte = static_cast<unsigned char>(bytes_[at_++]);
            value |= std::uint64_t{byte & 127U} << shift;
            if (byte < 128) {
                if (value > UINT32_MAX) {
                    break;
                }
                return static_cast<std::uint32_t>(value);
            }
        }
        ok_ = false;
        at_ = bytes_.size();
        return 0;
    }

    /// 0, -1, 1, -2, ... from the varints 0, 1, 2, 3, ...
    std::int64_t signedVarint() {
        const std::uint32_t value = varint();
        return (value & 1U) != 0 ? -static_cast<std::int64_t>(value / 2) - 1 : value / 2;
    }

    bool ok() const { return ok_; }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
    bool ok_ = true;
};

/// The frame that the data files share: four letters, u16 version, u16 of the file's own use, u32 offset of
/// each section and of the end, then the sections, each filled up to a multiple of four bytes.
template <std::size_t Count>
struct SectionedFile {
    std::uint32_t extra = 0;
    std::array<std::string_view, Count> sections;
};

/// Nothing when the letters or the version are others, or sections are not in order and within the bytes.
template <std::size_t Count>
std::optional<SectionedFile<Count>> readSections(std::string_view bytes, std::string_view magic,
                                                 std::uint32_t version) {
    constexpr std::size_t fixedSize = 8;
    constexpr std::size_t headSize = fixedSize + 4 * (Count + 1);
    if (bytes.size() < headSize || bytes.substr(0, 4) != magic || u16At(bytes, 4) != version) {
        return std::nullopt;
    }
    SectionedFile<Count> file{u16At(bytes, 6), {}};
    std::size_t from = u32At(bytes, fixedSize);
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t to = u32At(bytes, fixedSize + 4 * (i + 1));
        if (from < headSize || to < from || to > bytes.size()) {
            return std::nullopt;
        }
        file.sections[i] = bytes.substr(from, to - from);
        from = to;
    }
    return file;
}

} // namespace zenka::geo
