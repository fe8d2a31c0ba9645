#include "base/Uuid.h"

#include <absl/strings/str_format.h>

#include <random>

namespace zenka::base {

Uuid Uuid::fresh() {
    thread_local std::mt19937_64 source = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    Uuid id{.high = source(), .low = source()};
    id.high = (id.high & ~0xF000ULL) | 0x4000ULL;
    id.low = (id.low & ~(0xC0ULL << 56)) | (0x80ULL << 56);
    return id;
}

std::string Uuid::text() const {
    return absl::StrFormat("%08X-%04X-%04X-%04X-%012X", high >> 32, (high >> 16) & 0xFFFF, high & 0xFFFF,
                           low >> 48, low & 0xFFFFFFFFFFFFULL);
}

} // namespace zenka::base
