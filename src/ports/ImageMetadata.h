#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zenka::ports {

/// What an image file says of how it was taken, as stored. A field that is missing or unreadable is absent.
struct ImageFields {
    std::optional<std::string> dateTimeOriginal;   ///< "2026:08:12 20:29:03", in the camera's own time
    std::optional<std::string> subSecTimeOriginal; ///< decimals of the second, "12"
    std::optional<int> isoSpeedRatings;            ///< the first of the list
    std::optional<int> isoSpeed;                   ///< the later tag, which holds values above 65535
    std::optional<double> fNumber;
    std::optional<double> exposureTime; ///< seconds
    std::optional<std::string> make;
    std::optional<std::string> model;
};

/// Reads the metadata of image files, and no pixel of them.
class ImageMetadata {
public:
    virtual ~ImageMetadata() = default;

    /// Nothing for what is no readable image with EXIF data. Waits for the disk. Any thread, several at once.
    virtual std::optional<ImageFields> read(const std::filesystem::path& file) = 0;
};

} // namespace zenka::ports
