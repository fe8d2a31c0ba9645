#pragma once

#include "ports/PixelDecoder.h"

#include <cmath>
#include <string>

namespace zenka::test {

/// Takes "ground 240" for the picture of a tile of level ground, 240 m high, and all else for no picture.
struct ToldPixels final : ports::PixelDecoder {
    static std::string ground(double metres) { return "ground " + std::to_string(metres); }

    std::optional<ports::Pixels> decodePng(std::string_view bytes, int width, int height) const override {
        if (!bytes.starts_with("ground "))
            return std::nullopt;
        const auto code = std::lround((std::stod(std::string(bytes.substr(7))) + 10000) * 10);
        ports::Pixels pixels{.width = width, .height = height, .rgba = {}};
        pixels.rgba.reserve(static_cast<std::size_t>(4 * width * height));
        for (int i = 0; i < width * height; ++i) {
            for (const long byte : {code >> 16, code >> 8, code, 255L})
                pixels.rgba.push_back(static_cast<std::uint8_t>(byte));
        }
        return pixels;
    }
};

} // namespace zenka::test
