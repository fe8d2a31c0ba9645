#pragma once

#include "ports/Volumes.h"

#include <filesystem>
#include <vector>

namespace zenka::analysis {

/// Memory cards in a reader.
namespace SDCard {

/// The DCIM folders of the mounted volumes. Waits for the disk.
std::vector<std::filesystem::path> findDCIMs(ports::Volumes& volumes);

} // namespace SDCard

} // namespace zenka::analysis
