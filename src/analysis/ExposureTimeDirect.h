#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace zenka::analysis {

/// How much of a file is looked at, bytes.
inline constexpr std::size_t exposureTimeHead = 0x100000;

/// The exposure time in seconds of a RAW file that is a TIFF structure, Panasonic's form included, whose
/// other tags round it. Nothing where its head does not hold it as a rational.
std::optional<double> exifExposureTimeDirect(const std::filesystem::path& file);

/// The same of the file's head.
std::optional<double> exposureTimeIn(std::string_view head);

} // namespace zenka::analysis
