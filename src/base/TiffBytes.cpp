#include "base/TiffBytes.h"

#include <algorithm>

namespace zenka::base {

std::optional<TiffBytes> TiffBytes::in(std::string_view bytes) {
    if (bytes.starts_with("II"))
        return TiffBytes(bytes, false);
    if (bytes.starts_with("MM"))
        return TiffBytes(bytes, true);
    return std::nullopt;
}

std::optional<std::uint32_t> TiffBytes::number(std::size_t offset, std::size_t size) const {
    if (offset > bytes_.size() || bytes_.size() - offset < size)
        return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t at = bigEndian_ ? i : size - 1 - i;
        value = value << 8 | static_cast<unsigned char>(bytes_[offset + at]);
    }
    return value;
}

std::optional<std::uint16_t> TiffBytes::word(std::size_t offset) const {
    const auto value = number(offset, 2);
    return value ? std::optional(static_cast<std::uint16_t>(*value)) : std::nullopt;
}

std::optional<std::uint32_t> TiffBytes::longWord(std::size_t offset) const {
    return number(offset, 4);
}

std::optional<std::size_t> TiffBytes::findTag(std::size_t directory, std::uint16_t tag) const {
    const auto count = word(directory);
    if (!count)
        return std::nullopt;
    const std::size_t entries = std::min<std::size_t>(*count, mostEntries);
    for (std::size_t i = 0; i < entries; ++i) {
        const std::size_t entry = directory + 2 + i * entrySize;
        const auto found = word(entry);
        if (!found)
            return std::nullopt;
        if (*found == tag)
            return entry;
    }
    return std::nullopt;
}

} // namespace zenka::base
