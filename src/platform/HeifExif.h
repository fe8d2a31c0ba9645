#pragma once

#include <cstddef>
#include <optional>

namespace zenka::platform {

class LazyFile;

/// A piece of a file, bytes.
struct FilePiece {
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// Where the EXIF data of a HEIF image stand as a TIFF structure (ISO/IEC 23008-12, annex A); nothing for
/// another file. Exiv2 0.27 finds them only where their place is told without a base offset. Reads what it
/// needs of the file, the piece included.
std::optional<FilePiece> heifExif(LazyFile& file);

} // namespace zenka::platform
