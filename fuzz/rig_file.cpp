#include "Check.h"
#include "rig/transfer/RigFields.h"
#include "rig/transfer/RigFile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zenka::rig;
    const RigReading reading = rigFrom(std::string_view(reinterpret_cast<const char*>(data), size));
    check(reading.contents.has_value() == reading.fault.empty());
    if (!reading.contents)
        return 0;
    for (const auto& site : reading.contents->savedSites)
        check(RigFields::isPlace(site.lat, site.lon, site.elev) && RigFields::isLine(site.name));
    // What was taken is whole: written and read again it is the same, and nothing of it is left out.
    const RigReading again = rigFrom(toJson(*reading.contents));
    check(again.leftOut.empty() || reading.contents->site.has_value());
    check(again.contents.has_value() && toJson(*again.contents) == toJson(*reading.contents));
    return 0;
}
