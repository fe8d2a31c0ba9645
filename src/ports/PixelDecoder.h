#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zenka::ports {

/// A picture: rows from the top, each from the left, four bytes to a pixel (red, green, blue, alpha).
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba;
};

/// Makes pixels of the bytes of a picture file, with the colours as stored.
class PixelDecoder {
public:
    virtual ~PixelDecoder() = default;

    /// Nothing for what is no PNG of this size; the size is looked at before anything is unpacked. Any
    /// thread, several at once.
    virtual std::optional<Pixels> decodePng(std::string_view bytes, int width, int height) const = 0;
};

} // namespace zenka::ports
