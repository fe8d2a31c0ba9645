#pragma once

#include "ports/ImageMetadata.h"

namespace zenka::platform {

class LazyFile;

/// Image metadata by Exiv2.
class Exiv2Metadata final : public ports::ImageMetadata {
public:
    Exiv2Metadata();

    std::optional<ports::ImageFields> read(const std::filesystem::path& file) override;

    /// The same of a file that is open. No exception leaves it.
    static std::optional<ports::ImageFields> fieldsOf(LazyFile& file);
};

} // namespace zenka::platform
