#include "Check.h"
#include "analysis/ExposureTimeDirect.h"
#include "base/TiffBytes.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto time = zenka::analysis::exposureTimeIn(bytes);
    check(!time || (std::isfinite(*time) && *time >= 0 && *time <= 4294967295.0));
    if (const auto tiff = zenka::base::TiffBytes::in(bytes)) {
        const auto directory = tiff->firstDirectory();
        const auto entry = directory ? tiff->findTag(*directory, zenka::base::TiffTags::make) : std::nullopt;
        check(!entry || *entry + 2 <= size);
    }
    return 0;
}
