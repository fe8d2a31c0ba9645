// A libzenka-crsdk.so that sees two cameras and connects to none.

#include "cameras/sony/CrSDKTable.h"

#include <array>

namespace {

using namespace zenka::cameras;

constexpr std::array<std::uint8_t, 2> id{0xAB, 0x01};
int list = 0;

constexpr std::uint32_t refused = 33290;

constexpr CrSDKTable table{
    .version = crsdkTableVersion,
    .init = [] { return 1; },
    .release = [] {},
    .sdkVersion = [] { return std::uint32_t{0x01020304}; },
    .enumerate =
        [](CrSDKList** found, std::uint8_t) {
            *found = reinterpret_cast<CrSDKList*>(&list);
            return std::uint32_t{0};
        },
    .cameraCount = [](const CrSDKList*) { return std::uint32_t{2}; },
    .describe =
        [](const CrSDKList*, std::uint32_t index, CrSDKCamera* camera) {
            *camera = {.model = index == 0 ? "ILCE-7M4" : "ILCE-1", .id = id.data(), .idSize = id.size()};
        },
    .releaseList = [](CrSDKList*) {},
    .connect = [](const CrSDKList*, std::uint32_t, const CrSDKEvents*, std::int64_t*) { return refused; },
    .disconnect = [](std::int64_t) { return refused; },
    .releaseDevice = [](std::int64_t) { return refused; },
    .sendCommand = [](std::int64_t, std::uint32_t, std::uint16_t) { return refused; },
    .setProperty = [](std::int64_t, std::uint32_t, std::uint32_t, std::uint64_t) { return refused; },
    .readProperties = [](std::int64_t, const std::uint32_t*, std::uint32_t,
                         void (*)(void*, const CrSDKProperty*), void*) { return refused; },
    .queueCount = [](std::int64_t, std::uint32_t*) { return refused; }};

} // namespace

extern "C" const CrSDKTable* zenka_crsdk_table(std::uint32_t version);

const CrSDKTable* zenka_crsdk_table(std::uint32_t version) {
    return version == crsdkTableVersion ? &table : nullptr;
}
