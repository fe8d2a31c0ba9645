#include "analysis/ExposureTimeDirect.h"

#include "base/TiffBytes.h"

#include <fstream>
#include <string>

namespace zenka::analysis {

namespace {

namespace Tags = base::TiffTags;

constexpr std::size_t smallest = 17; // bytes
constexpr std::uint16_t plainTiff = 42;
constexpr std::uint16_t panasonic = 0x55;
constexpr std::uint16_t rational = 5;

} // namespace

std::optional<double> exposureTimeIn(std::string_view head) {
    const auto tiff = base::TiffBytes::in(head);
    if (!tiff || head.size() < smallest)
        return std::nullopt;
    if (const auto magic = tiff->magic(); magic != plainTiff && magic != panasonic)
        return std::nullopt;
    const auto first = tiff->firstDirectory();
    const auto pointer = first ? tiff->findTag(*first, Tags::exifDirectory) : std::nullopt;
    const auto exif = pointer ? tiff->valueAt(*pointer) : std::nullopt;
    const auto entry = exif ? tiff->findTag(*exif, Tags::exposureTime) : std::nullopt;
    if (!entry || tiff->typeAt(*entry) != rational)
        return std::nullopt;
    const auto place = tiff->valueAt(*entry);
    const auto numerator = place ? tiff->longWord(*place) : std::nullopt;
    const auto denominator = place ? tiff->longWord(std::size_t{*place} + 4) : std::nullopt;
    if (!numerator || !denominator || *denominator < 1)
        return std::nullopt;
    return static_cast<double>(*numerator) / *denominator;
}

std::optional<double> exifExposureTimeDirect(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string head(exposureTimeHead, '\0');
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(stream.gcount()));
    return exposureTimeIn(head);
}

} // namespace zenka::analysis
