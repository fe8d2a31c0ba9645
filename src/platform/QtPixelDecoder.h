#pragma once

#include "ports/PixelDecoder.h"

namespace zenka::platform {

/// Pictures through QImage. Needs no application object.
class QtPixelDecoder final : public ports::PixelDecoder {
public:
    std::optional<ports::Pixels> decodePng(std::string_view bytes, int width, int height) const override;
};

} // namespace zenka::platform
