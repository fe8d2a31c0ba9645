#include "cli/SonyProbe.h"

#include "cameras/sony/sony_bridge.h"
#include "cli/Print.h"
#include "platform/LinuxSharedLibraries.h"

#include <absl/strings/str_format.h>

#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

namespace zenka::cli {

void probeSony() {
    constexpr int mostCameras = 16;
    constexpr int stride = 128;
    constexpr std::size_t bufferSize = 2048;
    platform::LinuxSharedLibraries libraries;
    cameras::zenka_sony_set_up(&libraries);
    printLine(std::string("CrSDK init: ") + (cameras::zenka_sony_init() == 1 ? "OK" : "FAILED"));
    printLine(absl::StrFormat("CrSDK version: 0x%08x", cameras::zenka_sony_sdk_version()));
    std::vector<char> names(bufferSize);
    std::vector<char> ids(bufferSize);
    const int count = cameras::zenka_sony_enumerate(names.data(), ids.data(), mostCameras, stride);
    if (count < 0)
        std::abort();
    printLine(absl::StrFormat("Sony cameras enumerated: %d", count));
    for (int index = 0; index < count; ++index)
        printLine(std::string("  - ") + (names.data() + std::ptrdiff_t{index} * stride));
    cameras::zenka_sony_release();
    cameras::zenka_sony_set_up(nullptr);
}

} // namespace zenka::cli
