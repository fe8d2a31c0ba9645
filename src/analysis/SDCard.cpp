#include "analysis/SDCard.h"

#include <system_error>

namespace zenka::analysis {

std::vector<std::filesystem::path> SDCard::findDCIMs(ports::Volumes& volumes) {
    std::vector<std::filesystem::path> found;
    for (const auto& volume : volumes.mounted()) {
        std::error_code fault;
        if (std::filesystem::exists(volume / "DCIM", fault))
            found.push_back(volume / "DCIM");
    }
    return found;
}

} // namespace zenka::analysis
