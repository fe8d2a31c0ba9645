#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace zenka::test {

/// What an image made by hand says of itself. Empty texts and zeros are left out.
struct ImageTags {
    std::string date = "2026:08:12 20:29:03";
    std::string subSec;
    int iso = 0;
    std::pair<std::uint32_t, std::uint32_t> fNumber{0, 0};
    std::pair<std::uint32_t, std::uint32_t> exposureTime{0, 0};
    std::string make;
    std::string model;
};

/// How its TIFF structure is laid out.
struct TiffForm {
    bool bigEndian = false;
    std::uint16_t magic = 42;
    std::uint32_t firstDirectory = 8;
    std::uint32_t exifDirectory = 0; ///< 0: right behind the first
    std::uint16_t exposureType = 5;  ///< RATIONAL
};

/// A TIFF file of directories and their values alone, with no picture.
std::string tiffFile(const ImageTags& tags, const TiffForm& form = {});

/// A JPEG file with no picture in it.
std::string jpegFile(const ImageTags& tags);

/// Canon's RAW of boxes, with no picture in it.
std::string cr3File(const ImageTags& tags);

/// Makes missing folders.
void writeFile(const std::filesystem::path& file, std::string_view bytes);

} // namespace zenka::test
